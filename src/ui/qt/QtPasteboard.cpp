#include "ui/qt/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace orvane {

void QtPasteboard::clearContents() {
    QGuiApplication::clipboard()->clear();
}

bool QtPasteboard::setString(const std::string& text, const std::string& type) {
    if (type != pasteboardTypeString) {
        return false;
    }
    QGuiApplication::clipboard()->setText(
        QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    return true;
}

std::optional<std::string> QtPasteboard::stringForType(const std::string& type) const {
    if (type != pasteboardTypeString) {
        return std::nullopt;
    }
    const auto text = QGuiApplication::clipboard()->text();
    if (text.isNull()) {
        return std::nullopt;
    }
    return text.toStdString();
}

}  // namespace orvane
