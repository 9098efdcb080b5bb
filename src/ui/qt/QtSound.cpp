#include "ui/qt/QtSound.h"

#include <QApplication>

namespace orvane {

void QtSound::beep() {
    QApplication::beep();
}

}  // namespace orvane
