// The words a desktop uses for the platform's own things ("Option" is Alt on Linux): one table of
// replacements, handed in at construction to whatever shows the program's fixed texts or writes
// its log. It also knows which log lines tell of an absence that is expected on that desktop (no
// private focus route on Linux), and so are detail, not news. The identity table keeps every text
// as it is.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane {

class Wording {
  public:
    Wording() = default;
    // Applied in order, each to every occurrence; put longer phrases before their parts.
    explicit Wording(std::vector<std::pair<std::string, std::string>> replacements,
                     std::vector<std::string> expectedAbsences = {})
        : replacements_(std::move(replacements)), expectedAbsences_(std::move(expectedAbsences)) {}

    // The wording of a Linux desktop.
    static Wording linuxDesktop();

    std::string apply(std::string_view text) const;
    // Whether a log line, already in this wording, tells only of something this desktop never
    // has.
    bool isExpectedAbsence(std::string_view line) const;

  private:
    std::vector<std::pair<std::string, std::string>> replacements_;
    std::vector<std::string> expectedAbsences_;
};

}  // namespace orvane
