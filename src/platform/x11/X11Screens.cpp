#include "platform/x11/X11Screens.h"

#include <xcb/randr.h>

#include <cstdlib>
#include <sstream>
#include <string>

namespace orvane {

X11Screens::X11Screens(X11Connection& connection, X11WindowModel& model)
    : connection_(connection), model_(model) {
    auto* randr = xcb_get_extension_data(connection_.connection(), &xcb_randr_id);
    const std::uint8_t randrBase = randr != nullptr && randr->present ? randr->first_event : 0;
    if (randrBase != 0) {
        xcb_randr_select_input(connection_.connection(), connection_.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    }
    connection_.addListener([this, randrBase](const xcb_generic_event_t& event) {
        const auto type = event.response_type & 0x7f;
        if (randrBase != 0 && (type == randrBase + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                               type == randrBase + XCB_RANDR_NOTIFY)) {
            monitors_.reset();
        } else if (type == XCB_PROPERTY_NOTIFY) {
            const auto& notice = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            if (notice.window == connection_.root() && notice.atom == XCB_ATOM_RESOURCE_MANAGER) {
                scaleFactor_.reset();
            }
        }
    });
}

const std::vector<X11Screens::Monitor>& X11Screens::monitors() const {
    if (!monitors_) {
        monitors_ = readMonitors();
    }
    return *monitors_;
}

std::vector<X11Screens::Monitor> X11Screens::readMonitors() const {
    std::vector<Monitor> result;
    auto* connection = connection_.connection();
    auto* reply = xcb_randr_get_monitors_reply(
        connection, xcb_randr_get_monitors(connection, connection_.root(), 1), nullptr);
    if (reply != nullptr) {
        for (auto it = xcb_randr_get_monitors_monitors_iterator(reply); it.rem > 0;
             xcb_randr_monitor_info_next(&it)) {
            result.push_back(
                {{{static_cast<double>(it.data->x), static_cast<double>(it.data->y)},
                  {static_cast<double>(it.data->width), static_cast<double>(it.data->height)}},
                 it.data->primary != 0});
        }
        std::free(reply);
    }
    if (result.empty()) {
        const auto& screen = connection_.screen();
        result.push_back({{{0, 0},
                           {static_cast<double>(screen.width_in_pixels),
                            static_cast<double>(screen.height_in_pixels)}},
                          true});
    }
    // The primary monitor comes first, as the system's order has it.
    std::stable_partition(result.begin(), result.end(), [](const Monitor& m) { return m.primary; });
    return result;
}

double X11Screens::scaleFactor() const {
    if (!scaleFactor_) {
        scaleFactor_ = readScaleFactor();
    }
    return *scaleFactor_;
}

double X11Screens::readScaleFactor() const {
    auto property = connection_.property(
        connection_.requestProperty(connection_.root(), XCB_ATOM_RESOURCE_MANAGER, 65536));
    if (!property || property->format != 8) {
        return 1.0;
    }
    std::istringstream resources(std::string(property->bytes.begin(), property->bytes.end()));
    for (std::string line; std::getline(resources, line);) {
        if (line.rfind("Xft.dpi:", 0) == 0) {
            const double dpi = std::atof(line.c_str() + 8);
            if (dpi >= 48 && dpi <= 480) {
                return dpi / 96.0;
            }
        }
    }
    return 1.0;
}

double X11Screens::primaryHeight() const {
    return monitors().front().frame.size.height;
}

ScreenDescription X11Screens::describe(const Monitor& monitor, double pivot) const {
    const double scale = scaleFactor();
    ScreenDescription description;
    // Points are pixels divided by the scale; y flips around the primary monitor's top edge.
    const Rect& pixels = monitor.frame;
    description.frame = {
        {pixels.origin.x / scale, (pivot - pixels.origin.y - pixels.size.height) / scale},
        {pixels.size.width / scale, pixels.size.height / scale}};
    description.visibleFrame = description.frame;
    description.backingScaleFactor = scale;
    return description;
}

std::vector<ScreenDescription> X11Screens::screens() const {
    const auto& all = monitors();
    const double pivot = all.front().frame.size.height;
    std::vector<ScreenDescription> result;
    for (const auto& monitor : all) {
        result.push_back(describe(monitor, pivot));
    }
    return result;
}

std::optional<ScreenDescription> X11Screens::mainScreen() const {
    const auto& all = monitors();
    const double pivot = all.front().frame.size.height;
    Point probe;
    const auto active = model_.activeWindow();
    const auto* window = active ? model_.window(*active) : nullptr;
    if (window != nullptr && window->frame.size.width > 0) {
        probe = {window->frame.origin.x + window->frame.size.width / 2,
                 window->frame.origin.y + window->frame.size.height / 2};
    } else {
        auto* reply = xcb_query_pointer_reply(
            connection_.connection(),
            xcb_query_pointer(connection_.connection(), connection_.root()), nullptr);
        if (reply != nullptr) {
            probe = {static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)};
            std::free(reply);
        }
    }
    for (const auto& monitor : all) {
        const auto& f = monitor.frame;
        if (probe.x >= f.origin.x && probe.x < f.origin.x + f.size.width && probe.y >= f.origin.y &&
            probe.y < f.origin.y + f.size.height) {
            return describe(monitor, pivot);
        }
    }
    return describe(all.front(), pivot);
}

Point X11Screens::mouseLocation() const {
    auto* reply = xcb_query_pointer_reply(
        connection_.connection(), xcb_query_pointer(connection_.connection(), connection_.root()),
        nullptr);
    if (reply == nullptr) {
        return {};
    }
    const double scale = scaleFactor();
    const Point location{reply->root_x / scale, (primaryHeight() - reply->root_y) / scale};
    std::free(reply);
    return location;
}

}  // namespace orvane
