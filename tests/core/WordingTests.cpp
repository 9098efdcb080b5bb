#include <gtest/gtest.h>

#include "core/Wording.h"

namespace orvane {
namespace {

TEST(WordingTest, TheLinuxWordsReplaceWholeWordsAndSymbolsOnly) {
    const auto desktop = Wording::linuxDesktop();
    EXPECT_EQ(desktop.apply("Hold Option and tap Tab; Option-Space searches."),
              "Hold Alt and tap Tab; Alt+Space searches.");
    EXPECT_EQ(desktop.apply("⌥ Option"), "Alt");
    EXPECT_EQ(desktop.apply("release ⌃"), "release Ctrl");
    EXPECT_EQ(desktop.apply("⌃⇥"), "Ctrl+Tab");
    EXPECT_EQ(desktop.apply("Optional — and Options stay as they are on your Mac."),
              "Optional — and Options stay as they are on your computer.");
    EXPECT_EQ(Wording().apply("Option-Tab on your Mac"), "Option-Tab on your Mac");
}

}  // namespace
}  // namespace orvane
