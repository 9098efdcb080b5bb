#include "launcher/InstalledApplicationLauncherMode.h"

#include <unicode/locid.h>
#include <unicode/stringpiece.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <numeric>
#include <string_view>
#include <utility>

#include "launcher/LauncherMatchScore.h"

namespace orvane {

namespace {

ApplicationFolders bundleFolders(const FileManagerPort& fileManager) {
    std::vector<std::string> directories{"/Applications", "/Applications/Utilities",
                                         "/System/Applications", "/System/Applications/Utilities"};
    if (const auto home = fileManager.homeDirectoryForCurrentUser()) {
        directories.push_back((std::filesystem::path(*home) / "Applications").string());
    }
    return {std::move(directories), ".app", {}};
}

std::unique_ptr<icu::Collator> makeCaseInsensitiveCollator() {
    icu::Locale locale = icu::Locale::getDefault();
    // The C and POSIX locales name no language, and their collation is code point order, which
    // would put "Numbers" before "notes": the root order stands in for them.
    if (std::string_view(locale.getVariant()) == "POSIX") {
        locale = icu::Locale::getRoot();
    }
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(locale, status));
    if (U_FAILURE(status) || !collator) {
        return nullptr;
    }
    // Secondary strength ignores case and keeps accents, as a case-insensitive comparison does.
    collator->setStrength(icu::Collator::SECONDARY);
    return collator;
}

icu::StringPiece piece(std::string_view text) {
    return icu::StringPiece(text.data(), static_cast<int32_t>(text.size()));
}

}  // namespace

InstalledApplicationLauncherMode::InstalledApplicationLauncherMode(
    std::shared_ptr<FileManagerPort> fileManager,
    std::shared_ptr<ApplicationLauncherPort> applicationLauncher, std::shared_ptr<SoundPort> sound,
    std::shared_ptr<RunLoopPort> mainRunLoop, CurrentDateProvider currentDate,
    std::optional<ApplicationFolders> folders)
    : folders_(folders ? std::move(*folders) : bundleFolders(*fileManager)),
      fileManager_(std::move(fileManager)),
      applicationLauncher_(std::move(applicationLauncher)),
      sound_(std::move(sound)),
      mainRunLoop_(std::move(mainRunLoop)),
      currentDate_(std::move(currentDate)),
      collator_(makeCaseInsensitiveCollator()) {}

std::vector<LauncherItem> InstalledApplicationLauncherMode::items(const std::string& query) {
    const auto& locators = applicationLocators();
    // Higher scores first, then the names' order: one number each, so the sort compares numbers.
    auto& matches = scratch_.matches;
    auto& matchedIndexes = scratch_.matchedIndexes;
    auto& icons = scratch_.icons;
    matches.clear();
    matchedIndexes.clear();
    icons.resize(locators.size());
    namesRead_.resize(locators.size());
    for (std::size_t index = 0; index < locators.size(); ++index) {
        const auto& path = locators[index].path;
        auto displayName = applicationDisplayName(path);
        auto& known = namesRead_[index];
        // Read again at every keystroke, but folded only when it differs from the last reading.
        if (!known || known->displayName != displayName) {
            LauncherCandidateText folded(displayName);
            auto key = collationKey(displayName);
            known = NameForms{std::move(displayName), std::move(folded), std::move(key)};
            alphabetical_.clear();
        }
        if (const auto score = launcherMatchScore(query, known->folded)) {
            // INT_MAX - score spans 0 to 2^32 - 1: the best score is the smallest.
            const auto fromBest = static_cast<std::uint32_t>(
                static_cast<std::int64_t>(std::numeric_limits<int>::max()) - *score);
            matches.push_back(std::uint64_t{fromBest} << 32);
            matchedIndexes.push_back(static_cast<std::uint32_t>(index));
            // Asked right after the name: the file manager finds both in one place.
            icons[index] = fileManager_->iconForFile(path);
        }
    }
    sortNames();
    for (std::size_t match = 0; match < matches.size(); ++match) {
        matches[match] |= alphabeticalPosition_[matchedIndexes[match]];
    }
    std::sort(matches.begin(), matches.end());

    std::vector<LauncherItem> result(matches.size());
    for (std::size_t position = 0; position < matches.size(); ++position) {
        const auto index = alphabetical_[matches[position] & 0xffffffffU];
        const auto& locator = locators[index];
        auto& item = result[position];
        item.identifier = locator.path;
        item.title = namesRead_[index]->displayName;
        item.subtitle = locator.parentDirectoryPath;
        item.icon = std::exchange(icons[index], std::nullopt);
    }
    return result;
}

void InstalledApplicationLauncherMode::sortNames() {
    if (alphabetical_.size() == namesRead_.size()) {
        return;
    }
    // Names change rarely, so a keystroke sorts numbers; the collation keys are compared here.
    alphabetical_.resize(namesRead_.size());
    std::iota(alphabetical_.begin(), alphabetical_.end(), 0U);
    // Stable: an application listed in two folders keeps the scan's order.
    std::stable_sort(alphabetical_.begin(), alphabetical_.end(),
                     [this](std::uint32_t left, std::uint32_t right) {
                         return namesRead_[left]->collationKey < namesRead_[right]->collationKey;
                     });
    alphabeticalPosition_.resize(alphabetical_.size());
    for (std::size_t position = 0; position < alphabetical_.size(); ++position) {
        alphabeticalPosition_[alphabetical_[position]] = static_cast<std::uint32_t>(position);
    }
}

void InstalledApplicationLauncherMode::activate(const LauncherItem& item) {
    log_.info("launching application %{public}s", item.title);
    // The completion may come on another thread: it touches only the log and the run loop, and it
    // holds the ports, not the mode.
    applicationLauncher_->openApplication(
        item.identifier, [&log = log_, mainRunLoop = mainRunLoop_,
                          sound = sound_](std::optional<std::string> errorDescription) {
            if (!errorDescription) {
                return;
            }
            log.error("application launch failed: %{public}s", *errorDescription);
            mainRunLoop->post([sound] { sound->beep(); });
        });
}

const std::vector<InstalledApplicationLauncherMode::ApplicationLocator>&
InstalledApplicationLauncherMode::applicationLocators() {
    const Date now = currentDate_();
    // A clock that went back leaves a negative age, which counts as fresh.
    if (cacheScanDate_ &&
        now.secondsSinceReferenceDate - cacheScanDate_->secondsSinceReferenceDate < cacheLifetime) {
        return cachedApplicationLocators_;
    }
    std::vector<ApplicationLocator> locators;
    for (const auto& directory : folders_.directories) {
        // A missing or unreadable folder counts as empty, silently.
        const auto listing =
            fileManager_->contentsOfDirectory(directory, FileManagerPort::skipsHiddenFiles);
        if (!listing) {
            continue;
        }
        for (const auto& entry : *listing) {
            const std::filesystem::path lexical(entry);
            // Exact and case-sensitive: "Foo.APP" is not an application.
            const auto name = lexical.filename().string();
            if (name.size() > folders_.suffix.size() && name.ends_with(folders_.suffix) &&
                (!folders_.isApplication || folders_.isApplication(entry))) {
                locators.push_back({entry, lexical.parent_path().string()});
            }
        }
    }
    cachedApplicationLocators_ = std::move(locators);
    cacheScanDate_ = now;
    // Names of applications gone since are forgotten with the list they came from.
    namesRead_.clear();
    alphabetical_.clear();
    log_.info("scanned %{public}ld installed applications",
              static_cast<long>(cachedApplicationLocators_.size()));
    return cachedApplicationLocators_;
}

std::string InstalledApplicationLauncherMode::applicationDisplayName(
    const std::string& applicationPath) const {
    std::string name = fileManager_->displayName(applicationPath);
    if (name.ends_with(folders_.suffix)) {
        name.erase(name.size() - folders_.suffix.size());
    } else if (name.empty()) {
        name = std::filesystem::path(applicationPath).stem().string();
    }
    return name;
}

std::string InstalledApplicationLauncherMode::collationKey(const std::string& displayName) const {
    if (!collator_) {
        return displayName;
    }
    const auto text = icu::UnicodeString::fromUTF8(piece(displayName));
    std::string key(displayName.size() * 3 + 8, '\0');
    auto write = [&] {
        return collator_->getSortKey(text, reinterpret_cast<uint8_t*>(key.data()),
                                     static_cast<int32_t>(key.size()));
    };
    auto length = static_cast<std::size_t>(write());
    if (length > key.size()) {
        key.resize(length);
        write();
    }
    key.resize(length);
    return key;
}

}  // namespace orvane
