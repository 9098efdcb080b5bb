// The yardstick for the desktop benchmark: the least a switcher can do on the same key. It grabs
// Alt+Tab, maps a prepared override-redirect window filled with one colour on the press, and on
// the release of Alt unmaps it and asks the window manager to activate the window below the top.
// With a size, the window is that large and its picture a pixmap on the server, its background,
// drawn once at start: showing it is a map and nothing else.
//   orvane-minimal-switcher TAB-KEYCODE ALT-KEYCODE [WIDTH HEIGHT]

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "InternAtom.h"

int main(int argc, char** argv) {
    if (argc < 3) {
        return 2;
    }
    const auto tab = static_cast<xcb_keycode_t>(std::atoi(argv[1]));
    const auto alt = static_cast<xcb_keycode_t>(std::atoi(argv[2]));
    auto* connection = xcb_connect(nullptr, nullptr);
    auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const auto root = screen->root;
    const auto stacking = orvane::testing::internAtom(connection, "_NET_CLIENT_LIST_STACKING");
    const auto activeWindow = orvane::testing::internAtom(connection, "_NET_ACTIVE_WINDOW");

    const bool prepared = argc > 4;
    const auto width = static_cast<std::uint16_t>(prepared ? std::atoi(argv[3]) : 680);
    const auto height = static_cast<std::uint16_t>(prepared ? std::atoi(argv[4]) : 200);
    const xcb_window_t panel = xcb_generate_id(connection);
    const xcb_gcontext_t context = xcb_generate_id(connection);
    const std::uint32_t foreground = 0x0a84ff;
    xcb_create_gc(connection, context, root, XCB_GC_FOREGROUND, &foreground);
    std::uint32_t background = 0x262628;
    if (prepared) {
        const xcb_pixmap_t picture = xcb_generate_id(connection);
        xcb_create_pixmap(connection, screen->root_depth, picture, root, width, height);
        const std::uint32_t panelColour = 0x262628;
        xcb_change_gc(connection, context, XCB_GC_FOREGROUND, &panelColour);
        const xcb_rectangle_t whole{0, 0, width, height};
        xcb_poly_fill_rectangle(connection, picture, context, 1, &whole);
        xcb_change_gc(connection, context, XCB_GC_FOREGROUND, &foreground);
        for (std::int16_t x = 20; x + 200 < width; x += 220) {
            const xcb_rectangle_t card{x, 20, 200, 160};
            xcb_poly_fill_rectangle(connection, picture, context, 1, &card);
        }
        background = picture;
    }
    const std::uint32_t values[] = {background, 1};
    xcb_create_window(
        connection, XCB_COPY_FROM_PARENT, panel, root, 100, 100, width, height, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
        (prepared ? XCB_CW_BACK_PIXMAP : XCB_CW_BACK_PIXEL) | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_grab_key(connection, 1, root, XCB_MOD_MASK_1, tab, XCB_GRAB_MODE_ASYNC,
                 XCB_GRAB_MODE_ASYNC);
    xcb_flush(connection);

    while (auto* event = xcb_wait_for_event(connection)) {
        const auto type = event->response_type & 0x7f;
        if (type == XCB_KEY_PRESS &&
            reinterpret_cast<xcb_key_press_event_t*>(event)->detail == tab) {
            xcb_grab_keyboard(connection, 0, root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                              XCB_GRAB_MODE_ASYNC);
            xcb_map_window(connection, panel);
            if (!prepared) {
                const xcb_rectangle_t card{20, 20, 200, 160};
                xcb_poly_fill_rectangle(connection, panel, context, 1, &card);
            }
            xcb_flush(connection);
        } else if (type == XCB_KEY_RELEASE &&
                   reinterpret_cast<xcb_key_release_event_t*>(event)->detail == alt) {
            xcb_ungrab_keyboard(connection, XCB_CURRENT_TIME);
            xcb_unmap_window(connection, panel);
            auto* reply = xcb_get_property_reply(
                connection,
                xcb_get_property(connection, 0, root, stacking, XCB_ATOM_WINDOW, 0, 1024), nullptr);
            if (reply != nullptr && xcb_get_property_value_length(reply) >= 8) {
                const auto* windows =
                    static_cast<const xcb_window_t*>(xcb_get_property_value(reply));
                const int count = xcb_get_property_value_length(reply) / 4;
                xcb_client_message_event_t message{};
                message.response_type = XCB_CLIENT_MESSAGE;
                message.format = 32;
                message.window = windows[count - 2];
                message.type = activeWindow;
                message.data.data32[0] = 2;
                xcb_send_event(
                    connection, 0, root,
                    XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                    reinterpret_cast<const char*>(&message));
            }
            std::free(reply);
            xcb_flush(connection);
        }
        std::free(event);
    }
    return 0;
}
