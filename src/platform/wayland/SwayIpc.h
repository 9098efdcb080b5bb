// One connection to sway's IPC (i3's protocol on the socket named by $SWAYSOCK): a request and
// its answer in turn, or, once subscribed, the events as they come. Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

class SwayIpc final {
  public:
    enum class Request : std::uint32_t {
        runCommand = 0,
        subscribe = 2,
        getTree = 4,
        getVersion = 7
    };
    // An event's type without its high bit.
    enum class Event : std::uint32_t {
        workspace = 0,
        output = 1,
        window = 3,
        binding = 5,
        shutdown = 6
    };
    using EventHandler = std::function<void(Event event, const nlohmann::json& payload)>;

    // Nothing, said in the log, when no one answers there.
    static std::unique_ptr<SwayIpc> connect(const std::string& socketPath);
    ~SwayIpc();
    SwayIpc(const SwayIpc&) = delete;
    SwayIpc& operator=(const SwayIpc&) = delete;

    // The answer, parsed; nothing when sway did not answer within a second, the answer does not
    // parse, or the connection is gone. Events that come on the way are kept for `readEvents`.
    std::optional<nlohmann::json> request(Request request, std::string_view payload = {});
    // Runs the commands (separated by ';' or ','); the errors sway gave, empty when each ran.
    std::vector<std::string> run(std::string_view commands);

    int fileDescriptor() const { return socket_; }
    bool isOpen() const { return socket_ >= 0; }
    // Hands each event that has come to `handler`, without waiting for more; false once sway
    // closed the connection.
    bool readEvents(const EventHandler& handler);

  private:
    struct Message {
        std::uint32_t type = 0;
        std::string payload;
    };

    explicit SwayIpc(int socket) : socket_(socket) {}
    bool send(std::uint32_t type, std::string_view payload);
    // Reads what the socket holds now, waiting at most `timeoutMilliseconds` for the first byte.
    bool fill(int timeoutMilliseconds);
    std::optional<Message> takeMessage();
    void close();

    int socket_ = -1;
    std::string received_;
    std::vector<Message> events_;
};

}  // namespace orvane
