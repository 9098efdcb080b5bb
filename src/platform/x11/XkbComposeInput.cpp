#include "platform/x11/XkbComposeInput.h"

#include <cstdlib>

#include "core/Logger.h"

namespace orvane {

namespace {

std::string environmentLocale() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && value[0] != '\0') {
            return value;
        }
    }
    return "C";
}

}  // namespace

XkbComposeInput::XkbComposeInput(xkb_context* context, std::string locale) {
    if (locale.empty()) {
        locale = environmentLocale();
    }
    if (context != nullptr) {
        table_ = xkb_compose_table_new_from_locale(context, locale.c_str(),
                                                   XKB_COMPOSE_COMPILE_NO_FLAGS);
    }
    if (table_ == nullptr) {
        Logger::forCategory(LogCategory::launcher)
            .info("no compose table for locale %{public}s; dead keys type nothing of their own",
                  locale);
        return;
    }
    state_ = xkb_compose_state_new(table_, XKB_COMPOSE_STATE_NO_FLAGS);
}

XkbComposeInput::~XkbComposeInput() {
    xkb_compose_state_unref(state_);
    xkb_compose_table_unref(table_);
}

std::string XkbComposeInput::feed(xkb_keysym_t keysym, const std::string& ownText) {
    if (state_ == nullptr || xkb_compose_state_feed(state_, keysym) == XKB_COMPOSE_FEED_IGNORED) {
        return ownText;
    }
    switch (xkb_compose_state_get_status(state_)) {
        case XKB_COMPOSE_COMPOSING:
            return {};
        case XKB_COMPOSE_COMPOSED: {
            char buffer[64] = {};
            xkb_compose_state_get_utf8(state_, buffer, sizeof buffer);
            xkb_compose_state_reset(state_);
            return buffer;
        }
        case XKB_COMPOSE_CANCELLED:
            xkb_compose_state_reset(state_);
            return {};
        case XKB_COMPOSE_NOTHING:
        default:
            return ownText;
    }
}

void XkbComposeInput::reset() {
    if (state_ != nullptr) {
        xkb_compose_state_reset(state_);
    }
}

}  // namespace orvane
