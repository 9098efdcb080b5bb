// The login item as a log-out and log-in see it: the autostart file, what a session manager reads
// of it, and the refusals that the General pane turns back to off.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/x11/XdgAutostartLoginItem.h"

namespace orvane {
namespace {

TEST(XdgAutostartLoginItemTest, TheAutostartEntryDecidesAndAFolderThatCannotBeWrittenRefuses) {
    char pattern[] = "/tmp/orvane-autostart-XXXXXX";
    const std::filesystem::path home = ::mkdtemp(pattern);
    const auto entry = home / "autostart" / "orvane.desktop";
    XdgAutostartLoginItem item(entry, "/opt/Orvane $HOME/orvane");
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);

    EXPECT_EQ(item.registerLoginItem(), std::nullopt);
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    std::stringstream written;
    written << std::ifstream(entry).rdbuf();
    EXPECT_NE(written.str().find("Exec=\"/opt/Orvane \\$HOME/orvane\"\n"), std::string::npos)
        << written.str();
    EXPECT_FALSE(std::filesystem::exists(entry.string() + ".new"));

    // The user hid it in the desktop's own startup settings.
    for (const auto* hiding : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n"}) {
        std::ofstream(entry) << "[Desktop Entry]\nType=Application\nExec=orvane\n" << hiding;
        EXPECT_EQ(item.status(), LoginItemStatus::notRegistered) << hiding;
    }
    std::ofstream(entry) << "not a key file";
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);

    EXPECT_EQ(item.unregisterLoginItem(), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(entry));
    EXPECT_EQ(item.unregisterLoginItem(), std::nullopt) << "gone already";

    // A file where the folder should be: even root cannot write there.
    std::ofstream(home / "taken") << "";
    XdgAutostartLoginItem blocked(home / "taken" / "autostart" / "orvane.desktop", "orvane");
    const auto refused = blocked.registerLoginItem();
    ASSERT_TRUE(refused.has_value());
    EXPECT_NE(refused->find("cannot create"), std::string::npos) << *refused;
    EXPECT_EQ(blocked.status(), LoginItemStatus::notRegistered);
    std::filesystem::remove_all(home);
}

}  // namespace
}  // namespace orvane
