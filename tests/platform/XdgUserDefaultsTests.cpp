// The preferences file on disk: written whole or not at all, read back as stored, a folder that
// refuses the write keeps the last good record, and a rejected record is kept aside.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "core/ScopedLogCapture.h"
#include "platform/posix/XdgUserDefaults.h"
#include "preferences/PreferencesStore.h"
#include "preferences/SwitcherPreferencesCodec.h"

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
    EXPECT_THAT(restarted.setData(preferencesDefaultsKey, R"({"cardSize":"small"})"),
                ::testing::Optional(::testing::HasSubstr("cannot write " + folder.string())));
    EXPECT_EQ(restarted.dataForKey(preferencesDefaultsKey), R"({"cardSize":"large"})");
    EXPECT_THAT(capture.sink().messages(LogCategory::preferences),
                ::testing::Contains(::testing::HasSubstr("the previous record is kept")));
}

// A hand-edited record the program rejects (one unknown value) is said once, naming the file and
// the reason; the defaults apply, and its text is kept aside before the next change replaces it.
TEST_F(XdgUserDefaultsTest, ARejectedRecordIsSaidAndKeptAsideBeforeTheNextChange) {
    fs::create_directories(folder);
    const auto path = folder / "brimcote.orvane.preferences.json";
    const std::string edited =
        R"({"cardSize":"huge","shortcutConfiguration":{"holdModifier":"control"}})";
    std::ofstream(path) << edited;
    auto defaults =
        std::make_shared<XdgUserDefaults>(folder, [](const std::string&, const std::string& bytes) {
            const auto decoded = SwitcherPreferencesCodec::decode(bytes);
            return decoded.preferences ? std::string() : decoded.error;
        });
    ScopedLogCapture capture;
    auto store = std::make_shared<PreferencesStore>(defaults);
    EXPECT_EQ(store->preferences(), SwitcherPreferences{});
    const auto lines = capture.sink().messages(LogCategory::preferences);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_THAT(lines[0],
                ::testing::AllOf(::testing::HasSubstr(path.string()), ::testing::HasSubstr("huge"),
                                 ::testing::HasSubstr(".rejected")));
    store->modifyPreferences(
        [](SwitcherPreferences& preferences) { preferences.cardSize = SwitcherCardSize::small; });
    XdgUserDefaults reread(folder);
    EXPECT_THAT(*reread.dataForKey(preferencesDefaultsKey), ::testing::HasSubstr("\"small\""));
    std::ifstream aside(path.string() + ".rejected");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(aside), {}), edited);
}

}  // namespace
}  // namespace orvane
