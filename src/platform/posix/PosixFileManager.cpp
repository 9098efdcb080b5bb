#include "platform/posix/PosixFileManager.h"

#include <cstdlib>
#include <filesystem>

namespace orvane {

std::optional<std::vector<std::string>> PosixFileManager::contentsOfDirectory(
    const std::string& directoryPath, unsigned options) const {
    std::error_code error;
    std::filesystem::directory_iterator entries(directoryPath, error);
    if (error) {
        return std::nullopt;
    }
    std::vector<std::string> paths;
    for (const auto& entry : entries) {
        const auto name = entry.path().filename().string();
        if ((options & skipsHiddenFiles) != 0 && name.starts_with('.')) {
            continue;
        }
        paths.push_back(entry.path().string());
    }
    return paths;
}

std::string PosixFileManager::displayName(const std::string& path) const {
    auto name = std::filesystem::path(path).filename().string();
    if (name.ends_with(".app")) {
        name.resize(name.size() - 4);
    }
    return name;
}

std::optional<std::string> PosixFileManager::homeDirectoryForCurrentUser() const {
    const char* home = std::getenv("HOME");
    if (home == nullptr || home[0] != '/') {
        return std::nullopt;
    }
    return std::string(home);
}

}  // namespace orvane
