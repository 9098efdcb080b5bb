// The launcher mode that finds installed applications by name and opens them. It lists fixed
// application folders, remembers that list for 30 seconds, and matches each display name on every
// keystroke.
#pragma once

#include <unicode/coll.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/Date.h"
#include "core/LauncherMode.h"
#include "core/Logger.h"
#include "launcher/ApplicationFolders.h"
#include "launcher/LauncherCandidateText.h"
#include "platform/ApplicationLauncherPort.h"
#include "platform/FileManagerPort.h"
#include "platform/RunLoopPort.h"
#include "platform/SoundPort.h"

namespace orvane {

class InstalledApplicationLauncherMode final : public LauncherMode {
  public:
    using CurrentDateProvider = std::function<Date()>;

    // The age at which the list of applications is scanned again.
    static constexpr double cacheLifetime = 30.0;

    // Without `folders`, the searched folders are the four system ones, then "Applications" in
    // the home folder when there is one, and applications are the ".app" bundles. A launch failure
    // beeps through `mainRunLoop`, whose `post` must accept work from any thread. Main thread only.
    InstalledApplicationLauncherMode(std::shared_ptr<FileManagerPort> fileManager,
                                     std::shared_ptr<ApplicationLauncherPort> applicationLauncher,
                                     std::shared_ptr<SoundPort> sound,
                                     std::shared_ptr<RunLoopPort> mainRunLoop,
                                     CurrentDateProvider currentDate,
                                     std::optional<ApplicationFolders> folders = std::nullopt);

    std::string modeDisplayName() const override { return "Applications"; }
    std::string searchPlaceholder() const override { return "Search applications"; }
    // Rescans when the cache is empty or `cacheLifetime` old; higher scores first, then display
    // names in the locale's case-insensitive order, then scan order.
    std::vector<LauncherItem> items(const std::string& query) override;
    // Opens the application at the item's path. A failure, reported later, logs one error and
    // beeps once on the main run loop; nothing is retried.
    void activate(const LauncherItem& item) override;

    const std::vector<std::string>& searchedDirectoryPaths() const { return folders_.directories; }

  private:
    // One scanned application; the parent folder is derived once per scan, not per keystroke.
    struct ApplicationLocator {
        std::string path;
        std::string parentDirectoryPath;
    };

    const std::vector<ApplicationLocator>& applicationLocators();
    std::string applicationDisplayName(const std::string& applicationPath) const;
    // Bytes whose order is the locale's case-insensitive order of display names.
    std::string collationKey(const std::string& displayName) const;

    ApplicationFolders folders_;
    std::shared_ptr<FileManagerPort> fileManager_;
    std::shared_ptr<ApplicationLauncherPort> applicationLauncher_;
    std::shared_ptr<SoundPort> sound_;
    std::shared_ptr<RunLoopPort> mainRunLoop_;
    CurrentDateProvider currentDate_;
    const Logger& log_ = Logger::forCategory(LogCategory::launcher);
    // Nothing when the locale's collator could not be made; names then compare by bytes.
    std::unique_ptr<icu::Collator> collator_;
    std::vector<ApplicationLocator> cachedApplicationLocators_;
    std::optional<Date> cacheScanDate_;
    // The display name last read for each cached locator, with what it is matched and sorted by,
    // made once per name: a keystroke reads the names again but only compares.
    struct NameForms {
        std::string displayName;
        LauncherCandidateText folded;
        std::string collationKey;
    };
    std::vector<std::optional<NameForms>> namesRead_;
    // The indexes of the read names in the locale's order, scan order among equal names, and the
    // place of each in that order; empty when a name changed since they were made.
    std::vector<std::uint32_t> alphabetical_;
    std::vector<std::uint32_t> alphabeticalPosition_;
    void sortNames();
    // Kept from one keystroke to the next, so that a keystroke allocates only what it returns.
    struct Scratch {
        std::vector<std::uint64_t> matches;
        std::vector<std::uint32_t> matchedIndexes;
        // By locator; each one taken is left empty.
        std::vector<std::optional<ImageHandle>> icons;
    } scratch_;
};

}  // namespace orvane
