#include "SwaySession.h"

#include <pwd.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "../common/ChildProcess.h"

namespace orvane::testing {

namespace {

constexpr const char* unprivilegedUser = "orvane-sway";

template <typename Condition>
bool waitFor(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(5)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

std::string readAll(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// Every title of the tree's windows, depth first, with the focused one's.
void collectTitles(const nlohmann::json& node, std::vector<std::string>& titles,
                   std::optional<std::string>& focused) {
    if (node.contains("pid") && node.value("name", nlohmann::json()).is_string()) {
        const auto name = node["name"].get<std::string>();
        titles.push_back(name);
        if (node.value("focused", false)) {
            focused = name;
        }
    }
    for (const char* children : {"nodes", "floating_nodes"}) {
        if (node.contains(children)) {
            for (const auto& child : node[children]) {
                collectTitles(child, titles, focused);
            }
        }
    }
}

}  // namespace

SwaySession::SwaySession(const std::string& resolution) {
    char pattern[] = "/tmp/orvane-sway-XXXXXX";
    if (::mkdtemp(pattern) == nullptr) {
        problem_ = "no temporary folder";
        return;
    }
    folder_ = pattern;
    std::vector<std::string> command;
    if (::geteuid() == 0) {
        const passwd* user = ::getpwnam(unprivilegedUser);
        if (user == nullptr) {
            problem_ = std::string("sway refuses root, and the user ") + unprivilegedUser +
                       " to run it does not exist (scripts/test.sh makes it)";
            return;
        }
        if (::chown(folder_.c_str(), user->pw_uid, user->pw_gid) != 0) {
            problem_ =
                "the compositor's folder could not be handed to " + std::string(unprivilegedUser);
            return;
        }
        command = {"runuser", "-u", unprivilegedUser, "--"};
    }
    std::ofstream(folder_ / "config") << "output HEADLESS-1 resolution " << resolution << "\n"
                                      << "default_border none\n";
    for (const auto* argument : {"env", "-u", "WAYLAND_DISPLAY", "-u", "DISPLAY"}) {
        command.emplace_back(argument);
    }
    command.push_back("XDG_RUNTIME_DIR=" + folder_.string());
    for (const auto* argument : {"WLR_BACKENDS=headless", "WLR_RENDERER=pixman",
                                 "WLR_LIBINPUT_NO_DEVICES=1", "sway", "-c"}) {
        command.emplace_back(argument);
    }
    command.push_back((folder_ / "config").string());
    compositor_ = spawnLogged(command, folder_ / "sway.log");
    std::filesystem::path socket, ipc;
    waitFor([&] {
        std::error_code ignored;
        for (const auto& entry : std::filesystem::directory_iterator(folder_, ignored)) {
            const auto name = entry.path().filename().string();
            if (name.rfind("wayland-", 0) == 0 && name.find('.') == std::string::npos) {
                socket = entry.path();
            } else if (name.rfind("sway-ipc.", 0) == 0) {
                ipc = entry.path();
            }
        }
        return !socket.empty() && !ipc.empty();
    });
    if (socket.empty() || ipc.empty()) {
        problem_ = "sway did not start: " + readAll(folder_ / "sway.log");
        return;
    }
    display_ = socket.string();
    ipcSocket_ = ipc.string();
}

SwaySession::~SwaySession() {
    stopChild(program_);
    for (auto& client : clients_) {
        stopProcess(client);
    }
    stopProcess(compositor_);
    if (!folder_.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
}

void SwaySession::stopProcess(pid_t& process) {
    const auto stopping = process;
    stopChild(process);
    std::erase(clients_, stopping);
}

pid_t SwaySession::startClient(const std::string& title, const std::string& appId,
                               const std::vector<std::string>& command) {
    std::vector<std::string> arguments{"foot", "--title", title, "--app-id", appId};
    arguments.insert(arguments.end(), command.begin(), command.end());
    const auto process = spawnLogged(arguments, folder_ / ("client-" + appId + ".log"),
                                     {"WAYLAND_DISPLAY=" + display_});
    if (process > 0) {
        clients_.push_back(process);
        waitFor([&] {
            const auto shown = titles();
            return std::find(shown.begin(), shown.end(), title) != shown.end();
        });
    }
    return process;
}

std::string SwaySession::swaymsg(const std::vector<std::string>& arguments) const {
    std::string command = "swaymsg -s '" + ipcSocket_ + "'";
    for (const auto& argument : arguments) {
        command += " '" + argument + "'";
    }
    std::string text;
    if (FILE* pipe = ::popen(command.c_str(), "r")) {
        char buffer[4096];
        while (const auto count = std::fread(buffer, 1, sizeof buffer, pipe)) {
            text.append(buffer, count);
        }
        ::pclose(pipe);
    }
    return text;
}

std::pair<std::vector<std::string>, std::optional<std::string>> SwaySession::tree() const {
    std::pair<std::vector<std::string>, std::optional<std::string>> result;
    const auto tree = nlohmann::json::parse(swaymsg({"-t", "get_tree"}), nullptr, false);
    if (!tree.is_discarded()) {
        collectTitles(tree, result.first, result.second);
    }
    return result;
}

std::vector<std::string> SwaySession::titles() const {
    return tree().first;
}

std::string SwaySession::focusedTitleOnceIt(const std::string& title) const {
    waitFor([&] { return focusedTitle() == title; }, std::chrono::seconds(3));
    return focusedTitle().value_or("");
}

std::optional<std::string> SwaySession::focusedTitle() const {
    return tree().second;
}

std::vector<std::string> SwaySession::programEnvironment(bool wholeStacks) const {
    const auto home = folder_ / "home";
    const auto runtime = folder_ / "orvane-runtime";
    std::filesystem::create_directories(home);
    std::filesystem::create_directories(runtime);
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::replace);
    // Under LeakSanitizer the program reports only leaks of its own.
    const char* suppressions = std::getenv("LSAN_OPTIONS");
    const std::string ours = std::string(wholeStacks ? "fast_unwind_on_malloc=0:" : "") +
                             "suppressions=" + ORVANE_LSAN_SUPPRESSIONS;
    return {"LSAN_OPTIONS=" + (suppressions ? std::string(suppressions) + ":" + ours : ours),
            "WAYLAND_DISPLAY=" + display_,
            "HOME=" + home.string(),
            "XDG_CONFIG_HOME=" + (home / ".config").string(),
            "XDG_DATA_HOME=" + (home / ".local/share").string(),
            "XDG_RUNTIME_DIR=" + runtime.string()};
}

void SwaySession::sendGesture(const std::string& name) const {
    std::string command = "env";
    for (const auto& variable : programEnvironment()) {
        command += " '" + variable + "'";
    }
    command += std::string(" '") + ORVANE_PROGRAM_PATH + "' --gesture '" + name + "'";
    [[maybe_unused]] const int status = std::system(command.c_str());
}

bool SwaySession::startProgram(ProgramOptions options) {
    auto environment = programEnvironment(options.wholeStacks);
    environment.push_back(options.withIpc ? "SWAYSOCK=" + ipcSocket_ : "SWAYSOCK=");
    program_ = spawnLogged({ORVANE_PROGRAM_PATH, "--log-level", "debug"}, folder_ / "orvane.log",
                           environment);
    return program_ > 0 &&
           waitFor([&] { return programLog().find("launch complete") != std::string::npos; },
                   std::chrono::seconds(15));
}

void SwaySession::stopProgram() {
    stopChild(program_);
}

std::string SwaySession::programLog() const {
    return readAll(folder_ / "orvane.log");
}

void SwaySession::type(const std::vector<std::string>& arguments) const {
    if (arguments.empty()) {
        return;
    }
    std::string command = "WAYLAND_DISPLAY='" + display_ + "' wtype";
    for (const auto& argument : arguments) {
        command += " '" + argument + "'";
    }
    [[maybe_unused]] const int status = std::system(command.c_str());
}

std::string SwaySession::bindingEventsWhile(const std::function<void()>& action) const {
    const std::string command =
        "timeout 2 swaymsg -s '" + ipcSocket_ + "' -m -t subscribe '[\"binding\"]' 2>/dev/null";
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return {};
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    action();
    std::string text;
    char buffer[4096];
    while (const auto count = std::fread(buffer, 1, sizeof buffer, pipe)) {
        text.append(buffer, count);
    }
    ::pclose(pipe);
    return text;
}

std::string SwaySession::log() const {
    return readAll(folder_ / "sway.log");
}

}  // namespace orvane::testing
