// Files and folders of the POSIX file system, for the logic's listings of application folders.
#pragma once

#include "platform/FileManagerPort.h"

namespace orvane {

class PosixFileManager final : public FileManagerPort {
  public:
    std::optional<std::vector<std::string>> contentsOfDirectory(const std::string& directoryPath,
                                                                unsigned options) const override;
    // The file's name, with a bundle's ".app" taken off.
    std::string displayName(const std::string& path) const override;
    // The file system keeps no icons; they come with desktop entries.
    std::optional<ImageHandle> iconForFile(const std::string&) const override {
        return std::nullopt;
    }
    std::optional<std::string> homeDirectoryForCurrentUser() const override;
};

}  // namespace orvane
