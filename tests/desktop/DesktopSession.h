// A real desktop for end-to-end tests: Xvfb, Openbox without key bindings, the orvane program,
// and tiny test clients; keys go in through XTest and the tests read what the window manager, the
// X server and the clients saw.
#pragma once

#include <sys/types.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orvane::testing {

class DesktopSession {
  public:
    // The screen's size as Xvfb takes it: "1280x800".
    explicit DesktopSession(const std::string& screen = "1280x800");
    ~DesktopSession();

    bool isReady() const { return connection_ != nullptr; }

    // Starts the program; its standard error goes to `logPath()`.
    void startProgram();
    void stopProgram();
    std::string programLog() const;
    // How often `text` stands in the program's log, every run of the session included.
    std::size_t countInProgramLog(const std::string& text) const;
    // Whether the program has ended by itself (reaped here).
    bool programEnded();
    pid_t programProcess() const { return program_; }

    struct Client {
        pid_t process = 0;
        xcb_window_t window = 0;
    };
    // Starts a client and waits until the window manager lists and focuses its window; clients
    // are one application unless given a class of their own.
    Client startClient(const std::string& title, std::uint32_t colour, bool absurd = false,
                       const std::string& windowClass = "");
    void stopClient(Client& client);
    // A client that holds a key chord, as a window manager's own switcher would; killed by
    // `stopProcess`.
    pid_t startChordHolder(const std::string& chord);
    void stopProcess(pid_t& process);

    // Presses and releases through XTest, by keysym name ("Alt_L", "Tab").
    void press(const std::string& key);
    void release(const std::string& key);
    void tap(const std::string& key);
    // A press and release of a pointer button at a point of the screen.
    void click(std::int16_t x, std::int16_t y, std::uint8_t button);

    std::optional<xcb_window_t> activeWindow();
    // The client window that holds the X input focus (or whose frame does).
    xcb_window_t inputFocus();
    std::vector<std::uint32_t> receivedKeycodes(xcb_window_t window);
    std::uint8_t keycode(const std::string& key);
    // Asks the window manager to activate or minimize a window, as a taskbar would.
    void activate(xcb_window_t window);
    void minimize(xcb_window_t window);
    // Asks the window manager to close a window, as its close button would.
    void close(xcb_window_t window);
    // The client window whose _NET_WM_NAME is `title`, once the window manager lists it.
    std::optional<xcb_window_t> windowTitled(const std::string& title);
    // Every client window the window manager lists with that title, now.
    std::vector<xcb_window_t> windowsTitled(const std::string& title);
    // Sets the keyboard layout with setxkbmap ("us", "dk"), as a user's settings would.
    void setLayout(const std::string& layout);
    // Moves a window to another virtual desktop, as a pager would.
    void moveToDesktop(xcb_window_t window, std::uint32_t desktop);
    std::uint32_t currentDesktop();
    bool isMinimized(xcb_window_t window);
    // A property of 32-bit items (cardinals, atoms, windows) of a window, by the property's name.
    std::vector<std::uint32_t> cardinalProperty(xcb_window_t window, const char* name);
    // The overlay: the override-redirect window the program shows, when on screen.
    std::optional<xcb_window_t> overlayWindow();
    // Pixels of a window's area of the screen, 0xRRGGBB each, row by row; saved as PNG too.
    struct Capture {
        int width = 0, height = 0;
        std::vector<std::uint32_t> pixels;
    };
    Capture capture(xcb_window_t window, const std::filesystem::path& png);

    // Polls until `condition` holds or the time is up; answers the last result.
    static bool waitFor(const std::function<bool()>& condition,
                        std::chrono::milliseconds limit = std::chrono::milliseconds(3000));
    void sync();

    const std::filesystem::path& folder() const { return folder_; }
    // $XDG_DATA_HOME/applications of the program: where tests install desktop entries.
    std::filesystem::path applicationsFolder() const { return folder_ / "data" / "applications"; }
    xcb_connection_t* connection() const { return connection_; }
    xcb_window_t root() const { return root_; }
    // Starts a process on this display, its output appended to `output`.
    pid_t spawn(const std::vector<std::string>& arguments, const std::filesystem::path& output);

  private:
    void waitUntilWindowsAreManaged();
    // Whether the window manager lists the window among its clients.
    bool isManaged(xcb_window_t window);
    xcb_atom_t atom(const char* name);
    std::vector<std::uint32_t> cardinals(xcb_window_t window, xcb_atom_t property);
    void sendToWindowManager(xcb_window_t window, xcb_atom_t type, std::vector<std::uint32_t> data);

    std::filesystem::path folder_;
    std::string display_;
    std::optional<std::string> previousDisplay_;
    pid_t server_ = 0;
    pid_t windowManager_ = 0;
    pid_t program_ = 0;
    xcb_connection_t* connection_ = nullptr;
    xcb_window_t root_ = 0;
};

}  // namespace orvane::testing
