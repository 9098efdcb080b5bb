// The application's own login item, as the system's service management sees it.
#pragma once

#include <optional>
#include <string>

namespace orvane {

// Raw values are the platform's.
enum class LoginItemStatus { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

class LoginItemPort {
  public:
    virtual ~LoginItemPort() = default;

    // Nothing on success, the error's description on failure.
    virtual std::optional<std::string> registerLoginItem() = 0;
    virtual std::optional<std::string> unregisterLoginItem() = 0;
    virtual LoginItemStatus status() const = 0;
    // What the user must know for the item to start the program on this desktop; nothing when
    // it just works.
    virtual std::optional<std::string> note() const { return std::nullopt; }
};

}  // namespace orvane
