#include "platform/x11/X11WindowModel.h"

#include <unistd.h>
#include <xcb/res.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "core/Logger.h"
#include "platform/x11/X11PropertyParsing.h"

namespace orvane {

namespace {

// X identifiers leave their three top bits clear: the generation of a window identifier goes there.
constexpr std::uint32_t generationShift = 29;
constexpr std::uint32_t generationMask = 7;

const Logger& log() {
    return Logger::forCategory(LogCategory::windowenumeration);
}

// Beyond any kernel's pid_max: such a value is no process.
constexpr std::uint32_t largestProcessIdentifier = 4194304;
constexpr std::uint32_t preferredIconSide = 64;
// Stand-ins: one per application from here on, one per X client from `clientStandIns`, both
// beyond any process.
constexpr std::uint32_t applicationStandIns = 0x60000000u;
constexpr std::uint32_t clientStandIns = 0x40000000u;
// EWMH source indication: a pager or switcher acting for the user.
constexpr std::uint32_t sourcePager = 2;
constexpr std::uint32_t onEveryDesktop = 0xFFFFFFFF;

std::string processName(ProcessIdentifier process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/comm");
    std::string name;
    std::getline(file, name);
    return name;
}

}  // namespace

X11WindowModel::X11WindowModel(X11Connection& connection, EntryOfClass entryOfClass)
    : connection_(connection), entryOfClass_(std::move(entryOfClass)) {
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_.connection(), connection_.root(), XCB_CW_EVENT_MASK,
                                 &mask);
    connection_.addListener([this](const xcb_generic_event_t& event) { handleEvent(event); });
    reloadCurrentDesktop();
    reloadStacking();
    reloadActive();
}

const X11WindowModel::Window* X11WindowModel::window(xcb_window_t window) const {
    auto found = windows_.find(window);
    return found == windows_.end() ? nullptr : &found->second;
}

bool X11WindowModel::isOnCurrentDesktop(const Window& window) const {
    return window.desktop == onEveryDesktop || window.desktop == currentDesktop_;
}

const X11WindowModel::Window* X11WindowModel::windowOf(WindowIdentifier identifier) const {
    const auto* found = window(identifier & ~(generationMask << generationShift));
    return found != nullptr && found->identifier == identifier ? found : nullptr;
}

void X11WindowModel::tell(ChangeKind kind, const Window& window) {
    if (kind == ChangeKind::removed) {
        ++removals_[window.window];
    }
    DesktopWindows::tell(kind, window);
}

void X11WindowModel::sendToWindowManager(xcb_window_t window, xcb_atom_t type,
                                         std::initializer_list<std::uint32_t> data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::copy(data.begin(), data.end(), message.data.data32);
    xcb_send_event(connection_.connection(), 0, connection_.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
}

void X11WindowModel::activate(const Window& window) {
    auto& ewmh = connection_.ewmh();
    const auto time = connection_.lastEventTime();
    if (!isOnCurrentDesktop(window)) {
        sendToWindowManager(connection_.root(), ewmh._NET_CURRENT_DESKTOP, {window.desktop, time});
    }
    sendToWindowManager(window.window, ewmh._NET_ACTIVE_WINDOW,
                        {sourcePager, time, active_.value_or(XCB_NONE)});
    connection_.flush();
}

void X11WindowModel::raise(const Window& window) {
    constexpr std::uint32_t above = 0;
    sendToWindowManager(window.window, connection_.ewmh()._NET_RESTACK_WINDOW,
                        {sourcePager, XCB_NONE, above});
    connection_.flush();
}

void X11WindowModel::setMinimized(const Window& window, bool minimized) {
    if (minimized) {
        constexpr std::uint32_t iconicState = 3;
        sendToWindowManager(window.window, connection_.atom("WM_CHANGE_STATE"), {iconicState});
    } else {
        // Mapping an iconic window asks the window manager to restore it.
        xcb_map_window(connection_.connection(), window.window);
    }
    connection_.flush();
}

void X11WindowModel::handleEvent(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7f;
    auto& ewmh = connection_.ewmh();
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto& notice = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        connection_.noteEventTime(notice.time);
        if (notice.window == connection_.root()) {
            if (notice.atom == ewmh._NET_CLIENT_LIST_STACKING) {
                ++revision_;
                reloadStacking();
            } else if (notice.atom == ewmh._NET_ACTIVE_WINDOW) {
                ++revision_;
                reloadActive();
            } else if (notice.atom == ewmh._NET_CURRENT_DESKTOP) {
                ++revision_;
                reloadCurrentDesktop();
            }
            return;
        }
        auto found = windows_.find(notice.window);
        if (found == windows_.end()) {
            return;
        }
        if (notice.atom == connection_.atom("WM_STATE") &&
            std::find(stacking_.begin(), stacking_.end(), notice.window) == stacking_.end() &&
            !isStillManaged(notice.window)) {
            forget(notice.window);
            return;
        }
        reloadProperty(found->second, notice.atom);
    } else if (type == XCB_CONFIGURE_NOTIFY) {
        const auto& notice = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        auto found = windows_.find(notice.window);
        if (found == windows_.end()) {
            return;
        }
        auto& client = found->second;
        ++revision_;
        // A real notice is relative to the frame, which says nothing of where the window is.
        client.isFrameKnown = (event.response_type & 0x80) != 0;
        if (client.isFrameKnown) {
            client.frame = {
                {static_cast<double>(notice.x) - client.frameLeft,
                 static_cast<double>(notice.y) - client.frameTop},
                {static_cast<double>(notice.width) + client.frameLeft + client.frameRight,
                 static_cast<double>(notice.height) + client.frameTop + client.frameBottom}};
        }
    } else if (type == XCB_DESTROY_NOTIFY) {
        const auto& notice = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
        if (windows_.contains(notice.window)) {
            forget(notice.window);
        }
    }
}

void X11WindowModel::forget(xcb_window_t window) {
    ++revision_;
    const auto gone = windows_.at(window);
    windows_.erase(window);
    std::erase(stacking_, window);
    if (active_ == window) {
        active_.reset();
    }
    tell(ChangeKind::removed, gone);
}

bool X11WindowModel::isStillManaged(xcb_window_t window) {
    // A window manager that quits or restarts leaves WM_STATE on its clients for the next one;
    // one that lets a window go erases it or says Withdrawn. A destroyed window has none.
    const auto property =
        connection_.property(connection_.requestProperty(window, connection_.atom("WM_STATE")));
    const auto state = property ? property->cardinal() : std::nullopt;
    constexpr std::uint32_t normal = 1, iconic = 3;
    return state == normal || state == iconic;
}

void X11WindowModel::reloadCurrentDesktop() {
    auto property = connection_.property(
        connection_.requestProperty(connection_.root(), connection_.ewmh()._NET_CURRENT_DESKTOP));
    currentDesktop_ = property ? property->cardinal().value_or(0) : 0;
}

void X11WindowModel::reloadStacking() {
    auto property = connection_.property(connection_.requestProperty(
        connection_.root(), connection_.ewmh()._NET_CLIENT_LIST_STACKING, 65536));
    std::vector<xcb_window_t> bottomToTop;
    if (property && property->format == 32) {
        for (std::size_t index = 0; index < property->itemCount(); ++index) {
            bottomToTop.push_back(*property->cardinal(index));
        }
    }
    std::vector<xcb_window_t> stacking(bottomToTop.rbegin(), bottomToTop.rend());

    std::vector<xcb_window_t> unlisted;
    for (const auto& [window, client] : windows_) {
        if (std::find(stacking.begin(), stacking.end(), window) == stacking.end()) {
            unlisted.push_back(window);
        }
    }
    std::vector<Window> removed;
    for (auto window : unlisted) {
        if (!isStillManaged(window)) {
            removed.push_back(windows_.at(window));
            windows_.erase(window);
        } else if (std::find(stacking_.begin(), stacking_.end(), window) != stacking_.end()) {
            log().debug(
                "window 0x%{public}x left the client list but is still managed; kept for "
                "the next window manager",
                window);
        }
    }
    std::vector<xcb_window_t> added;
    for (auto window : stacking) {
        if (windows_.contains(window)) {
            continue;
        }
        const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection_.connection(), window, XCB_CW_EVENT_MASK, &mask);
        windows_.emplace(window, read(window));
        added.push_back(window);
    }
    stacking_ = std::move(stacking);
    for (const auto& gone : removed) {
        if (active_ == gone.window) {
            active_.reset();
        }
        tell(ChangeKind::removed, gone);
    }
    for (auto window : added) {
        tell(ChangeKind::added, windows_.at(window));
    }
}

void X11WindowModel::reloadActive() {
    auto property = connection_.property(
        connection_.requestProperty(connection_.root(), connection_.ewmh()._NET_ACTIVE_WINDOW));
    std::optional<xcb_window_t> active;
    if (property && property->cardinal().value_or(0) != 0) {
        active = *property->cardinal();
    }
    if (active == active_) {
        return;
    }
    active_ = active;
    if (active_) {
        if (const auto* client = window(*active_)) {
            tell(ChangeKind::activated, *client);
        }
    }
}

std::optional<ProcessIdentifier> X11WindowModel::processFromResources(xcb_window_t window) {
    xcb_res_client_id_spec_t spec{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    auto* reply = xcb_res_query_client_ids_reply(
        connection_.connection(), xcb_res_query_client_ids(connection_.connection(), 1, &spec),
        nullptr);
    if (reply == nullptr) {
        return std::nullopt;
    }
    std::optional<ProcessIdentifier> process;
    for (auto it = xcb_res_query_client_ids_ids_iterator(reply); it.rem > 0;
         xcb_res_client_id_value_next(&it)) {
        if ((it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 &&
            xcb_res_client_id_value_value_length(it.data) >= 1) {
            const auto value = *xcb_res_client_id_value_value(it.data);
            if (value > 0 && value <= largestProcessIdentifier) {
                process = static_cast<ProcessIdentifier>(value);
            }
        }
    }
    std::free(reply);
    return process;
}

X11WindowModel::Window X11WindowModel::read(xcb_window_t window) {
    Window client;
    client.window = window;
    const auto removals = removals_.find(window);
    client.identifier =
        window |
        ((removals != removals_.end() ? removals->second & generationMask : 0u) << generationShift);
    auto& ewmh = connection_.ewmh();
    const xcb_atom_t properties[] = {
        ewmh._NET_WM_PID,     ewmh._NET_WM_NAME,        XCB_ATOM_WM_NAME,
        XCB_ATOM_WM_CLASS,    ewmh._NET_WM_WINDOW_TYPE, ewmh._NET_WM_STATE,
        ewmh._NET_WM_DESKTOP, ewmh._NET_FRAME_EXTENTS,  connection_.atom("_NET_WM_WINDOW_OPACITY")};
    for (auto property : properties) {
        reloadProperty(client, property);
    }
    if (!client.owner) {
        client.owner = processFromResources(window);
    }
    client.process = applicationOf(client);
    if (client.applicationName.empty() && client.owner) {
        client.applicationName = processName(*client.owner);
    }
    readIcon(client);
    return client;
}

ProcessIdentifier X11WindowModel::applicationOf(const Window& client) {
    if (client.owner == static_cast<ProcessIdentifier>(getpid())) {
        return *client.owner;
    }
    std::string key;
    if (auto path = entryOfClass_ ? entryOfClass_(client.windowInstance, client.windowClass)
                                  : std::nullopt) {
        key = "entry " + *path;
    } else if (!client.windowClass.empty()) {
        key = "class " + client.windowClass;
    } else if (client.owner) {
        return *client.owner;
    } else {
        log().debug("window 0x%{public}x names no class or process; grouped by its X client",
                    client.window);
        return static_cast<ProcessIdentifier>(clientStandIns | (client.window >> 21));
    }
    const auto standIn = static_cast<ProcessIdentifier>(applicationStandIns + applications_.size());
    return applications_.try_emplace(std::move(key), standIn).first->second;
}

void X11WindowModel::reloadProperty(Window& client, xcb_atom_t atom) {
    auto& ewmh = connection_.ewmh();
    if (atom == ewmh._NET_WM_ICON) {
        ++revision_;
        readIcon(client);
        return;
    }
    const bool known = atom == ewmh._NET_WM_PID || atom == ewmh._NET_WM_NAME ||
                       atom == XCB_ATOM_WM_NAME || atom == XCB_ATOM_WM_CLASS ||
                       atom == ewmh._NET_WM_WINDOW_TYPE || atom == ewmh._NET_WM_STATE ||
                       atom == ewmh._NET_WM_DESKTOP || atom == ewmh._NET_FRAME_EXTENTS ||
                       atom == connection_.atom("_NET_WM_WINDOW_OPACITY");
    if (!known) {
        return;
    }
    ++revision_;
    auto property = connection_.property(connection_.requestProperty(client.window, atom));
    if (atom == ewmh._NET_WM_PID) {
        const auto value = property ? property->cardinal() : std::nullopt;
        if (value && *value > 0 && *value <= largestProcessIdentifier) {
            client.owner = static_cast<ProcessIdentifier>(*value);
        } else if (value) {
            log().debug("window 0x%{public}x claims process %{public}u; ignored", client.window,
                        *value);
        }
    } else if (atom == ewmh._NET_WM_NAME || atom == XCB_ATOM_WM_NAME) {
        if (property && property->format == 8) {
            const bool isNetName = atom == ewmh._NET_WM_NAME;
            // The EWMH name wins over the ICCCM one whenever it is set.
            if (isNetName || client.title.empty()) {
                const auto previous = client.title;
                client.title = X11PropertyParsing::boundedText(property->bytes);
                if (previous != client.title && windows_.contains(client.window)) {
                    tell(ChangeKind::titled, client);
                }
            }
        }
    } else if (atom == XCB_ATOM_WM_CLASS) {
        if (property && property->format == 8) {
            client.windowInstance = X11PropertyParsing::boundedText(property->bytes);
            client.windowClass = X11PropertyParsing::windowClass(property->bytes);
            if (!client.windowClass.empty()) {
                client.applicationName = client.windowClass;
            }
        }
    } else if (atom == ewmh._NET_WM_WINDOW_TYPE) {
        client.kind = Kind::normal;
        for (std::size_t index = 0; property && index < property->itemCount(); ++index) {
            const auto type = property->cardinal(index).value_or(0);
            if (type == ewmh._NET_WM_WINDOW_TYPE_NORMAL) {
                client.kind = Kind::normal;
            } else if (type == ewmh._NET_WM_WINDOW_TYPE_DIALOG) {
                client.kind = Kind::dialog;
            } else if (type == ewmh._NET_WM_WINDOW_TYPE_DOCK) {
                client.kind = Kind::dock;
            } else if (type == ewmh._NET_WM_WINDOW_TYPE_DESKTOP) {
                client.kind = Kind::desktop;
            } else if (type == ewmh._NET_WM_WINDOW_TYPE_NOTIFICATION) {
                client.kind = Kind::notification;
            } else if (type == ewmh._NET_WM_WINDOW_TYPE_UTILITY ||
                       type == ewmh._NET_WM_WINDOW_TYPE_TOOLBAR ||
                       type == ewmh._NET_WM_WINDOW_TYPE_MENU ||
                       type == ewmh._NET_WM_WINDOW_TYPE_SPLASH) {
                client.kind = Kind::utility;
            } else {
                continue;
            }
            break;
        }
    } else if (atom == ewmh._NET_WM_STATE) {
        bool hidden = false;
        bool skipsTaskbar = false;
        for (std::size_t index = 0; property && index < property->itemCount(); ++index) {
            const auto state = property->cardinal(index).value_or(0);
            hidden = hidden || state == ewmh._NET_WM_STATE_HIDDEN;
            skipsTaskbar = skipsTaskbar || state == ewmh._NET_WM_STATE_SKIP_TASKBAR;
        }
        const bool changed = hidden != client.isHidden;
        client.isHidden = hidden;
        client.skipsTaskbar = skipsTaskbar;
        if (changed && windows_.contains(client.window)) {
            tell(hidden ? ChangeKind::minimized : ChangeKind::unminimized, client);
        }
    } else if (atom == ewmh._NET_WM_DESKTOP) {
        client.desktop = property ? property->cardinal().value_or(0) : 0;
    } else if (atom == ewmh._NET_FRAME_EXTENTS) {
        client.isFrameKnown = false;
        if (property && property->itemCount() == 4) {
            client.frameLeft = std::min(*property->cardinal(0), 4096u);
            client.frameRight = std::min(*property->cardinal(1), 4096u);
            client.frameTop = std::min(*property->cardinal(2), 4096u);
            client.frameBottom = std::min(*property->cardinal(3), 4096u);
        }
    } else {
        const auto value = property ? property->cardinal() : std::nullopt;
        client.opacity = value ? static_cast<double>(*value) / 0xFFFFFFFFu : 1.0;
    }
}

void X11WindowModel::readIcon(Window& client) {
    // Enough for a 512 by 512 icon and a few smaller ones; a longer property is read in part.
    auto property = connection_.property(
        connection_.requestProperty(client.window, connection_.ewmh()._NET_WM_ICON, 400000));
    client.iconWidth = client.iconHeight = 0;
    client.iconPixels.clear();
    if (!property || property->format != 32) {
        return;
    }
    std::vector<std::uint32_t> values(property->itemCount());
    if (!values.empty()) {
        std::memcpy(values.data(), property->bytes.data(), values.size() * 4);
    }
    auto icon = X11PropertyParsing::bestIcon(values, preferredIconSide);
    if (!icon) {
        log().debug("window 0x%{public}x has a malformed icon; ignored", client.window);
        return;
    }
    client.iconWidth = icon->width;
    client.iconHeight = icon->height;
    client.iconPixels = std::move(icon->pixels);
    // Windows of one application mostly carry the same icon: one identity for the same pixels
    // keeps cards unchanged when another of them comes to the front.
    for (const auto& [window, other] : windows_) {
        if (&other != &client && other.iconGeneration != 0 && other.iconWidth == client.iconWidth &&
            other.iconHeight == client.iconHeight && other.iconPixels == client.iconPixels) {
            client.iconGeneration = other.iconGeneration;
            return;
        }
    }
    client.iconGeneration = ++iconGeneration_;
}

void X11WindowModel::refreshGeometry() {
    auto* connection = connection_.connection();
    std::vector<xcb_window_t> unknown;
    std::vector<std::pair<xcb_get_geometry_cookie_t, xcb_translate_coordinates_cookie_t>> cookies;
    for (auto window : stacking_) {
        auto found = windows_.find(window);
        if (found == windows_.end() || found->second.isFrameKnown) {
            continue;
        }
        unknown.push_back(window);
        cookies.emplace_back(
            xcb_get_geometry(connection, window),
            xcb_translate_coordinates(connection, window, connection_.root(), 0, 0));
    }
    for (std::size_t index = 0; index < unknown.size(); ++index) {
        auto* geometry = xcb_get_geometry_reply(connection, cookies[index].first, nullptr);
        auto* position =
            xcb_translate_coordinates_reply(connection, cookies[index].second, nullptr);
        auto found = windows_.find(unknown[index]);
        if (geometry != nullptr && position != nullptr && found != windows_.end()) {
            auto& client = found->second;
            ++revision_;
            client.isFrameKnown = true;
            client.frame = {
                {static_cast<double>(position->dst_x) - client.frameLeft,
                 static_cast<double>(position->dst_y) - client.frameTop},
                {static_cast<double>(geometry->width) + client.frameLeft + client.frameRight,
                 static_cast<double>(geometry->height) + client.frameTop + client.frameBottom}};
        }
        std::free(geometry);
        std::free(position);
    }
}

}  // namespace orvane
