// What a process has used so far, as /proc tells it: CPU time, wake-ups (context switches) and
// resident memory. The desktop benchmarks read it before and after an idle spell.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace orvane::bench {

struct ProcessUsage {
    double cpuSeconds = 0;
    long wakeUps = 0;
    double residentMegabytes = 0;

    static ProcessUsage of(pid_t process) {
        ProcessUsage result;
        std::ifstream stat("/proc/" + std::to_string(process) + "/stat");
        const std::string text((std::istreambuf_iterator<char>(stat)),
                               std::istreambuf_iterator<char>());
        // The command's name may hold spaces and parentheses: the fields follow the last ')'.
        if (const auto close = text.rfind(')'); close != std::string::npos) {
            std::istringstream fields(text.substr(close + 2));
            std::vector<std::string> values;
            for (std::string value; fields >> value;) {
                values.push_back(value);
            }
            if (values.size() > 12) {
                result.cpuSeconds = (std::stod(values[11]) + std::stod(values[12])) /
                                    static_cast<double>(::sysconf(_SC_CLK_TCK));
            }
        }
        std::ifstream status("/proc/" + std::to_string(process) + "/status");
        for (std::string line; std::getline(status, line);) {
            if (line.rfind("voluntary_ctxt_switches:", 0) == 0 ||
                line.rfind("nonvoluntary_ctxt_switches:", 0) == 0) {
                result.wakeUps += std::stol(line.substr(line.find(':') + 1));
            } else if (line.rfind("VmRSS:", 0) == 0) {
                result.residentMegabytes = std::stod(line.substr(line.find(':') + 1)) / 1024.0;
            }
        }
        return result;
    }
};

}  // namespace orvane::bench
