// The simulator's deterministic transcript: one headline per scenario step and indented lines for
// everything that step caused, in the order it happened.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace orvane::simulator {

class Transcript {
  public:
    explicit Transcript(std::ostream& output) : output_(output) {}

    void headline(int lineNumber, std::string_view text);
    // One indented line under the current headline, as "  subject: text".
    void effect(std::string_view subject, std::string_view text);
    void plain(std::string_view text);

  private:
    std::ostream& output_;
};

}  // namespace orvane::simulator
