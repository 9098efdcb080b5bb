#include "platform/x11/DesktopEntryCatalog.h"

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>

#include "core/Logger.h"
namespace orvane {

namespace {

constexpr std::string_view entrySuffix = ".desktop";

const Logger& log() {
    return Logger::forCategory(LogCategory::launcher);
}

// Modification time in nanoseconds and size; nothing when the file cannot be looked at.
std::optional<std::pair<std::int64_t, off_t>> fileStamp(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return std::pair{
        static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec,
        status.st_size};
}

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

std::string text(const char* value) {
    return value != nullptr ? std::string(value) : std::string();
}

}  // namespace

std::vector<std::string> DesktopEntryCatalog::standardDirectories() {
    std::vector<std::string> directories{
        (std::filesystem::path(g_get_user_data_dir()) / "applications").string()};
    for (const char* const* data = g_get_system_data_dirs(); data != nullptr && *data != nullptr;
         ++data) {
        directories.push_back((std::filesystem::path(*data) / "applications").string());
    }
    return directories;
}

DesktopEntryCatalog::DesktopEntryCatalog(std::vector<std::string> directories)
    : directories_(std::move(directories)) {}

ApplicationFolders DesktopEntryCatalog::folders() {
    return {directories_, std::string(entrySuffix),
            [this](const std::string& path) { return isApplication(path); }};
}

bool DesktopEntryCatalog::isApplication(const std::string& path) {
    const auto* found = entry(path);
    if (found == nullptr || !found->isShown) {
        return false;
    }
    const std::filesystem::path lexical(path);
    const auto directory = lexical.parent_path().string();
    const auto name = lexical.filename().string();
    const auto& listed = listings();
    for (std::size_t index = 0; index < directories_.size(); ++index) {
        if (directories_[index] == directory) {
            return true;
        }
        if (listed[index].names.contains(name)) {
            return false;
        }
    }
    return true;
}

void DesktopEntryCatalog::prepare() {
    const auto& listed = listings();
    for (std::size_t index = 0; index < directories_.size(); ++index) {
        for (const auto& name : listed[index].names) {
            entry((std::filesystem::path(directories_[index]) / name).string());
        }
    }
    indexWindowClasses();
}

const DesktopEntryCatalog::Entry* DesktopEntryCatalog::entryForWindowClass(
    std::string_view instance, std::string_view windowClass) {
    const auto path = entryPathForWindowClass(instance, windowClass);
    return path ? knownEntry(*path) : nullptr;
}

std::optional<std::string> DesktopEntryCatalog::entryPathForWindowClass(
    std::string_view instance, std::string_view windowClass) {
    listings();
    if (listingsChanged_) {
        indexWindowClasses();
    }
    for (const auto* index : {&byStartupClass_, &byName_}) {
        for (auto key : {windowClass, instance}) {
            if (key.empty()) {
                continue;
            }
            if (auto found = index->find(lowered(key)); found != index->end()) {
                if (knownEntry(found->second) != nullptr) {
                    return found->second;
                }
                return std::nullopt;
            }
        }
    }
    return std::nullopt;
}

std::optional<std::string> DesktopEntryCatalog::iconName(std::uint64_t identifier) const {
    if ((identifier & iconIdentifierBit) == 0) {
        return std::nullopt;
    }
    const auto index = identifier & ~iconIdentifierBit;
    if (index >= iconNames_.size()) {
        return std::nullopt;
    }
    return iconNames_[index];
}

std::optional<std::vector<std::string>> DesktopEntryCatalog::contentsOfDirectory(
    const std::string& directoryPath, unsigned options) const {
    return files_.contentsOfDirectory(directoryPath, options);
}

std::string DesktopEntryCatalog::displayName(const std::string& path) const {
    const auto* found = path.ends_with(entrySuffix) ? asked(path) : nullptr;
    return found != nullptr && !found->name.empty() ? found->name : files_.displayName(path);
}

std::optional<ImageHandle> DesktopEntryCatalog::iconForFile(const std::string& path) const {
    const auto* found = path.ends_with(entrySuffix) ? asked(path) : nullptr;
    return found != nullptr ? found->icon : std::nullopt;
}

const DesktopEntryCatalog::Asked* DesktopEntryCatalog::asked(const std::string& path) const {
    if (nextAsked_ < asked_.size() && asked_[nextAsked_].path == path) {
        return &asked_[nextAsked_++];
    }
    // Its name, then its icon.
    if (nextAsked_ > 0 && asked_[nextAsked_ - 1].path == path) {
        return &asked_[nextAsked_ - 1];
    }
    auto& known = knownRecord(path);
    if (known.askedAt >= asked_.size() || asked_[known.askedAt].path != path) {
        known.askedAt = asked_.size();
        asked_.push_back(known.entry ? Asked{path, known.entry->name, known.entry->icon}
                                     : Asked{path, {}, std::nullopt});
    }
    nextAsked_ = known.askedAt + 1;
    return &asked_[known.askedAt];
}

const DesktopEntryCatalog::Entry* DesktopEntryCatalog::entry(const std::string& path) const {
    const auto stamp = fileStamp(path);
    auto found = entries_.find(path);
    if (found != entries_.end() && stamp && found->second.modified == stamp->first &&
        found->second.size == stamp->second) {
        return found->second.entry ? &*found->second.entry : nullptr;
    }
    Known known;
    if (stamp) {
        known = {stamp->first, stamp->second, read(path)};
    } else {
        log().debug("skipped desktop entry %{public}s: it cannot be read", path);
    }
    auto& stored = entries_.insert_or_assign(path, std::move(known)).first->second;
    asked_.clear();
    nextAsked_ = 0;
    return stored.entry ? &*stored.entry : nullptr;
}

const DesktopEntryCatalog::Entry* DesktopEntryCatalog::knownEntry(const std::string& path) const {
    const auto& known = knownRecord(path);
    return known.entry ? &*known.entry : nullptr;
}

DesktopEntryCatalog::Known& DesktopEntryCatalog::knownRecord(const std::string& path) const {
    if (auto found = entries_.find(path); found != entries_.end()) {
        return found->second;
    }
    entry(path);
    return entries_.find(path)->second;
}

std::optional<DesktopEntryCatalog::Entry> DesktopEntryCatalog::read(const std::string& path) const {
    GKeyFile* file = g_key_file_new();
    GError* error = nullptr;
    if (!g_key_file_load_from_file(file, path.c_str(), G_KEY_FILE_KEEP_TRANSLATIONS, &error)) {
        // GLib quotes the offending line as it stands, in whatever bytes it had.
        gchar* message = g_utf8_make_valid(error != nullptr ? error->message : "", -1);
        log().debug("skipped desktop entry %{public}s: %{public}s", path, text(message));
        g_free(message);
        g_clear_error(&error);
        g_key_file_unref(file);
        return std::nullopt;
    }
    GDesktopAppInfo* info = g_desktop_app_info_new_from_keyfile(file);
    g_key_file_unref(file);
    if (info == nullptr) {
        log().debug(
            "skipped desktop entry %{public}s: not an application that can start here (its "
            "Type, Exec or TryExec)",
            path);
        return std::nullopt;
    }
    auto* application = G_APP_INFO(info);
    Entry entry;
    entry.name = text(g_app_info_get_name(application));
    entry.startupWindowClass = text(g_desktop_app_info_get_startup_wm_class(info));
    entry.isHidden = g_desktop_app_info_get_is_hidden(info) != FALSE;
    entry.isShown = !entry.isHidden && g_app_info_should_show(application) != FALSE;
    std::string iconName;
    if (GIcon* icon = g_app_info_get_icon(application)) {
        gchar* name = g_icon_to_string(icon);
        iconName = text(name);
        g_free(name);
    }
    g_object_unref(info);
    if (!iconName.empty()) {
        auto [known, isNew] = iconIdentifiers_.try_emplace(
            iconName, iconIdentifierBit | static_cast<std::uint64_t>(iconNames_.size()));
        if (isNew) {
            iconNames_.push_back(iconName);
        }
        entry.icon =
            ImageHandle{known->second, iconPixelSide, iconPixelSide, "icon " + iconName, 0, 0};
    }
    return entry;
}

const std::vector<DesktopEntryCatalog::Listing>& DesktopEntryCatalog::listings() {
    const auto now = std::chrono::steady_clock::now();
    if (listings_.size() == directories_.size() &&
        now - listingsChecked_ < std::chrono::seconds(1)) {
        return listings_;
    }
    listingsChecked_ = now;
    listings_.resize(directories_.size());
    for (std::size_t index = 0; index < directories_.size(); ++index) {
        const auto stamp = fileStamp(directories_[index]);
        const std::int64_t modified = stamp ? stamp->first : -1;
        auto& listing = listings_[index];
        if (modified == listing.modified) {
            continue;
        }
        listingsChanged_ = true;
        listing.modified = modified;
        listing.names.clear();
        for (const auto& path : files_.contentsOfDirectory(directories_[index], 0)
                                    .value_or(std::vector<std::string>{})) {
            auto name = std::filesystem::path(path).filename().string();
            if (name.ends_with(entrySuffix)) {
                listing.names.insert(std::move(name));
            }
        }
    }
    return listings_;
}

void DesktopEntryCatalog::indexWindowClasses() {
    const auto& listed = listings();
    listingsChanged_ = false;
    byStartupClass_.clear();
    byName_.clear();
    std::set<std::string> seen;
    for (std::size_t index = 0; index < directories_.size(); ++index) {
        for (const auto& name : listed[index].names) {
            // An earlier directory's entry of the same name overrides this one, even a hidden one.
            if (!seen.insert(name).second) {
                continue;
            }
            const auto path = (std::filesystem::path(directories_[index]) / name).string();
            const auto* found = entry(path);
            if (found == nullptr || found->isHidden) {
                continue;
            }
            if (!found->startupWindowClass.empty()) {
                byStartupClass_.try_emplace(lowered(found->startupWindowClass), path);
            }
            auto stem = lowered(std::string_view(name).substr(0, name.size() - entrySuffix.size()));
            // Reverse-domain names ("org.example.Viewer") also answer to their last part.
            if (const auto dot = stem.rfind('.'); dot != std::string::npos) {
                byName_.try_emplace(stem.substr(dot + 1), path);
            }
            byName_.try_emplace(std::move(stem), path);
        }
    }
}

}  // namespace orvane
