// Interning an atom for the test tools (clients, the harness, the benchmark's minimal switcher).
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace orvane::testing {

// XCB_ATOM_NONE when the server refuses.
inline xcb_atom_t internAtom(xcb_connection_t* connection, const char* name) {
    auto* reply = xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr);
    const xcb_atom_t value = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(reply);
    return value;
}

}  // namespace orvane::testing
