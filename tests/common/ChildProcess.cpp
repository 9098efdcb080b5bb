#include "ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <thread>

extern char** environ;

namespace orvane::testing {

pid_t spawnLogged(const std::vector<std::string>& arguments, const std::filesystem::path& output,
                  const std::vector<std::string>& environment) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_APPEND,
                                     0644);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    std::vector<char*> argv;
    for (const auto& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    // The first of two same names wins: the given ones go first.
    std::vector<std::string> variables(environment);
    for (char** variable = environ; *variable != nullptr; ++variable) {
        variables.emplace_back(*variable);
    }
    std::vector<char*> envp;
    for (auto& variable : variables) {
        envp.push_back(variable.data());
    }
    envp.push_back(nullptr);
    pid_t process = 0;
    if (posix_spawnp(&process, argv[0], &actions, nullptr, argv.data(), envp.data()) != 0) {
        process = 0;
    }
    posix_spawn_file_actions_destroy(&actions);
    return process;
}

void stopChild(pid_t& process) {
    if (process <= 0) {
        return;
    }
    ::kill(process, SIGTERM);
    for (int attempt = 0; attempt < 100; ++attempt) {
        if (::waitpid(process, nullptr, WNOHANG) == process) {
            process = 0;
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
    process = 0;
}

}  // namespace orvane::testing
