#include "platform/posix/XdgUserDefaults.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "core/Logger.h"

namespace orvane {

namespace {

const Logger& log() {
    return Logger::forCategory(LogCategory::preferences);
}

bool writeAll(int descriptor, const std::string& bytes) {
    std::size_t written = 0;
    while (written < bytes.size()) {
        const auto count = ::write(descriptor, bytes.data() + written, bytes.size() - written);
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        written += static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace

std::filesystem::path XdgUserDefaults::defaultFolder() {
    const char* configHome = std::getenv("XDG_CONFIG_HOME");
    if (configHome != nullptr && configHome[0] == '/') {
        return std::filesystem::path(configHome) / "orvane";
    }
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home != nullptr ? home : "/tmp") / ".config" / "orvane";
}

XdgUserDefaults::XdgUserDefaults(std::filesystem::path folder, Validator validator)
    : folder_(std::move(folder)), validator_(std::move(validator)) {}

std::filesystem::path XdgUserDefaults::pathForKey(const std::string& key) const {
    // Keys are the program's own names; anything that could leave the folder is replaced.
    std::string name = key;
    for (auto& character : name) {
        if (character == '/' || character == '\0') {
            character = '_';
        }
    }
    if (name.empty() || name == "." || name == "..") {
        name = "_" + name;
    }
    return folder_ / (name + ".json");
}

std::optional<std::string> XdgUserDefaults::dataForKey(const std::string& key) const {
    const auto path = pathForKey(key);
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        if (std::filesystem::exists(path)) {
            log().error(
                "cannot read %{public}s (%{public}s); the defaults apply until the next "
                "change",
                path.string(), std::string(std::strerror(errno)));
        }
        return std::nullopt;
    }
    std::ostringstream stream;
    stream << file.rdbuf();
    auto bytes = stream.str();
    if (validator_) {
        if (const auto reason = validator_(key, bytes); !reason.empty()) {
            keepAside(path, bytes, reason);
        }
    }
    return bytes;
}

void XdgUserDefaults::keepAside(const std::filesystem::path& path, const std::string& bytes,
                                const std::string& reason) const {
    const auto aside = path.string() + ".rejected";
    std::ofstream copy(aside, std::ios::binary | std::ios::trunc);
    copy << bytes;
    copy.close();
    if (copy) {
        log().error(
            "%{public}s is not a record Orvane can read (%{public}s); the defaults apply, "
            "and its text is kept as %{public}s",
            path.string(), reason, aside);
    } else {
        log().error(
            "%{public}s is not a record Orvane can read (%{public}s); the defaults apply, "
            "and its text could not be kept aside (%{public}s), so it is left untouched "
            "until the next change",
            path.string(), reason, aside);
    }
}

std::optional<std::string> XdgUserDefaults::setData(const std::string& key,
                                                    const std::string& bytes) {
    const auto path = pathForKey(key);
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    const auto temporary = path.string() + ".tmp";
    const int descriptor =
        ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    bool ok = descriptor >= 0 && writeAll(descriptor, bytes) && ::fsync(descriptor) == 0;
    const int savedErrno = errno;
    if (descriptor >= 0) {
        ok = ::close(descriptor) == 0 && ok;
    }
    if (ok && std::rename(temporary.c_str(), path.c_str()) == 0) {
        // The rename itself reaches the disk only with the folder.
        const int folder = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder >= 0) {
            ::fsync(folder);
            ::close(folder);
        }
        return std::nullopt;
    }
    const std::string failure =
        "cannot write " + path.string() + " (" + std::strerror(ok ? errno : savedErrno) + ")";
    log().error("%{public}s; the previous record is kept", failure);
    ::unlink(temporary.c_str());
    return failure;
}

}  // namespace orvane
