#include "ui/qt/QtApplicationLauncher.h"

#include <QProcess>

namespace orvane {

void QtApplicationLauncher::openApplication(const std::string& applicationPath,
                                            ApplicationLaunchCompletion completion) {
    const bool started = QProcess::startDetached(
        QString::fromUtf8(applicationPath.data(), static_cast<qsizetype>(applicationPath.size())),
        {});
    runLoop_->post([completion = std::move(completion), started, applicationPath] {
        completion(started ? std::nullopt
                           : std::optional<std::string>("could not start " + applicationPath));
    });
}

}  // namespace orvane
