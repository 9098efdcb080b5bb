// One argument of a log message: an integer, a number, a text or a Boolean.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace orvane {

class LogArgument {
  public:
    using Storage = std::variant<std::int64_t, std::uint64_t, double, std::string, bool>;

    LogArgument(bool value) : storage_(value) {}
    template <std::signed_integral Integer>
    LogArgument(Integer value) : storage_(static_cast<std::int64_t>(value)) {}
    template <std::unsigned_integral Integer>
    requires(!std::same_as<Integer, bool>) LogArgument(Integer value)
        : storage_(static_cast<std::uint64_t>(value)) {}
    LogArgument(double value) : storage_(value) {}
    LogArgument(std::string value) : storage_(std::move(value)) {}
    LogArgument(std::string_view value) : storage_(std::string(value)) {}
    LogArgument(const char* value) : storage_(std::string(value)) {}

    const Storage& storage() const { return storage_; }

  private:
    Storage storage_;
};

}  // namespace orvane
