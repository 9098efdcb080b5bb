#include "ui/qt/QtHelpWindow.h"

#include <QHBoxLayout>
#include <QShortcut>
#include <QUrl>
#include <QVBoxLayout>

namespace orvane {

QtHelpWindow::QtHelpWindow(Actions actions)
    : actions_(std::move(actions)),
      reason_(new QLabel),
      page_(new QTextBrowser),
      keyboardSettings_(new QPushButton) {
    setWindowTitle(QStringLiteral("Orvane Help"));
    resize(560, 520);
    auto* column = new QVBoxLayout(this);
    reason_->setWordWrap(true);
    auto font = reason_->font();
    font.setBold(true);
    reason_->setFont(font);
    column->addWidget(reason_);
    page_->setOpenExternalLinks(true);
    column->addWidget(page_, 1);
    auto* buttons = new QHBoxLayout;
    keyboardSettings_->setText(
        QStringLiteral("Open %1").arg(QString::fromStdString(actions_.keyboardSettingsName)));
    keyboardSettings_->setVisible(!actions_.keyboardSettingsName.empty());
    QObject::connect(keyboardSettings_, &QPushButton::clicked,
                     [this] { actions_.openKeyboardSettings(); });
    buttons->addWidget(keyboardSettings_);
    buttons->addStretch();
    auto* closeButton = new QPushButton(QStringLiteral("Close"));
    closeButton->setDefault(true);
    QObject::connect(closeButton, &QPushButton::clicked, this, &QWidget::close);
    buttons->addWidget(closeButton);
    column->addLayout(buttons);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, [this] { close(); });
}

void QtHelpWindow::showPage(const std::string& address, const std::string& reason) {
    const QUrl url(QString::fromStdString(address));
    const auto section = url.fragment().toStdString();
    QUrl page = url;
    page.setFragment({});
    if (page_->source() != page) {
        page_->setSource(page);
    }
    page_->scrollToAnchor(QString::fromStdString(section));
    reason_->setText(QString::fromStdString(reason));
    reason_->setVisible(!reason.empty());
    keyboardSettings_->setVisible(section == "keyboard-shortcut" &&
                                  !actions_.keyboardSettingsName.empty());
    show();
    raise();
    activateWindow();
}

}  // namespace orvane
