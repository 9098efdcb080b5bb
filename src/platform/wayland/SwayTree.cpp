#include "platform/wayland/SwayTree.h"

#include <algorithm>
#include <string_view>

#include "core/Utf8Cut.h"

namespace orvane {

namespace {

constexpr std::size_t longestText = 4096;
// Deeper than any layout a person makes; a tree deeper still is not followed down.
constexpr int deepestNesting = 64;

std::string text(const nlohmann::json& node, const char* key) {
    const auto found = node.find(key);
    return found != node.end() && found->is_string()
               ? cutToBytes(found->get_ref<const std::string&>(), longestText)
               : std::string();
}

double number(const nlohmann::json& node, const char* key) {
    const auto found = node.find(key);
    return found != node.end() && found->is_number() ? found->get<double>() : 0.0;
}

// The children (tiled, then floating) in the order the node last focused them; those it never
// focused follow in their place.
std::vector<const nlohmann::json*> childrenByFocus(const nlohmann::json& node) {
    std::vector<const nlohmann::json*> children;
    for (const char* key : {"nodes", "floating_nodes"}) {
        const auto found = node.find(key);
        if (found != node.end() && found->is_array()) {
            for (const auto& child : *found) {
                if (child.is_object()) {
                    children.push_back(&child);
                }
            }
        }
    }
    const auto focus = node.find("focus");
    if (focus == node.end() || !focus->is_array()) {
        return children;
    }
    auto rank = [&](const nlohmann::json* child) {
        const auto identifier = child->find("id");
        if (identifier != child->end()) {
            for (std::size_t index = 0; index < focus->size(); ++index) {
                if ((*focus)[index] == *identifier) {
                    return index;
                }
            }
        }
        return focus->size();
    };
    std::stable_sort(children.begin(), children.end(),
                     [&](const auto* one, const auto* other) { return rank(one) < rank(other); });
    return children;
}

void collect(const nlohmann::json& node, bool isShown, int depth,
             std::vector<SwayTree::Window>& windows) {
    if (depth > deepestNesting) {
        return;
    }
    const auto type = text(node, "type");
    const auto children = childrenByFocus(node);
    if ((type == "con" || type == "floating_con") && children.empty()) {
        SwayTree::Window window;
        window.appId = text(node, "app_id");
        if (window.appId.empty()) {
            if (const auto properties = node.find("window_properties");
                properties != node.end() && properties->is_object()) {
                window.appId = text(*properties, "class");
            }
        }
        window.title = text(node, "name");
        if (const auto pid = node.find("pid"); pid != node.end() && pid->is_number_integer()) {
            const auto value = pid->get<std::int64_t>();
            if (value > 0 && value <= 4194304) {
                window.process = static_cast<ProcessIdentifier>(value);
            }
        }
        if (const auto rect = node.find("rect"); rect != node.end() && rect->is_object()) {
            window.frame = {{number(*rect, "x"), number(*rect, "y")},
                            {number(*rect, "width"), number(*rect, "height")}};
        }
        window.isOnShownWorkspace = isShown;
        windows.push_back(std::move(window));
        return;
    }
    for (std::size_t index = 0; index < children.size(); ++index) {
        const auto& child = *children[index];
        bool childShown = isShown;
        if (type == "output") {
            // An output shows the workspace it focused last; the scratchpad's output shows none.
            childShown = index == 0 && text(node, "name") != "__i3";
        }
        collect(child, childShown, depth + 1, windows);
    }
}

}  // namespace

std::vector<SwayTree::Window> SwayTree::windowsByFocus(const nlohmann::json& tree) {
    std::vector<Window> windows;
    if (tree.is_object()) {
        collect(tree, true, 0, windows);
    }
    return windows;
}

}  // namespace orvane
