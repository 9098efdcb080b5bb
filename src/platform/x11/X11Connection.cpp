#include "platform/x11/X11Connection.h"

#include <cstdlib>
#include <cstring>

#include "core/Logger.h"

namespace orvane {

namespace {

const Logger& log() {
    return Logger::forCategory(LogCategory::lifecycle);
}

}  // namespace

std::unique_ptr<X11Connection> X11Connection::open(const char* displayName) {
    int screenNumber = 0;
    xcb_connection_t* connection = xcb_connect(displayName, &screenNumber);
    if (connection == nullptr || xcb_connection_has_error(connection) != 0) {
        log().error("cannot connect to the X display %{public}s",
                    displayName ? displayName
                                : (std::getenv("DISPLAY") ? std::getenv("DISPLAY") : "(unset)"));
        if (connection != nullptr) {
            xcb_disconnect(connection);
        }
        return nullptr;
    }
    auto iterator = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int index = 0; index < screenNumber && iterator.rem > 0; ++index) {
        xcb_screen_next(&iterator);
    }
    if (iterator.rem == 0) {
        log().error("the X display has no screen %{public}d", screenNumber);
        xcb_disconnect(connection);
        return nullptr;
    }
    return std::unique_ptr<X11Connection>(new X11Connection(connection, iterator.data));
}

X11Connection::X11Connection(xcb_connection_t* connection, xcb_screen_t* screen)
    : connection_(connection), screen_(screen) {
    auto* cookies = xcb_ewmh_init_atoms(connection_, &ewmh_);
    if (xcb_ewmh_init_atoms_replies(&ewmh_, cookies, nullptr) == 0) {
        log().error("EWMH atoms could not be interned; window management will not work");
    }
}

X11Connection::~X11Connection() {
    xcb_ewmh_connection_wipe(&ewmh_);
    xcb_disconnect(connection_);
}

int X11Connection::fileDescriptor() const {
    return xcb_get_file_descriptor(connection_);
}

xcb_atom_t X11Connection::atom(const std::string& name) {
    for (const auto& [known, value] : atoms_) {
        if (known == name) {
            return value;
        }
    }
    auto cookie =
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    xcb_atom_t value = XCB_ATOM_NONE;
    if (auto* reply = xcb_intern_atom_reply(connection_, cookie, nullptr)) {
        value = reply->atom;
        std::free(reply);
    }
    atoms_.emplace_back(name, value);
    return value;
}

void X11Connection::addListener(EventListener listener) {
    listeners_.push_back(std::move(listener));
}

void X11Connection::noteEventTime(xcb_timestamp_t time) {
    if (time != XCB_CURRENT_TIME) {
        lastEventTime_ = time;
    }
}

void X11Connection::dispatchPendingEvents() {
    if (lost_) {
        return;
    }
    while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
        if (event->response_type == 0) {
            const auto* error = reinterpret_cast<const xcb_generic_error_t*>(event);
            Logger::forCategory(LogCategory::windowenumeration)
                .debug(
                    "X error %{public}d on request %{public}d.%{public}d (resource 0x%{public}x)",
                    error->error_code, error->major_code, error->minor_code, error->resource_id);
        } else {
            for (const auto& listener : listeners_) {
                listener(*event);
            }
        }
        std::free(event);
    }
    // Said once: a dead connection reads as readable for ever after.
    if (xcb_connection_has_error(connection_) != 0) {
        lost_ = true;
        log().error("the connection to the X display is lost");
        if (lostHandler_) {
            lostHandler_();
        }
    }
}

xcb_get_property_cookie_t X11Connection::requestProperty(xcb_window_t window, xcb_atom_t property,
                                                         std::uint32_t maximumLongs) {
    return xcb_get_property(connection_, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0,
                            maximumLongs);
}

std::optional<X11Connection::Property> X11Connection::property(xcb_get_property_cookie_t cookie) {
    xcb_generic_error_t* error = nullptr;
    auto* reply = xcb_get_property_reply(connection_, cookie, &error);
    std::free(error);
    if (reply == nullptr) {
        return std::nullopt;
    }
    std::optional<Property> result;
    if (reply->type != XCB_ATOM_NONE) {
        Property property;
        property.type = reply->type;
        property.format = reply->format;
        const auto length = static_cast<std::size_t>(xcb_get_property_value_length(reply));
        const auto* value = static_cast<const std::uint8_t*>(xcb_get_property_value(reply));
        property.bytes.assign(value, value + length);
        result = std::move(property);
    }
    std::free(reply);
    return result;
}

std::size_t X11Connection::Property::itemCount() const {
    return format == 0 ? 0 : bytes.size() / (format / 8);
}

std::optional<std::uint32_t> X11Connection::Property::cardinal(std::size_t index) const {
    if (format != 32 || index >= itemCount()) {
        return std::nullopt;
    }
    std::uint32_t value = 0;
    std::memcpy(&value, bytes.data() + index * 4, 4);
    return value;
}

std::string X11Connection::windowManagerName() {
    const auto check = property(requestProperty(root(), atom("_NET_SUPPORTING_WM_CHECK"), 1));
    const auto window = check ? check->cardinal() : std::nullopt;
    if (!window) {
        return {};
    }
    const auto name = property(requestProperty(*window, atom("_NET_WM_NAME"), 64));
    if (!name || name->format != 8) {
        return {};
    }
    return std::string(name->bytes.begin(), name->bytes.end());
}

}  // namespace orvane
