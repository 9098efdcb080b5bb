// The preferences file on disk: written whole or not at all, read back as stored, and a folder
// that refuses the write keeps the last good record.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "core/ScopedLogCapture.h"
#include "platform/posix/XdgUserDefaults.h"
#include "preferences/PreferencesStore.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;

class XdgUserDefaultsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/orvane-defaults-XXXXXX";
        folder = fs::path(::mkdtemp(pattern)) / "orvane";
    }
    void TearDown() override { fs::remove_all(folder.parent_path()); }
    fs::path folder;
};

TEST_F(XdgUserDefaultsTest, WritesWholeRecordsThatSurviveARestartAndUnwritableFolders) {
    ScopedLogCapture capture;
    {
        XdgUserDefaults defaults(folder);
        EXPECT_EQ(defaults.dataForKey(preferencesDefaultsKey), std::nullopt);
        defaults.setData(preferencesDefaultsKey, R"({"cardSize":"large"})");
    }
    XdgUserDefaults restarted(folder);
    EXPECT_EQ(restarted.dataForKey(preferencesDefaultsKey), R"({"cardSize":"large"})");
    EXPECT_EQ(restarted.pathForKey(preferencesDefaultsKey),
              folder / "brimcote.orvane.preferences.json");
    EXPECT_EQ(restarted.pathForKey("../escape").parent_path(), folder);

    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1)
        << "no temporary file is left behind";

    // A write that fails (here the temporary file can't be made, as on a full disk, even for
    // root) keeps the last good record whole.
    const auto blocker = restarted.pathForKey(preferencesDefaultsKey).string() + ".tmp";
    fs::create_directory(blocker);
    restarted.setData(preferencesDefaultsKey, R"({"cardSize":"small"})");
    EXPECT_EQ(restarted.dataForKey(preferencesDefaultsKey), R"({"cardSize":"large"})");
    EXPECT_THAT(capture.sink().messages(LogCategory::preferences),
                ::testing::Contains(::testing::HasSubstr("the previous record is kept")));
}

// Damaged bytes are the store's to judge: the defaults apply and the file stays as it was until
// the user changes a preference.
TEST_F(XdgUserDefaultsTest, DamagedBytesStayUntouchedUntilTheNextChange) {
    fs::create_directories(folder);
    const auto path = folder / "brimcote.orvane.preferences.json";
    std::ofstream(path) << "{\"triggerKeyCode\":1e420";
    auto defaults = std::make_shared<XdgUserDefaults>(folder);
    ScopedLogCapture capture;
    auto store = std::make_shared<PreferencesStore>(defaults);
    EXPECT_EQ(store->preferences(), SwitcherPreferences{});
    EXPECT_EQ(defaults->dataForKey(preferencesDefaultsKey), "{\"triggerKeyCode\":1e420");
    store->modifyPreferences(
        [](SwitcherPreferences& preferences) { preferences.cardSize = SwitcherCardSize::small; });
    XdgUserDefaults reread(folder);
    EXPECT_THAT(*reread.dataForKey(preferencesDefaultsKey), ::testing::HasSubstr("\"small\""));
}

}  // namespace
}  // namespace orvane
