#include "launcher/LauncherCandidateText.h"

#include "launcher/LauncherSearchText.h"

namespace orvane {

LauncherCandidateText::LauncherCandidateText(std::string_view utf8) {
    // The ICU objects of the folding live as long as the thread; only the result is kept.
    thread_local LauncherSearchText folding;
    folding.assign(utf8);
    const auto& text = folding.text();
    units_.assign(text.getBuffer(), static_cast<std::size_t>(text.length()));
    const auto view = folding.view();
    boundaries_.assign(view.boundaries.begin(), view.boundaries.end());
}

}  // namespace orvane
