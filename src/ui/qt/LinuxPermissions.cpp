#include "ui/qt/LinuxPermissions.h"

#include <QDesktopServices>
#include <QUrl>

#include "core/Logger.h"

namespace orvane {

void LinuxPermissions::openURL(const std::string& url) {
    const auto link = QUrl(QString::fromUtf8(url.data(), static_cast<qsizetype>(url.size())));
    if (!QDesktopServices::openUrl(link)) {
        Logger::forCategory(LogCategory::permission)
            .error("the desktop could not open %{public}s", url);
    }
}

}  // namespace orvane
