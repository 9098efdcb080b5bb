// The file system as the application launcher reads it: directory listings, the names and icons
// the system shows for files, and the user's home folder. Read only.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/ImageHandle.h"

namespace orvane {

class FileManagerPort {
  public:
    // Listing options, the platform's bits: hidden entries (a leading dot or the hidden flag) are
    // left out.
    static constexpr unsigned skipsHiddenFiles = 4;

    virtual ~FileManagerPort() = default;

    // The absolute paths of the direct children of `directoryPath`, in the listing's order, without
    // descending. Nothing when the directory is missing or cannot be read.
    virtual std::optional<std::vector<std::string>> contentsOfDirectory(
        const std::string& directoryPath, unsigned options) const = 0;
    // The name the system shows for the file, localized; for a bundle usually without its
    // extension. May be empty.
    virtual std::string displayName(const std::string& path) const = 0;
    // The icon the workspace draws for the file; nothing when the platform gives none.
    virtual std::optional<ImageHandle> iconForFile(const std::string& path) const = 0;
    // The absolute path of the user's home folder; nothing when the user has none.
    virtual std::optional<std::string> homeDirectoryForCurrentUser() const = 0;
};

}  // namespace orvane
