#include "platform/simulated/SimulatedFileSystem.h"

#include <filesystem>
#include <utility>

namespace orvane {

namespace {

bool hasLeadingDot(const std::filesystem::path& path) {
    const std::string name = path.filename().string();
    return !name.empty() && name.front() == '.';
}

}  // namespace

SimulatedFileSystem::SimulatedFileSystem(std::optional<std::string> homeDirectory)
    : homeDirectory_(std::move(homeDirectory)) {
    entries_["/"].isDirectory = true;
}

std::optional<std::vector<std::string>> SimulatedFileSystem::contentsOfDirectory(
    const std::string& directoryPath, unsigned options) const {
    listedDirectories_.push_back(directoryPath);
    const auto found = entries_.find(directoryPath);
    if (found == entries_.end() || !found->second.isDirectory ||
        unreadableDirectories.contains(directoryPath)) {
        return std::nullopt;
    }
    std::vector<std::string> result;
    for (const auto& childPath : found->second.childPaths) {
        const bool hidden = entries_.at(childPath).attributes.isHidden || hasLeadingDot(childPath);
        if (!(hidden && (options & skipsHiddenFiles) != 0)) {
            result.push_back(childPath);
        }
    }
    return result;
}

std::string SimulatedFileSystem::displayName(const std::string& path) const {
    const auto found = entries_.find(path);
    if (found == entries_.end()) {
        return std::filesystem::path(path).filename().string();
    }
    const Entry& entry = found->second;
    return entry.attributes.displayName.value_or(entry.defaultDisplayName);
}

std::optional<ImageHandle> SimulatedFileSystem::iconForFile(const std::string& path) const {
    const auto found = entries_.find(path);
    if (found == entries_.end()) {
        return std::nullopt;
    }
    ImageHandle icon;
    icon.identifier = found->second.iconIdentifier;
    icon.pixelWidth = 64;
    icon.pixelHeight = 64;
    icon.description = "icon of " + path;
    return icon;
}

void SimulatedFileSystem::createDirectory(const std::string& path) {
    makeEntry(path, true);
}

void SimulatedFileSystem::createEntry(const std::string& path, SimulatedFileAttributes attributes) {
    makeEntry(path, false).attributes = std::move(attributes);
}

void SimulatedFileSystem::createApplicationFolders() {
    for (const char* folder : applicationFolders) {
        createDirectory(folder);
    }
    if (homeDirectory_) {
        createDirectory((std::filesystem::path(*homeDirectory_) / "Applications").string());
    }
}

std::string SimulatedFileSystem::addApplication(const std::string& directory,
                                                const std::string& bundleName,
                                                std::optional<std::string> displayName) {
    const std::string path = (std::filesystem::path(directory) / bundleName).string();
    SimulatedFileAttributes attributes;
    attributes.displayName = std::move(displayName);
    createEntry(path, std::move(attributes));
    return path;
}

SimulatedFileSystem::Entry& SimulatedFileSystem::makeEntry(const std::string& path,
                                                           bool isDirectory) {
    if (const auto found = entries_.find(path); found != entries_.end()) {
        found->second.isDirectory = found->second.isDirectory || isDirectory;
        return found->second;
    }
    const std::filesystem::path parent = std::filesystem::path(path).parent_path();
    // Relative paths hang from the root rather than recursing without end.
    const std::string parentPath =
        parent.empty() || parent == path ? std::string(1, '/') : parent.string();
    makeEntry(parentPath, true).childPaths.push_back(path);
    Entry& entry = entries_[path];
    entry.isDirectory = isDirectory;
    const std::filesystem::path lexical(path);
    // Applications show without their extension, as the system hides it for them by default.
    entry.defaultDisplayName =
        (lexical.extension() == ".app" ? lexical.stem() : lexical.filename()).string();
    entry.iconIdentifier = ++lastIconIdentifier_;
    return entry;
}

}  // namespace orvane
