// A headless sway of a test's own, with its Wayland socket, its IPC and clients on it. sway
// refuses to run as root: run by root, the compositor runs as the unprivileged user
// `orvane-sway`, which the test script creates.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvane::testing {

class SwaySession {
  public:
    explicit SwaySession(const std::string& resolution = "1280x800");
    ~SwaySession();
    SwaySession(const SwaySession&) = delete;
    SwaySession& operator=(const SwaySession&) = delete;

    // Whether the compositor answers; else `problem()` says why.
    bool isReady() const { return !display_.empty(); }
    const std::string& problem() const { return problem_; }
    // WAYLAND_DISPLAY for a client: the socket's full path.
    const std::string& display() const { return display_; }
    const std::string& ipcSocket() const { return ipcSocket_; }

    // A foot window with this title and app_id, once sway lists it.
    pid_t startClient(const std::string& title, const std::string& appId,
                      const std::vector<std::string>& command = {"sleep", "600"});
    void stopProcess(pid_t& process);

    struct ProgramOptions {
        // Without the IPC Orvane runs as on a compositor it cannot bind on.
        bool withIpc = true;
        // Whole stacks for LeakSanitizer, for a run that shows Qt's own windows: Mesa leaks what
        // it sets up for them from modules that are gone by the report. Slows every allocation.
        bool wholeStacks = false;
    };
    // Orvane on this sway, its log in the session's folder, once it says it has launched; false
    // when it did not within 15 s.
    bool startProgram(ProgramOptions options);
    bool startProgram() { return startProgram(ProgramOptions{}); }
    // `orvane --gesture NAME` for the running Orvane, as a compositor's binding runs it.
    void sendGesture(const std::string& name) const;
    void stopProgram();
    pid_t programProcess() const { return program_; }
    std::string programLog() const;
    // Types through a virtual keyboard, as `wtype` is told: one call holds a modifier across a
    // whole gesture (`-M alt -k Tab -s 300 -m alt`).
    void type(const std::vector<std::string>& arguments) const;
    // The binding events sway sent while `action` ran, as swaymsg prints them.
    std::string bindingEventsWhile(const std::function<void()>& action) const;
    const std::filesystem::path& folder() const { return folder_; }

    // What swaymsg prints for these arguments.
    std::string swaymsg(const std::vector<std::string>& arguments) const;
    // The title of the window sway has focused; nothing when none is.
    std::optional<std::string> focusedTitle() const;
    // The focused window's title once it is `title`, else whatever it is after three seconds.
    std::string focusedTitleOnceIt(const std::string& title) const;
    // Every title sway shows, in its tree's order.
    std::vector<std::string> titles() const;
    std::string log() const;

  private:
    // Where the program keeps its settings and its single-instance socket.
    std::vector<std::string> programEnvironment(bool wholeStacks = false) const;
    // Every title of sway's tree, and the focused one's.
    std::pair<std::vector<std::string>, std::optional<std::string>> tree() const;

    std::filesystem::path folder_;
    std::string display_;
    std::string ipcSocket_;
    std::string problem_;
    pid_t compositor_ = 0;
    pid_t program_ = 0;
    std::vector<pid_t> clients_;
};

}  // namespace orvane::testing
