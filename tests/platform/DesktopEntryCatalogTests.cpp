// Installed applications from desktop entries, as the applications mode finds them: what the
// desktop's menu would show, overrides between folders, bad entries, and the entry behind a
// window's class.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "core/ScopedLogCapture.h"
#include "launcher/InstalledApplicationLauncherMode.h"
#include "platform/simulated/SimulatedApplicationLauncher.h"
#include "platform/simulated/SimulatedRunLoop.h"
#include "platform/simulated/SimulatedSound.h"
#include "platform/x11/DesktopEntryCatalog.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

void write(const fs::path& path, const std::string& body) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << body;
}

std::string entry(const std::string& name, const std::string& more = "") {
    return "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=true\n" + more;
}

TEST(DesktopEntryCatalogTests, OffersWhatTheMenuShowsAndMatchesWindowsToEntries) {
    char pattern[] = "/tmp/orvane-entries-XXXXXX";
    const fs::path root = ::mkdtemp(pattern);
    const auto user = root / "home", system = root / "system";
    write(user / "notes.desktop", entry("Notes", "Icon=accessories-notes\n"));
    // A user's hidden entry takes the system's of the same name off the menu.
    write(user / "override.desktop", "[Desktop Entry]\nHidden=true\n");
    write(system / "override.desktop", entry("Overridden"));
    write(system / "notes.desktop", entry("System Notes"));
    write(system / "viewer.desktop", entry("Viewer", "StartupWMClass=ViewerMain\nIcon=/x/v.png\n"));
    write(system / "org.example.Paint.desktop", entry("Paint"));
    write(system / "helper.desktop", entry("Helper", "NoDisplay=true\n"));
    write(system / "retired.desktop", entry("Retired", "Hidden=true\n"));
    write(system / "elsewhere.desktop", entry("Elsewhere", "OnlyShowIn=NoSuchDesktop;\n"));
    write(system / "missing.desktop", entry("Missing", "TryExec=/nonexistent/program\n"));
    write(system / "site.desktop", "[Desktop Entry]\nType=Link\nName=Site\nURL=https://x\n");
    write(system / "broken.desktop", "garbage\n[[[\n");
    write(system / "readme.txt", entry("Text"));
    ScopedLogCapture capture;
    auto entries = std::make_shared<DesktopEntryCatalog>(
        std::vector<std::string>{user.string(), (root / "absent").string(), system.string()});
    auto& catalog = *entries;
    auto runLoop = std::make_shared<SimulatedRunLoop>();
    Date now = runLoop->now();
    InstalledApplicationLauncherMode mode(
        entries, nullptr, std::make_shared<SimulatedSound>(), runLoop, [&] { return now; },
        catalog.folders());
    const auto titles = [&](const std::string& query) {
        std::vector<std::string> result;
        for (const auto& item : mode.items(query)) {
            result.push_back(item.title + " in " +
                             fs::path(item.subtitle.value_or("")).filename().string());
        }
        return result;
    };

    EXPECT_THAT(titles(""), ElementsAre("Notes in home", "Paint in system", "Viewer in system"));
    const auto viewer = mode.items("view").front();
    ASSERT_TRUE(viewer.icon);
    EXPECT_EQ(catalog.iconName(viewer.icon->identifier), "/x/v.png");
    EXPECT_EQ(catalog.iconName(viewer.icon->identifier & ~DesktopEntryCatalog::iconIdentifierBit),
              std::nullopt);
    EXPECT_THAT(capture.sink().messages(LogCategory::launcher),
                ::testing::Contains(HasSubstr("skipped desktop entry " +
                                              (system / "broken.desktop").string() + ": ")));

    const auto nameOf = [&](std::string_view instance, std::string_view windowClass) {
        const auto* found = catalog.entryForWindowClass(instance, windowClass);
        return found != nullptr ? found->name : "none";
    };
    EXPECT_EQ(nameOf("viewer-main", "ViewerMain"), "Viewer");
    EXPECT_EQ(nameOf("paint", "Paint"), "Paint");
    EXPECT_EQ(nameOf("NOTES", ""), "Notes");
    EXPECT_EQ(nameOf("helper", "Helper"), "Helper");
    EXPECT_EQ(nameOf("override", "Override"), "none");
    EXPECT_EQ(nameOf("retired", "Retired"), "none");
    EXPECT_EQ(nameOf("", ""), "none");

    // A changed entry is read again with the next listing; the rest are not.
    write(user / "notes.desktop", entry("Jotter", "Name[xx_YY]=Wrong\n"));
    fs::last_write_time(user / "notes.desktop",
                        fs::file_time_type::clock::now() + std::chrono::hours(1));
    now.secondsSinceReferenceDate += InstalledApplicationLauncherMode::cacheLifetime;
    EXPECT_THAT(titles("o"), ElementsAre("Jotter in home"));
    fs::remove_all(root);
}

}  // namespace
}  // namespace orvane
