// A gesture that reaches Orvane from outside rather than through its own view of the keyboard:
// the `orvane --gesture NAME` command, or a binding the compositor keeps. The backend plays it as
// the keys of its chord, so the logic sees what it sees when the chord is pressed.
#pragma once

#include <optional>
#include <string_view>

namespace orvane {

enum class ExternalGesture { next, previous, sameApplication, launcher };

// The gesture a command line names ("next", "previous", "same-application", "launcher").
inline std::optional<ExternalGesture> externalGestureNamed(std::string_view name) {
    if (name == "next") {
        return ExternalGesture::next;
    }
    if (name == "previous") {
        return ExternalGesture::previous;
    }
    if (name == "same-application") {
        return ExternalGesture::sameApplication;
    }
    if (name == "launcher") {
        return ExternalGesture::launcher;
    }
    return std::nullopt;
}

}  // namespace orvane
