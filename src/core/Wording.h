// The words a desktop uses for the platform's own things ("Option" is Alt on Linux): one table of
// replacements, handed in at construction to whatever shows the program's fixed texts. The
// identity table keeps every text as it is.
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
    explicit Wording(std::vector<std::pair<std::string, std::string>> replacements)
        : replacements_(std::move(replacements)) {}

    // The wording of a Linux desktop.
    static Wording linuxDesktop();

    std::string apply(std::string_view text) const;

  private:
    std::vector<std::pair<std::string, std::string>> replacements_;
};

}  // namespace orvane
