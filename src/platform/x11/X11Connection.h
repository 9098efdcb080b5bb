// The program's own connection to the X server: the atoms it speaks, the root window, and one
// dispatch of the server's events to whichever part of the backend listens. Read by the program's
// one event loop through `fileDescriptor()` and `dispatchPendingEvents()`.
#pragma once

#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

class X11Connection {
  public:
    using EventListener = std::function<void(const xcb_generic_event_t& event)>;

    // Nothing, after an error line, when no display can be reached.
    static std::unique_ptr<X11Connection> open(const char* displayName = nullptr);
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    xcb_connection_t* connection() const { return connection_; }
    xcb_ewmh_connection_t& ewmh() { return ewmh_; }
    xcb_window_t root() const { return screen_->root; }
    xcb_screen_t& screen() const { return *screen_; }
    int fileDescriptor() const;

    // Interned once; 0 when the server refused.
    xcb_atom_t atom(const std::string& name);

    // Listeners hear every event in arrival order; extension events come through too.
    void addListener(EventListener listener);
    // Hands every event already read or readable without blocking to the listeners. Errors of
    // requests whose window vanished meanwhile are expected on a desktop: they are logged at debug
    // level and absorbed.
    void dispatchPendingEvents();
    // Called once when the connection breaks (the X server went away); nothing is read after.
    void setLostHandler(std::function<void()> handler) { lostHandler_ = std::move(handler); }
    bool isLost() const { return lost_; }
    void flush() { xcb_flush(connection_); }

    // The time of the last event that carried one: the timestamp window-manager requests need.
    xcb_timestamp_t lastEventTime() const { return lastEventTime_; }
    void noteEventTime(xcb_timestamp_t time);

    // Reads a whole property of any type; nothing when the window or the property is gone.
    struct Property {
        xcb_atom_t type = 0;
        std::uint8_t format = 0;
        std::vector<std::uint8_t> bytes;
        std::size_t itemCount() const;
        std::optional<std::uint32_t> cardinal(std::size_t index = 0) const;
    };
    xcb_get_property_cookie_t requestProperty(xcb_window_t window, xcb_atom_t property,
                                              std::uint32_t maximumLongs = 4096);
    std::optional<Property> property(xcb_get_property_cookie_t cookie);

    // The running window manager's name as it announces itself ("Openbox"); empty when none
    // does.
    std::string windowManagerName();

  private:
    X11Connection(xcb_connection_t* connection, xcb_screen_t* screen);

    xcb_connection_t* connection_;
    xcb_screen_t* screen_;
    xcb_ewmh_connection_t ewmh_{};
    std::vector<EventListener> listeners_;
    std::vector<std::pair<std::string, xcb_atom_t>> atoms_;
    xcb_timestamp_t lastEventTime_ = XCB_CURRENT_TIME;
    bool lost_ = false;
    std::function<void()> lostHandler_;
};

}  // namespace orvane
