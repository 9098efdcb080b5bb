// Dead keys and compose sequences, as the user's locale defines them: keys fed in while a sequence
// is under way give no text, and its last key gives the composed text. Without a compose table
// for the locale, each key gives its own text. Both keyboards speak XKB: the Wayland backend uses
// it too.
#pragma once

#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon.h>

#include <string>

namespace orvane {

class XkbComposeInput {
  public:
    // `locale` as LC_CTYPE names it ("de_DE.UTF-8"); empty reads it from the environment.
    XkbComposeInput(xkb_context* context, std::string locale = {});
    ~XkbComposeInput();
    XkbComposeInput(const XkbComposeInput&) = delete;
    XkbComposeInput& operator=(const XkbComposeInput&) = delete;

    // The text a pressed key types: `ownText` (what the key gives alone) outside a sequence, the
    // composed text at its end, nothing inside it or when it was cancelled.
    std::string feed(xkb_keysym_t keysym, const std::string& ownText);
    // Forgets a sequence under way.
    void reset();

  private:
    xkb_compose_table* table_ = nullptr;
    xkb_compose_state* state_ = nullptr;
};

}  // namespace orvane
