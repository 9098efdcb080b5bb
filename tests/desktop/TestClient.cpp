// A tiny X client for the end-to-end tests: one window with a title, a process, a solid colour
// and an icon of the inverse colour (so that a card tells a preview from an icon), that records
// every key it receives (the key codes, appended to its _ORVANE_RECEIVED property) and quits when
// the window manager closes it. With --hold it holds Alt+Tab instead, as a window manager's own
// switcher does, until it is killed. With --absurd after the colour it claims an impossible
// process, a title of 200 KB and an icon whose sizes lie, as a broken client might; a CLASS there
// is its WM_CLASS class instead of OrvaneTestClient.
//   orvane-test-client TITLE RRGGBB [--absurd | CLASS]
//   orvane-test-client --hold TAB-KEYCODE

#include <unistd.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "InternAtom.h"

int main(int argc, char** argv) {
    if (argc < 3) {
        return 2;
    }
    if (std::string(argv[1]) == "--hold") {
        auto* connection = xcb_connect(nullptr, nullptr);
        auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        const auto keycode = static_cast<xcb_keycode_t>(std::atoi(argv[2]));
        auto* error = xcb_request_check(
            connection, xcb_grab_key_checked(connection, 1, screen->root, XCB_MOD_MASK_1, keycode,
                                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        if (error != nullptr) {
            return 1;
        }
        while (auto* event = xcb_wait_for_event(connection)) {
            std::free(event);
        }
        return 0;
    }
    const bool absurd = argc > 3 && std::string(argv[3]) == "--absurd";
    const std::string title = absurd ? std::string(argv[1]) + std::string(200000, 'x') : argv[1];
    const std::uint32_t colour = static_cast<std::uint32_t>(std::strtoul(argv[2], nullptr, 16));
    auto* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) {
        return 1;
    }
    auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_window_t window = xcb_generate_id(connection);
    const std::uint32_t values[] = {colour, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_EXPOSURE |
                                                XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 360, 240, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    auto set = [&](xcb_atom_t property, xcb_atom_t type, std::uint8_t format, std::uint32_t count,
                   const void* data) {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, property, type, format,
                            count, data);
    };
    const auto utf8 = orvane::testing::internAtom(connection, "UTF8_STRING");
    set(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(title.size()),
        title.data());
    set(orvane::testing::internAtom(connection, "_NET_WM_NAME"), utf8, 8,
        static_cast<std::uint32_t>(title.size()), title.data());
    const std::string wmClass = std::string("orvane-test-client") + '\0' +
                                (argc > 3 && !absurd ? argv[3] : "OrvaneTestClient") + '\0';
    set(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(wmClass.size()),
        wmClass.data());
    const std::uint32_t pid = absurd ? 0xFFFFFFFFu : static_cast<std::uint32_t>(getpid());
    set(orvane::testing::internAtom(connection, "_NET_WM_PID"), XCB_ATOM_CARDINAL, 32, 1, &pid);
    std::vector<std::uint32_t> icon{absurd ? 100000u : 16u, 16};
    icon.resize(2 + 256, 0xFF000000u | (~colour & 0xFFFFFFu));
    set(orvane::testing::internAtom(connection, "_NET_WM_ICON"), XCB_ATOM_CARDINAL, 32,
        static_cast<std::uint32_t>(icon.size()), icon.data());
    // WM_HINTS: input hint set, so the window manager gives it the focus.
    const std::uint32_t hints[9] = {1, 1, 0, 0, 0, 0, 0, 0, 0};
    set(XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, 32, 9, hints);
    const auto protocols = orvane::testing::internAtom(connection, "WM_PROTOCOLS");
    const auto deleteWindow = orvane::testing::internAtom(connection, "WM_DELETE_WINDOW");
    set(protocols, XCB_ATOM_ATOM, 32, 1, &deleteWindow);
    const auto received = orvane::testing::internAtom(connection, "_ORVANE_RECEIVED");
    set(received, XCB_ATOM_CARDINAL, 32, 0, nullptr);
    xcb_map_window(connection, window);
    xcb_flush(connection);

    while (auto* event = xcb_wait_for_event(connection)) {
        const auto type = event->response_type & 0x7f;
        if (type == XCB_KEY_PRESS) {
            const std::uint32_t keycode = reinterpret_cast<xcb_key_press_event_t*>(event)->detail;
            xcb_change_property(connection, XCB_PROP_MODE_APPEND, window, received,
                                XCB_ATOM_CARDINAL, 32, 1, &keycode);
            xcb_flush(connection);
        } else if (type == XCB_CLIENT_MESSAGE) {
            const auto* message = reinterpret_cast<xcb_client_message_event_t*>(event);
            if (message->type == protocols && message->data.data32[0] == deleteWindow) {
                std::free(event);
                break;
            }
        }
        std::free(event);
    }
    xcb_disconnect(connection);
    return 0;
}
