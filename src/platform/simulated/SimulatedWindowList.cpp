#include "platform/simulated/SimulatedWindowList.h"

#include "platform/simulated/SimulatedDesktop.h"

namespace orvane {

std::optional<PropertyListValue> SimulatedWindowList::copyWindowInfo(std::uint32_t options,
                                                                     WindowIdentifier) {
    ++readCount_;
    if (failingOptions.contains(options)) {
        return std::nullopt;
    }
    if (answersMalformedList) {
        return PropertyListValue{PropertyListValue::Array{PropertyListValue{"not a dictionary"}}};
    }
    const bool onScreenOnly = (options & window_list_option::onScreenOnly) != 0;
    PropertyListValue::Array entries;
    for (auto identifier : desktop_.windowsFrontToBack()) {
        const auto& window = *desktop_.window(identifier);
        if (onScreenOnly && (window.isMinimized || window.isOffScreen)) {
            continue;
        }
        const auto* application = desktop_.application(window.owningProcessIdentifier);
        PropertyListValue::Dictionary dictionary;
        auto add = [&](const char* key, PropertyListValue value) {
            if (!window.missingWindowListKeys.contains(key)) {
                dictionary.emplace_back(PropertyListValue{key}, std::move(value));
            }
        };
        add(window_list_key::number, window.windowIdentifier);
        add(window_list_key::ownerProcessIdentifier, window.owningProcessIdentifier);
        add(window_list_key::bounds, dictionaryRepresentation(window.bounds));
        if (application != nullptr && application->runningApplication.localizedName) {
            add(window_list_key::ownerName, *application->runningApplication.localizedName);
        }
        if (window.listTitle) {
            add(window_list_key::name, *window.listTitle);
        }
        add(window_list_key::layer, window.layer);
        add(window_list_key::alpha, window.alpha);
        entries.emplace_back(std::move(dictionary));
    }
    return PropertyListValue{std::move(entries)};
}

}  // namespace orvane
