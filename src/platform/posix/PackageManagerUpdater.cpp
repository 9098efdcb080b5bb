#include "platform/posix/PackageManagerUpdater.h"

#include <fstream>
#include <system_error>

namespace orvane {

namespace {

// Whether dpkg's list of the package named after the program holds this very file.
bool isPackaged(const std::filesystem::path& program, const std::filesystem::path& database) {
    std::error_code error;
    const auto canonical = std::filesystem::weakly_canonical(program, error).string();
    std::ifstream list(database / "orvane.list");
    for (std::string line; std::getline(list, line);) {
        if (line == canonical || line == program.string()) {
            return true;
        }
    }
    return false;
}

}  // namespace

PackageManagerUpdater::PackageManagerUpdater(const std::filesystem::path& program,
                                             const std::filesystem::path& packageDatabase)
    : externalUpdateSource_(
          isPackaged(program, packageDatabase)
              ? "Orvane is installed as a package: new versions arrive with your system's other "
                "updates, from its package manager."
              : "This copy of Orvane runs from where it was built: a new version comes from "
                "building a newer source, or from installing Orvane's package.") {}

UpdaterObservationToken PackageManagerUpdater::observeCanCheckForUpdates(
    std::function<void(bool)> observer, bool initial) {
    // The answer never changes, so only the initial call has anything to tell.
    if (initial) {
        observer(false);
    }
    return ++lastToken_;
}

}  // namespace orvane
