// Renders an SVG icon into the PNG sizes of the hicolor theme, at build time, through Qt's SVG
// icon engine:
//   orvane-icon-renderer SOURCE.svg OUTPUT_DIRECTORY NAME SIZE...
// writes OUTPUT_DIRECTORY/SIZExSIZE/apps/NAME.png for each size.
#include <QDir>
#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <cstdio>

int main(int argc, char** argv) {
    if (argc < 5) {
        std::fprintf(stderr, "usage: %s SOURCE.svg OUTPUT_DIRECTORY NAME SIZE...\n", argv[0]);
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const QIcon icon(QString::fromLocal8Bit(argv[1]));
    const QDir output(QString::fromLocal8Bit(argv[2]));
    for (int index = 4; index < argc; ++index) {
        const int size = QString::fromLocal8Bit(argv[index]).toInt();
        const auto folder = QStringLiteral("%1x%1/apps").arg(size);
        auto image = icon.pixmap(QSize(size, size)).toImage();
        if (image.isNull() || image.width() != size || !output.mkpath(folder) ||
            !image.save(output.filePath(folder + QLatin1Char('/') +
                                        QString::fromLocal8Bit(argv[3]) +
                                        QStringLiteral(".png")))) {
            std::fprintf(stderr,
                         "%s: cannot render %s at %d pixels (is the Qt SVG plugin, "
                         "libqt6svg6, installed?)\n",
                         argv[0], argv[1], size);
            return 1;
        }
    }
    return 0;
}
