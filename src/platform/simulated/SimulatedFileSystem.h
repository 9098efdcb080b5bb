// A file system in memory for the application launcher: folders of application bundles, hidden
// entries, display names and icons, an optional home folder, and counters of the listings asked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/FileManagerPort.h"

namespace orvane {

struct SimulatedFileAttributes {
    // The file's hidden flag; a name with a leading dot is hidden without it.
    bool isHidden = false;
    // What the system shows; by default the name, without the extension for an ".app".
    std::optional<std::string> displayName;
};

class SimulatedFileSystem final : public FileManagerPort {
  public:
    // The system folders an application launcher searches; its fifth is in the home folder.
    static constexpr const char* applicationFolders[] = {"/Applications", "/Applications/Utilities",
                                                         "/System/Applications",
                                                         "/System/Applications/Utilities"};

    // No home folder at all when `homeDirectory` is nothing. The home folder itself is not made.
    explicit SimulatedFileSystem(std::optional<std::string> homeDirectory = "/Users/orvane");

    std::optional<std::vector<std::string>> contentsOfDirectory(const std::string& directoryPath,
                                                                unsigned options) const override;
    std::string displayName(const std::string& path) const override;
    // Each entry has an icon of its own, described as "icon of " and its path.
    std::optional<ImageHandle> iconForFile(const std::string& path) const override;
    std::optional<std::string> homeDirectoryForCurrentUser() const override {
        return homeDirectory_;
    }

    // Makes the directory and its missing ancestors; each new one joins its parent's listing.
    void createDirectory(const std::string& path);
    // Makes an entry (a file or a bundle) at the end of its parent's listing, the parent made as
    // needed. An existing entry keeps its place and takes the new attributes.
    void createEntry(const std::string& path, SimulatedFileAttributes attributes = {});
    // The four system application folders and, with a home folder, its "Applications".
    void createApplicationFolders();
    // An application bundle named `bundleName` (such as "Safari.app") in `directory`; its path.
    std::string addApplication(const std::string& directory, const std::string& bundleName,
                               std::optional<std::string> displayName = std::nullopt);

    // Knob: listing these directories fails as if they could not be read.
    std::set<std::string> unreadableDirectories;

    // Every listing asked for, in order, failed ones included.
    const std::vector<std::string>& listedDirectories() const { return listedDirectories_; }
    std::size_t directoryListingCount() const { return listedDirectories_.size(); }

  private:
    struct Entry {
        bool isDirectory = false;
        SimulatedFileAttributes attributes;
        std::string defaultDisplayName;
        std::uint64_t iconIdentifier = 0;
        std::vector<std::string> childPaths;
    };

    Entry& makeEntry(const std::string& path, bool isDirectory);

    std::optional<std::string> homeDirectory_;
    std::unordered_map<std::string, Entry> entries_;
    std::uint64_t lastIconIdentifier_ = 0;
    mutable std::vector<std::string> listedDirectories_;
};

}  // namespace orvane
