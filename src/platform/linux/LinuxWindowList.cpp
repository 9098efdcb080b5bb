#include "platform/linux/LinuxWindowList.h"

namespace orvane {

namespace {

// Normal windows sit on layer 0; the others above or below it, as their kind would on any desktop.
std::int64_t layer(DesktopWindows::Kind kind) {
    switch (kind) {
        case DesktopWindows::Kind::dock:
            return 20;
        case DesktopWindows::Kind::notification:
            return 25;
        case DesktopWindows::Kind::desktop:
            return -2147483623;
        default:
            return 0;
    }
}

}  // namespace

std::optional<PropertyListValue> LinuxWindowList::copyWindowInfo(std::uint32_t options,
                                                                 WindowIdentifier) {
    model_.refreshGeometry();
    const bool onScreenOnly = (options & window_list_option::onScreenOnly) != 0;
    const bool excludeDesktop = (options & window_list_option::excludeDesktopElements) != 0;
    PropertyListValue::Array entries;
    // Every gesture reads the list twice: no growing on the way.
    entries.reserve(model_.frontToBack().size());
    for (auto identifier : model_.frontToBack()) {
        const auto* window = model_.window(identifier);
        if (window == nullptr ||
            (excludeDesktop && window->kind == DesktopWindows::Kind::desktop)) {
            continue;
        }
        if (onScreenOnly && (window->isHidden || !model_.isOnCurrentDesktop(*window))) {
            continue;
        }
        PropertyListValue::Dictionary dictionary;
        dictionary.reserve(7);
        auto add = [&](const char* key, PropertyListValue value) {
            dictionary.emplace_back(PropertyListValue{key}, std::move(value));
        };
        add(window_list_key::number, static_cast<std::int64_t>(window->identifier));
        add(window_list_key::ownerProcessIdentifier, static_cast<std::int64_t>(window->process));
        add(window_list_key::bounds, dictionaryRepresentation(window->frame));
        if (!window->applicationName.empty()) {
            add(window_list_key::ownerName, window->applicationName);
        }
        add(window_list_key::name, window->title);
        add(window_list_key::layer, layer(window->kind));
        add(window_list_key::alpha, window->opacity);
        entries.emplace_back(std::move(dictionary));
    }
    return PropertyListValue{std::move(entries)};
}

}  // namespace orvane
