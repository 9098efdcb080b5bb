// Child processes of the end-to-end sessions: started with their output in a log file, stopped
// politely, then firmly.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace orvane::testing {

// Starts the program (looked up in PATH) with both its outputs appended to `output`, and
// `environment` ("NAME=value") over the test's own; 0 when it could not be started.
pid_t spawnLogged(const std::vector<std::string>& arguments, const std::filesystem::path& output,
                  const std::vector<std::string>& environment = {});
// Asks the process to end, waits two seconds, then kills it; `process` is 0 afterwards.
void stopChild(pid_t& process);

}  // namespace orvane::testing
