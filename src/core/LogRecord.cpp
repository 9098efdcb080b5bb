#include "core/LogRecord.h"

namespace orvane {

std::string_view logCategoryName(LogCategory category) {
    switch (category) {
        case LogCategory::lifecycle:
            return "lifecycle";
        case LogCategory::windowenumeration:
            return "windowenumeration";
        case LogCategory::recencytracking:
            return "recencytracking";
        case LogCategory::windowactivation:
            return "windowactivation";
        case LogCategory::shortcutinterception:
            return "shortcutinterception";
        case LogCategory::overlay:
            return "overlay";
        case LogCategory::thumbnailcapture:
            return "thumbnailcapture";
        case LogCategory::launcher:
            return "launcher";
        case LogCategory::permission:
            return "permission";
        case LogCategory::softwareupdates:
            return "softwareupdates";
        case LogCategory::diagnostics:
            return "diagnostics";
        case LogCategory::preferences:
            return "preferences";
    }
    return "lifecycle";
}

std::string_view logLevelName(LogLevel level) {
    switch (level) {
        case LogLevel::debug:
            return "debug";
        case LogLevel::info:
            return "info";
        case LogLevel::error:
            return "error";
    }
    return "info";
}

}  // namespace orvane
