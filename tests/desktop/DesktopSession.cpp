#include "DesktopSession.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon.h>

#include <QImage>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "../common/ChildProcess.h"
#include "InternAtom.h"

namespace orvane::testing {

namespace {

std::string readAll(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

}  // namespace

DesktopSession::DesktopSession(const std::string& screen) {
    char pattern[] = "/tmp/orvane-desktop-XXXXXX";
    folder_ = ::mkdtemp(pattern);
    // Xvfb picks a free display and writes its number to the pipe.
    int pipe[2];
    if (::pipe(pipe) != 0) {
        return;
    }
    server_ = spawn({ORVANE_XVFB_PATH, "-displayfd", std::to_string(pipe[1]), "-screen", "0",
                     screen + "x24", "-nolisten", "tcp"},
                    folder_ / "xvfb.log");
    ::close(pipe[1]);
    std::string number;
    char character = 0;
    while (::read(pipe[0], &character, 1) == 1 && character != '\n') {
        number += character;
    }
    ::close(pipe[0]);
    if (number.empty()) {
        return;
    }
    display_ = ":" + number;
    if (const char* previous = std::getenv("DISPLAY")) {
        previousDisplay_ = previous;
    }
    ::setenv("DISPLAY", display_.c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1);
    ::setenv("XDG_DATA_HOME", (folder_ / "data").c_str(), 1);
    // The program's one-instance socket lives here: sessions side by side don't find each other.
    ::setenv("XDG_RUNTIME_DIR", folder_.c_str(), 1);
    std::filesystem::create_directories(applicationsFolder());
    // Under LeakSanitizer the program reports only leaks of its own.
    const char* leakOptions = std::getenv("LSAN_OPTIONS");
    const std::string suppressions = std::string("suppressions=") + ORVANE_LSAN_SUPPRESSIONS;
    ::setenv("LSAN_OPTIONS",
             (leakOptions ? std::string(leakOptions) + ":" + suppressions : suppressions).c_str(),
             1);
    connection_ = xcb_connect(display_.c_str(), nullptr);
    if (xcb_connection_has_error(connection_) != 0) {
        xcb_disconnect(connection_);
        connection_ = nullptr;
        return;
    }
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    windowManager_ =
        spawn({"openbox", "--config-file", ORVANE_OPENBOX_CONFIG}, folder_ / "openbox.log");
    // The window manager is up once it owns the supporting-check property.
    waitFor([this] { return !cardinals(root_, atom("_NET_SUPPORTING_WM_CHECK")).empty(); },
            std::chrono::milliseconds(10000));
    waitUntilWindowsAreManaged();
}

void DesktopSession::waitUntilWindowsAreManaged() {
    // Openbox names itself a moment before it takes over mapping, and a window mapped in between
    // stays unmanaged for good: map a probe again until the window manager lists it.
    const auto probe = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, probe, root_, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    int polls = 0;
    waitFor(
        [&] {
            if (polls++ % 25 == 0 && !isManaged(probe)) {
                xcb_unmap_window(connection_, probe);
                xcb_map_window(connection_, probe);
                xcb_flush(connection_);
            }
            return isManaged(probe);
        },
        std::chrono::milliseconds(10000));
    xcb_destroy_window(connection_, probe);
    xcb_flush(connection_);
    waitFor([&] { return !isManaged(probe); });
}

bool DesktopSession::isManaged(xcb_window_t window) {
    const auto list = cardinals(root_, atom("_NET_CLIENT_LIST"));
    return std::find(list.begin(), list.end(), window) != list.end();
}

DesktopSession::~DesktopSession() {
    stopProgram();
    if (connection_ != nullptr) {
        xcb_disconnect(connection_);
    }
    stopProcess(windowManager_);
    stopProcess(server_);
    // Another session may still run on the display it replaced.
    if (previousDisplay_) {
        ::setenv("DISPLAY", previousDisplay_->c_str(), 1);
    }
    std::error_code ignored;
    if (std::getenv("ORVANE_KEEP_DESKTOP_FILES") == nullptr) {
        std::filesystem::remove_all(folder_, ignored);
    }
}

pid_t DesktopSession::spawn(const std::vector<std::string>& arguments,
                            const std::filesystem::path& output) {
    return spawnLogged(arguments, output);
}

void DesktopSession::stopProcess(pid_t& process) {
    stopChild(process);
}

void DesktopSession::startProgram() {
    // The log gathers every run of the session: wait for one more launch than it holds now.
    const auto before = countInProgramLog("launch complete");
    program_ = spawn({ORVANE_PROGRAM_PATH, "--log-level", "debug"}, folder_ / "orvane.log");
    waitFor([&] { return countInProgramLog("launch complete") > before; },
            std::chrono::milliseconds(15000));
}

void DesktopSession::stopProgram() {
    stopProcess(program_);
}

bool DesktopSession::programEnded() {
    if (program_ > 0 && ::waitpid(program_, nullptr, WNOHANG) == program_) {
        program_ = 0;
    }
    return program_ == 0;
}

std::size_t DesktopSession::countInProgramLog(const std::string& text) const {
    const auto log = programLog();
    std::size_t count = 0;
    for (auto at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) {
        ++count;
    }
    return count;
}

std::string DesktopSession::programLog() const {
    return readAll(folder_ / "orvane.log");
}

xcb_atom_t DesktopSession::atom(const char* name) {
    return internAtom(connection_, name);
}

std::vector<std::uint32_t> DesktopSession::cardinals(xcb_window_t window, xcb_atom_t property) {
    auto* reply = xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 65536),
        nullptr);
    std::vector<std::uint32_t> values;
    if (reply != nullptr && reply->format == 32) {
        const auto* data = static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
        values.assign(data, data + xcb_get_property_value_length(reply) / 4);
    }
    std::free(reply);
    return values;
}

std::vector<std::uint32_t> DesktopSession::cardinalProperty(xcb_window_t window, const char* name) {
    return cardinals(window, atom(name));
}

DesktopSession::Client DesktopSession::startClient(const std::string& title, std::uint32_t colour,
                                                   bool absurd, const std::string& windowClass) {
    char hex[16];
    std::snprintf(hex, sizeof hex, "%06x", colour);
    Client client;
    std::vector<std::string> arguments{ORVANE_TEST_CLIENT_PATH, title, hex};
    if (absurd) {
        arguments.emplace_back("--absurd");
    } else if (!windowClass.empty()) {
        arguments.push_back(windowClass);
    }
    client.process = spawn(arguments, folder_ / "clients.log");
    const auto known = cardinals(root_, atom("_NET_CLIENT_LIST"));
    waitFor(
        [&] {
            for (auto window : cardinals(root_, atom("_NET_CLIENT_LIST"))) {
                const auto pid = cardinals(window, atom("_NET_WM_PID"));
                const bool isNew = std::find(known.begin(), known.end(), window) == known.end();
                if (!pid.empty() &&
                    (static_cast<pid_t>(pid[0]) == client.process || (absurd && isNew))) {
                    client.window = window;
                    return activeWindow() == window;
                }
            }
            return false;
            // A loaded machine (the sanitizer build beside another job) may take seconds to map it.
        },
        std::chrono::milliseconds(8000));
    return client;
}

void DesktopSession::stopClient(Client& client) {
    stopProcess(client.process);
    const auto window = client.window;
    waitFor([&] { return !isManaged(window); });
    client.window = 0;
}

pid_t DesktopSession::startChordHolder(const std::string& key) {
    const auto holder = spawn({ORVANE_TEST_CLIENT_PATH, "--hold", std::to_string(keycode(key))},
                              folder_ / "clients.log");
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    return holder;
}

std::uint8_t DesktopSession::keycode(const std::string& key) {
    auto* symbols = xcb_key_symbols_alloc(connection_);
    const auto keysym = xkb_keysym_from_name(key.c_str(), XKB_KEYSYM_NO_FLAGS);
    auto* codes = xcb_key_symbols_get_keycode(symbols, keysym);
    const std::uint8_t code = codes != nullptr ? codes[0] : 0;
    std::free(codes);
    xcb_key_symbols_free(symbols);
    return code;
}

void DesktopSession::press(const std::string& key) {
    xcb_test_fake_input(connection_, XCB_KEY_PRESS, keycode(key), XCB_CURRENT_TIME, XCB_NONE, 0, 0,
                        0);
    sync();
}

void DesktopSession::release(const std::string& key) {
    xcb_test_fake_input(connection_, XCB_KEY_RELEASE, keycode(key), XCB_CURRENT_TIME, XCB_NONE, 0,
                        0, 0);
    sync();
}

void DesktopSession::click(std::int16_t x, std::int16_t y, std::uint8_t button) {
    xcb_test_fake_input(connection_, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root(), x, y, 0);
    xcb_test_fake_input(connection_, XCB_BUTTON_PRESS, button, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_test_fake_input(connection_, XCB_BUTTON_RELEASE, button, XCB_CURRENT_TIME, XCB_NONE, 0, 0,
                        0);
    sync();
}

void DesktopSession::tap(const std::string& key) {
    press(key);
    release(key);
}

void DesktopSession::sync() {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    // The program answers frozen key events on its own connection: give it a moment to.
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
}

std::optional<xcb_window_t> DesktopSession::activeWindow() {
    const auto values = cardinals(root_, atom("_NET_ACTIVE_WINDOW"));
    if (values.empty() || values[0] == XCB_NONE) {
        return std::nullopt;
    }
    return values[0];
}

xcb_window_t DesktopSession::inputFocus() {
    auto* reply = xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr);
    const xcb_window_t focus = reply ? reply->focus : XCB_NONE;
    std::free(reply);
    return focus;
}

std::vector<std::uint32_t> DesktopSession::receivedKeycodes(xcb_window_t window) {
    return cardinals(window, atom("_ORVANE_RECEIVED"));
}

void DesktopSession::sendToWindowManager(xcb_window_t window, xcb_atom_t type,
                                         std::vector<std::uint32_t> data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::copy(data.begin(), data.end(), message.data.data32);
    xcb_send_event(connection_, 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(connection_);
}

void DesktopSession::activate(xcb_window_t window) {
    sendToWindowManager(window, atom("_NET_ACTIVE_WINDOW"), {2, XCB_CURRENT_TIME, 0});
    waitFor([&] { return activeWindow() == window; });
}

void DesktopSession::minimize(xcb_window_t window) {
    sendToWindowManager(window, atom("WM_CHANGE_STATE"), {3});
    waitFor([&] { return isMinimized(window); });
}

void DesktopSession::close(xcb_window_t window) {
    sendToWindowManager(window, atom("_NET_CLOSE_WINDOW"), {XCB_CURRENT_TIME, 2});
    waitFor([&] { return !isManaged(window); });
}

std::vector<xcb_window_t> DesktopSession::windowsTitled(const std::string& title) {
    std::vector<xcb_window_t> found;
    for (auto window : cardinals(root_, atom("_NET_CLIENT_LIST"))) {
        auto* reply =
            xcb_get_property_reply(connection_,
                                   xcb_get_property(connection_, 0, window, atom("_NET_WM_NAME"),
                                                    XCB_GET_PROPERTY_TYPE_ANY, 0, 1024),
                                   nullptr);
        if (reply != nullptr &&
            std::string(static_cast<const char*>(xcb_get_property_value(reply)),
                        static_cast<std::size_t>(xcb_get_property_value_length(reply))) == title) {
            found.push_back(window);
        }
        std::free(reply);
    }
    return found;
}

std::optional<xcb_window_t> DesktopSession::windowTitled(const std::string& title) {
    std::optional<xcb_window_t> found;
    waitFor([&] {
        const auto windows = windowsTitled(title);
        if (!windows.empty()) {
            found = windows.back();
        }
        return found.has_value();
    });
    return found;
}

void DesktopSession::setLayout(const std::string& layout) {
    const auto process = spawn({"setxkbmap", "-layout", layout}, folder_ / "clients.log");
    if (process > 0) {
        ::waitpid(process, nullptr, 0);
    }
    sync();
}

void DesktopSession::moveToDesktop(xcb_window_t window, std::uint32_t desktop) {
    sendToWindowManager(window, atom("_NET_WM_DESKTOP"), {desktop, 2});
    waitFor([&] {
        const auto values = cardinals(window, atom("_NET_WM_DESKTOP"));
        return !values.empty() && values[0] == desktop;
    });
}

std::uint32_t DesktopSession::currentDesktop() {
    const auto values = cardinals(root_, atom("_NET_CURRENT_DESKTOP"));
    return values.empty() ? 0 : values[0];
}

bool DesktopSession::isMinimized(xcb_window_t window) {
    const auto hidden = atom("_NET_WM_STATE_HIDDEN");
    for (auto state : cardinals(window, atom("_NET_WM_STATE"))) {
        if (state == hidden) {
            return true;
        }
    }
    return false;
}

std::optional<xcb_window_t> DesktopSession::overlayWindow() {
    auto* tree = xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root_), nullptr);
    std::optional<xcb_window_t> found;
    if (tree != nullptr) {
        const auto* children = xcb_query_tree_children(tree);
        for (int index = 0; index < xcb_query_tree_children_length(tree); ++index) {
            auto* attributes = xcb_get_window_attributes_reply(
                connection_, xcb_get_window_attributes(connection_, children[index]), nullptr);
            if (attributes != nullptr && attributes->override_redirect &&
                attributes->map_state == XCB_MAP_STATE_VIEWABLE) {
                auto* name = xcb_get_property_reply(
                    connection_,
                    xcb_get_property(connection_, 0, children[index], XCB_ATOM_WM_NAME,
                                     XCB_GET_PROPERTY_TYPE_ANY, 0, 64),
                    nullptr);
                auto* geometry = xcb_get_geometry_reply(
                    connection_, xcb_get_geometry(connection_, children[index]), nullptr);
                // Between gestures the panel waits mapped, far outside the screen.
                const bool onScreen =
                    geometry != nullptr && geometry->x > -1000 && geometry->y > -1000;
                if (name != nullptr && onScreen &&
                    std::string(static_cast<const char*>(xcb_get_property_value(name)),
                                static_cast<std::size_t>(xcb_get_property_value_length(name))) ==
                        "Orvane overlay") {
                    found = children[index];
                }
                std::free(geometry);
                std::free(name);
            }
            std::free(attributes);
        }
        std::free(tree);
    }
    return found;
}

DesktopSession::Capture DesktopSession::capture(xcb_window_t window,
                                                const std::filesystem::path& png) {
    Capture capture;
    auto* geometry =
        xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr);
    if (geometry == nullptr) {
        return capture;
    }
    auto* image = xcb_get_image_reply(
        connection_,
        xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, geometry->x, geometry->y,
                      geometry->width, geometry->height, ~0u),
        nullptr);
    if (image != nullptr &&
        xcb_get_image_data_length(image) >= geometry->width * geometry->height * 4) {
        capture.width = geometry->width;
        capture.height = geometry->height;
        const auto* data = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image));
        capture.pixels.assign(data, data + capture.width * capture.height);
        for (auto& pixel : capture.pixels) {
            pixel &= 0xFFFFFF;
        }
        QImage picture(reinterpret_cast<const uchar*>(capture.pixels.data()), capture.width,
                       capture.height, capture.width * 4, QImage::Format_RGB32);
        picture.save(QString::fromStdString(png.string()));
    }
    std::free(image);
    std::free(geometry);
    return capture;
}

bool DesktopSession::waitFor(const std::function<bool()>& condition,
                             std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return condition();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

}  // namespace orvane::testing
