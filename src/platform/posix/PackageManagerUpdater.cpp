#include "platform/posix/PackageManagerUpdater.h"

#include <fstream>
#include <system_error>

namespace orvane {

PackageManagerUpdater::PackageManagerUpdater(std::filesystem::path program,
                                             std::filesystem::path packageDatabase)
    : program_(std::move(program)), packageDatabase_(std::move(packageDatabase)) {}

UpdaterObservationToken PackageManagerUpdater::observeCanCheckForUpdates(
    std::function<void(bool)> observer, bool initial) {
    // The answer never changes, so only the initial call has anything to tell.
    if (initial) {
        observer(false);
    }
    return ++lastToken_;
}

bool PackageManagerUpdater::isPackaged() const {
    std::error_code error;
    const auto program = std::filesystem::weakly_canonical(program_, error).string();
    // The package is named after the program; a list that names this very file owns it.
    std::ifstream list(packageDatabase_ / "orvane.list");
    for (std::string line; std::getline(list, line);) {
        if (line == program || line == program_.string()) {
            return true;
        }
    }
    return false;
}

std::string PackageManagerUpdater::externalUpdateSource() const {
    if (isPackaged()) {
        return "Orvane is installed as a package: new versions arrive with your system's other "
               "updates, from its package manager.";
    }
    return "This copy of Orvane runs from where it was built: a new version comes from building "
           "a newer source, or from installing Orvane's package.";
}

}  // namespace orvane
