#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "launcher/LauncherMatchScore.h"

namespace orvane {
namespace {

struct ScoreCase {
    const char* query;
    std::string candidate;
    std::optional<int> expected;
};

void expectScores(std::initializer_list<ScoreCase> cases) {
    for (const auto& each : cases) {
        SCOPED_TRACE(std::string("query \"") + each.query + "\", candidate \"" + each.candidate +
                     "\"");
        EXPECT_EQ(launcherMatchScore(each.query, each.candidate), each.expected);
    }
}

TEST(LauncherMatchScoreTest, RanksPrefixAboveWordStartAboveGreedySubsequence) {
    expectScores({
        {"sa", "Safari", 9994},
        {"mon", "Activity Monitor", 4991},
        {"amr", "Activity Monitor", 870},  // first index 0, last 15, span 16
        {"te", "Terminal", 9992},
        {"te", "Apple Text", 4994},  // word at offset 6
        {"te", "Stickies", 959},     // first index 1, last 6, span 6
        // Words split at every single space, and each space counts.
        {"studio", "Visual Studio", 4993},
        {"studio", "Visual  Studio", 4992},  // the empty word between the spaces counts 1
        {"c", "A  B C", 4995},
        // A word holds no space, so a query with one falls through to the subsequence.
        {"y mon", "Activity Monitor", 993},
        {"mon", "Demon Monitor", 4994},  // only the starts of words count
        // The subsequence takes the first fit and may go negative.
        {"ab", "a xab", 970},
        {"ab", "xa" + std::string(150, '-') + "b", 1000 - 10 * 150 - 1},
        {"ba", "ab", std::nullopt},
        {"abc", "ab", std::nullopt},
        {"xyz", "Safari", std::nullopt},
    });
}

TEST(LauncherMatchScoreTest, FoldsCaseDiacriticsAndOuterSpacesAndCountsGraphemeClusters) {
    expectScores({
        {"SAFARI", "Safari", 9994},
        {"s\u00E0fari", "Safari", 9994},
        {"\t sa\t", "  Safari\t", 9994},
        {"\u00C9a", "ea", 9998},
        // A no-break space is a space too; a line end is not, and must then be found.
        {"\u00A0sa", "Safari", 9994},
        {"sa\n", "Safari", std::nullopt},
        // Inner spaces stay: this query is a prefix as a whole.
        {"activity  mon", "Activity  Monitor", 9983},
        // A flag is two code points, a technologist emoji three joined by a zero-width joiner.
        {"paris", "\U0001F1EB\U0001F1F7 Paris", 4998},
        {"code", "\U0001F469\u200D\U0001F4BB Code", 4998},
        {"\U0001F1EB\U0001F1F7", "\U0001F1EB\U0001F1F7 Paris", 9993},
        // Hangul syllables decompose into jamo, yet each stays one character.
        {"\uAD6D", "\uD55C\uAD6D\uC5B4", 999},
        {"\uD558", "\uD55C\uAD6D\uC5B4", std::nullopt},
        // CR LF is one character, and so is an ill-formed byte.
        {"ab", "a\r\nb", 990},
        {"caf", "Caf\xFF", 9996},
    });
    // Composed and decomposed text score alike.
    for (const char* candidate :
         {"Cr\u00E8me Br\u00FBl\u00E9e", "Cre\u0300me Bru\u0302le\u0301e"}) {
        expectScores({
            {"creme", candidate, 9988},  // 12 characters, not 15 code points
            {"cr\u00E8me", candidate, 9988},
            {"cre\u0300me", candidate, 9988},
            {"br\u00FB", candidate, 4994},
            {"cbe", candidate, 1000 - 10 * (11 - 3)},
        });
    }
}

TEST(LauncherMatchScoreTest, EmptyQueryMatchesEverythingAndEmptyCandidateNothing) {
    for (const char* query : {"", " ", "   ", "\t", " \t "}) {
        expectScores({{query, "Safari", 0}, {query, "", 0}, {query, "  ", 0}});
    }
    expectScores({
        {"a", "", std::nullopt},
        {"a", " \t ", std::nullopt},
        {"a", "\u0301", std::nullopt},  // a lone accent folds to nothing
    });
}

}  // namespace
}  // namespace orvane
