// The installed applications of the Linux desktop, as its XDG desktop entries describe them, read
// through GIO: the launcher's file manager (a desktop entry's display name is its localized Name,
// its icon the theme's), the test of what the menu shows, and the entry that matches a window's
// class. Entries are read once and again only when their file changes. Main thread only.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "launcher/ApplicationFolders.h"
#include "platform/FileManagerPort.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/posix/PosixFileManager.h"

namespace orvane {

class DesktopEntryCatalog final : public FileManagerPort {
  public:
    // Icons from desktop entries are handed out with this bit set in their identifiers.
    static constexpr std::uint64_t iconIdentifierBit = std::uint64_t{1} << 63;
    // The pixel size asked of the icon theme for each of them.
    static constexpr double iconPixelSide = 128;

    // Its icon's identifier names a theme icon or an absolute file path (see `iconName`).
    using Entry = DesktopEntry;

    // `$XDG_DATA_HOME/applications`, then `applications` in each of `$XDG_DATA_DIRS`.
    static std::vector<std::string> standardDirectories();
    explicit DesktopEntryCatalog(std::vector<std::string> directories = standardDirectories());

    // The directories, ".desktop", and the menu's own test of an entry.
    ApplicationFolders folders();
    // Whether the menu offers the entry at `path`: it reads and shows, and no directory searched
    // before its own holds an entry of the same file name (which overrides it).
    bool isApplication(const std::string& path);
    // Reads every entry now, so that the first search and the first card find them ready.
    void prepare();

    // The entry that a window of this WM_CLASS belongs to: StartupWMClass first, then an entry
    // named after the class or the instance (case-insensitive); nothing when none matches.
    const Entry* entryForWindowClass(std::string_view instance, std::string_view windowClass);
    // The path of that entry: what the desktop counts as one application.
    std::optional<std::string> entryPathForWindowClass(std::string_view instance,
                                                       std::string_view windowClass);
    // The icon name behind an identifier this catalog handed out.
    std::optional<std::string> iconName(std::uint64_t identifier) const;

    std::optional<std::vector<std::string>> contentsOfDirectory(const std::string& directoryPath,
                                                                unsigned options) const override;
    // The entry's localized Name; for other files, or entries that do not read, the file's name.
    std::string displayName(const std::string& path) const override;
    std::optional<ImageHandle> iconForFile(const std::string& path) const override;
    std::optional<std::string> homeDirectoryForCurrentUser() const override {
        return files_.homeDirectoryForCurrentUser();
    }

  private:
    struct Known {
        std::int64_t modified = 0;
        off_t size = 0;
        std::optional<Entry> entry;
        // Its place in `asked_`, if it still holds it.
        std::size_t askedAt = 0;
    };
    // What a keystroke asks of an entry. The applications mode asks for every name, in the same
    // order, at each keystroke: reading these in that order costs far less than hashing each path
    // into `entries_`, whose nodes lie all over the heap.
    struct Asked {
        std::string path;
        std::string name;
        std::optional<ImageHandle> icon;
    };
    struct Listing {
        std::int64_t modified = -1;
        std::set<std::string> names;
    };

    // The entry as last read; read again when the file's time or size changed.
    const Entry* entry(const std::string& path) const;
    // The entry as last read, read only when never read before: no system call per keystroke.
    const Entry* knownEntry(const std::string& path) const;
    Known& knownRecord(const std::string& path) const;
    // Entries in the order they were first asked for since one was last read; the next one asked
    // is most often the one after the last.
    const Asked* asked(const std::string& path) const;
    std::optional<Entry> read(const std::string& path) const;
    // The listings of the directories, looked at again at most once a second.
    const std::vector<Listing>& listings();
    void indexWindowClasses();

    std::vector<std::string> directories_;
    PosixFileManager files_;
    mutable std::unordered_map<std::string, Known> entries_;
    mutable std::vector<Asked> asked_;
    mutable std::size_t nextAsked_ = 0;
    mutable std::vector<std::string> iconNames_;
    mutable std::map<std::string, std::uint64_t> iconIdentifiers_;
    std::vector<Listing> listings_;
    std::chrono::steady_clock::time_point listingsChecked_;
    bool listingsChanged_ = true;
    // Lower-case WM_CLASS or entry name to entry path, first directory first.
    std::map<std::string, std::string> byStartupClass_;
    std::map<std::string, std::string> byName_;
};

}  // namespace orvane
