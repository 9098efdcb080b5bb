// Any bytes, valid UTF-8 or not, as query and candidate: a score is computed without fault, an
// empty query matches everything with 0, a text always matches itself, and a candidate folded
// beforehand scores exactly as one folded on the spot.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "launcher/LauncherMatchScore.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    // The first zero byte splits query from candidate.
    const auto split = bytes.find('\0');
    const auto query = bytes.substr(0, split);
    const auto candidate =
        split == std::string_view::npos ? std::string_view() : bytes.substr(split + 1);
    const auto score = orvane::launcherMatchScore(query, candidate);
    if (orvane::launcherMatchScore(query, orvane::LauncherCandidateText(candidate)) != score) {
        std::abort();
    }
    if (orvane::launcherMatchScore("", candidate) != 0) {
        std::abort();
    }
    if (!orvane::launcherMatchScore(candidate, candidate).has_value()) {
        std::abort();
    }
    return 0;
}
