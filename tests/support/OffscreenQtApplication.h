// One Qt application for a test program's Qt windows, on the offscreen platform, made when first
// asked for and never destroyed: Qt must outlive whatever static it touches at exit.
#pragma once

#include <QApplication>

namespace orvane {

inline void ensureOffscreenQtApplication() {
    if (QApplication::instance() != nullptr) {
        return;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "orvane-tests";
    static char* argv[] = {name, nullptr};
    new QApplication(argc, argv);
}

}  // namespace orvane
