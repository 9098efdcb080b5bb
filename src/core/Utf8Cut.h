// Text cut to a number of bytes without splitting a UTF-8 character: for texts that other
// programs set, which a card shows a line of and which must not cost without bound.
#pragma once

#include <cstddef>
#include <string>

namespace orvane {

inline std::string cutToBytes(std::string text, std::size_t longest) {
    if (text.size() > longest) {
        // Continuation bytes are 10xxxxxx.
        std::size_t cut = longest;
        while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) {
            --cut;
        }
        text.resize(cut);
    }
    return text;
}

}  // namespace orvane
