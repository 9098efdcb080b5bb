// Turns the text a key types into what the launcher's query takes: whole user-perceived
// characters, without control characters, dead-key accents and modifier marks.
#pragma once

#include <unicode/uversion.h>

#include <memory>
#include <string>
#include <string_view>

U_NAMESPACE_BEGIN
class BreakIterator;
U_NAMESPACE_END

namespace orvane {

class TypedTextFilter {
  public:
    TypedTextFilter();
    ~TypedTextFilter();
    TypedTextFilter(const TypedTextFilter&) = delete;
    TypedTextFilter& operator=(const TypedTextFilter&) = delete;

    // UTF-8 of the characters kept, in their order; empty when nothing is left. A character goes
    // whole when any of its scalars is below 32, 127, a lone surrogate, or of general category
    // Lm, Mn, Mc, Me or Sk.
    std::string filter(std::u16string_view typed);

  private:
    // Made once: creating a character break iterator is far dearer than using one.
    std::unique_ptr<icu::BreakIterator> characterBreakIterator_;
};

}  // namespace orvane
