// The logger of one category: renders a format string with its arguments and hands the line to
// the program's log. One shared instance per category.
#pragma once

#include <initializer_list>
#include <string_view>

#include "core/LogArgument.h"
#include "core/LogRecord.h"

namespace orvane {

class Logger {
  public:
    // The shared logger of a category, made when first asked for.
    static const Logger& forCategory(LogCategory category);

    explicit Logger(LogCategory category) : category_(category) {}

    LogCategory category() const { return category_; }

    template <typename... Arguments>
    void debug(std::string_view format, const Arguments&... arguments) const {
        emit(LogLevel::debug, format, {LogArgument(arguments)...});
    }
    template <typename... Arguments>
    void info(std::string_view format, const Arguments&... arguments) const {
        emit(LogLevel::info, format, {LogArgument(arguments)...});
    }
    template <typename... Arguments>
    void error(std::string_view format, const Arguments&... arguments) const {
        emit(LogLevel::error, format, {LogArgument(arguments)...});
    }

  private:
    void emit(LogLevel level, std::string_view format,
              std::initializer_list<LogArgument> arguments) const;

    LogCategory category_;
};

}  // namespace orvane
