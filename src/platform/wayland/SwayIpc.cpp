#include "platform/wayland/SwayIpc.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>

#include "core/Logger.h"

namespace orvane {

namespace {

const Logger& log() {
    return Logger::forCategory(LogCategory::shortcutinterception);
}

constexpr std::string_view magic = "i3-ipc";
constexpr std::size_t headerSize = magic.size() + 2 * sizeof(std::uint32_t);
constexpr std::uint32_t eventBit = 0x80000000u;
// A tree of thousands of windows is a few megabytes; anything far beyond is no answer of sway's.
constexpr std::uint32_t largestPayload = 64u << 20;
constexpr int answerTimeoutMilliseconds = 1000;

}  // namespace

std::unique_ptr<SwayIpc> SwayIpc::connect(const std::string& socketPath) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (socketPath.empty() || socketPath.size() >= sizeof address.sun_path) {
        log().error("sway's IPC socket path \"%{public}s\" is not usable", socketPath.c_str());
        return nullptr;
    }
    std::memcpy(address.sun_path, socketPath.data(), socketPath.size());
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0 ||
        ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        log().error("sway's IPC at %{public}s does not answer: %{public}s", socketPath.c_str(),
                    std::strerror(errno));
        if (socket >= 0) {
            ::close(socket);
        }
        return nullptr;
    }
    return std::unique_ptr<SwayIpc>(new SwayIpc(socket));
}

SwayIpc::~SwayIpc() {
    close();
}

void SwayIpc::close() {
    if (socket_ >= 0) {
        ::close(socket_);
        socket_ = -1;
    }
}

bool SwayIpc::send(std::uint32_t type, std::string_view payload) {
    if (socket_ < 0) {
        return false;
    }
    std::string message(magic);
    const auto length = static_cast<std::uint32_t>(payload.size());
    message.append(reinterpret_cast<const char*>(&length), sizeof length);
    message.append(reinterpret_cast<const char*>(&type), sizeof type);
    message.append(payload);
    std::size_t sent = 0;
    while (sent < message.size()) {
        const auto written =
            ::send(socket_, message.data() + sent, message.size() - sent, MSG_NOSIGNAL);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            log().error("sway's IPC connection failed while sending: %{public}s",
                        std::strerror(errno));
            close();
            return false;
        }
        sent += static_cast<std::size_t>(written);
    }
    return true;
}

bool SwayIpc::fill(int timeoutMilliseconds) {
    if (socket_ < 0) {
        return false;
    }
    pollfd descriptor{socket_, POLLIN, 0};
    const int ready = ::poll(&descriptor, 1, timeoutMilliseconds);
    if (ready <= 0) {
        return ready == 0 || errno == EINTR;
    }
    char buffer[65536];
    while (true) {
        const auto count = ::recv(socket_, buffer, sizeof buffer, MSG_DONTWAIT);
        if (count > 0) {
            received_.append(buffer, static_cast<std::size_t>(count));
            continue;
        }
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            return true;
        }
        log().error("sway closed its IPC connection");
        close();
        return false;
    }
}

std::optional<SwayIpc::Message> SwayIpc::takeMessage() {
    if (received_.size() < headerSize) {
        return std::nullopt;
    }
    std::uint32_t length = 0, type = 0;
    std::memcpy(&length, received_.data() + magic.size(), sizeof length);
    std::memcpy(&type, received_.data() + magic.size() + sizeof length, sizeof type);
    if (received_.compare(0, magic.size(), magic) != 0 || length > largestPayload) {
        log().error("sway's IPC sent something that is not a message; the connection is closed");
        received_.clear();
        close();
        return std::nullopt;
    }
    if (received_.size() < headerSize + length) {
        return std::nullopt;
    }
    Message message{type, received_.substr(headerSize, length)};
    received_.erase(0, headerSize + length);
    return message;
}

std::optional<nlohmann::json> SwayIpc::request(Request request, std::string_view payload) {
    const auto type = static_cast<std::uint32_t>(request);
    if (!send(type, payload)) {
        return std::nullopt;
    }
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(answerTimeoutMilliseconds);
    while (true) {
        while (auto message = takeMessage()) {
            if ((message->type & eventBit) != 0) {
                events_.push_back(std::move(*message));
                continue;
            }
            if (message->type != type) {
                continue;
            }
            auto answer = nlohmann::json::parse(message->payload, nullptr, false);
            if (answer.is_discarded()) {
                log().error("sway's answer to request %{public}u does not parse", type);
                return std::nullopt;
            }
            return answer;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                              deadline - std::chrono::steady_clock::now())
                              .count();
        if (left <= 0 || !fill(static_cast<int>(left))) {
            if (socket_ >= 0) {
                log().error("sway did not answer request %{public}u within a second", type);
            }
            return std::nullopt;
        }
    }
}

std::vector<std::string> SwayIpc::run(std::string_view commands) {
    auto answer = request(Request::runCommand, commands);
    if (!answer) {
        return {"sway did not answer"};
    }
    std::vector<std::string> errors;
    if (!answer->is_array()) {
        errors.emplace_back("sway's answer is not a list");
        return errors;
    }
    for (const auto& outcome : *answer) {
        if (!outcome.is_object() || !outcome.value("success", false)) {
            errors.push_back(outcome.is_object() ? outcome.value("error", std::string("failed"))
                                                 : std::string("failed"));
        }
    }
    return errors;
}

bool SwayIpc::readEvents(const EventHandler& handler) {
    fill(0);
    while (auto message = takeMessage()) {
        events_.push_back(std::move(*message));
    }
    // Handed out from a list of their own: a handler may make a request, which adds to `events_`.
    auto events = std::move(events_);
    events_.clear();
    for (const auto& message : events) {
        if ((message.type & eventBit) == 0) {
            continue;
        }
        auto payload = nlohmann::json::parse(message.payload, nullptr, false);
        if (payload.is_discarded()) {
            log().error("an event from sway's IPC does not parse; ignored");
            continue;
        }
        handler(static_cast<Event>(message.type & ~eventBit), payload);
    }
    return socket_ >= 0;
}

}  // namespace orvane
