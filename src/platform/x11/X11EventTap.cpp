#include "platform/x11/X11EventTap.h"

#include <unicode/unistr.h>
// The keyboard extension's C header names a field "explicit"; renamed while it is read.
#define explicit xkb_explicit
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <cstdlib>

#include "core/Logger.h"
#include "platform/linux/LinuxKeyboardEvent.h"
#include "platform/linux/XkbKeyTranslation.h"

namespace orvane {

namespace {

const Logger& log() {
    return Logger::forCategory(LogCategory::shortcutinterception);
}

std::u16string utf16(const std::string& utf8) {
    const auto text = icu::UnicodeString::fromUTF8(utf8);
    return std::u16string(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

std::string modifierWords(std::uint16_t mask) {
    std::string words;
    if (mask & XkbKeyTranslation::modifierMask(keyboard_event_flag::control)) {
        words += "Ctrl+";
    }
    if (mask & XkbKeyTranslation::modifierMask(keyboard_event_flag::option)) {
        words += "Alt+";
    }
    if (mask & XkbKeyTranslation::modifierMask(keyboard_event_flag::shift)) {
        words += "Shift+";
    }
    return words;
}

}  // namespace

X11EventTap::X11EventTap(X11Connection& connection) : connection_(connection) {
    context_ = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    std::uint16_t major = 0;
    std::uint16_t minor = 0;
    if (context_ == nullptr ||
        xkb_x11_setup_xkb_extension(
            connection_.connection(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, &major, &minor, &xkbFirstEvent_, nullptr) == 0) {
        log().error("the X keyboard extension is missing; no shortcut can be caught");
        return;
    }
    compose_ = std::make_unique<XkbComposeInput>(context_);
    deviceIdentifier_ = xkb_x11_get_core_keyboard_device_id(connection_.connection());
    const auto device = static_cast<xcb_xkb_device_spec_t>(deviceIdentifier_);
    constexpr std::uint16_t events = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY |
                                     XCB_XKB_EVENT_TYPE_MAP_NOTIFY |
                                     XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
    xcb_xkb_select_events(connection_.connection(), device, events, 0, events, 0xff, 0xff, nullptr);
    // A held key then repeats as presses alone, which tells a repeat from a new press.
    std::free(xcb_xkb_per_client_flags_reply(
        connection_.connection(),
        xcb_xkb_per_client_flags(connection_.connection(), device,
                                 XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
                                 XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0),
        nullptr));
    reloadKeymap();
    connection_.addListener([this](const xcb_generic_event_t& event) { handleEvent(event); });
}

X11EventTap::~X11EventTap() {
    if (preferences_ && preferencesObservation_) {
        preferences_->removePreferencesObserver(*preferencesObservation_);
    }
    if (tap_) {
        invalidate(*tap_);
    }
    xkb_state_unref(state_);
    xkb_keymap_unref(keymap_);
    xkb_context_unref(context_);
}

void X11EventTap::setPreferences(std::shared_ptr<PreferencesProviding> preferences) {
    preferences_ = std::move(preferences);
    preferencesObservation_ = preferences_->observePreferences([this](const SwitcherPreferences&) {
        if (tap_) {
            ungrabChords();
            grabChords();
        }
    });
}

void X11EventTap::setSessionQuery(std::function<bool()> isSessionActive) {
    isSessionActive_ = std::move(isSessionActive);
}

void X11EventTap::reloadKeymap() {
    if (context_ == nullptr || deviceIdentifier_ < 0) {
        return;
    }
    auto* keymap = xkb_x11_keymap_new_from_device(context_, connection_.connection(),
                                                  deviceIdentifier_, XKB_KEYMAP_COMPILE_NO_FLAGS);
    auto* state =
        keymap ? xkb_x11_state_new_from_device(keymap, connection_.connection(), deviceIdentifier_)
               : nullptr;
    if (state == nullptr) {
        log().error("the keyboard map could not be read; keeping the previous one");
        xkb_keymap_unref(keymap);
        return;
    }
    xkb_state_unref(state_);
    xkb_keymap_unref(keymap_);
    keymap_ = keymap;
    state_ = state;
}

std::optional<EventTapHandle> X11EventTap::createTap(std::uint32_t, std::uint32_t, std::uint32_t,
                                                     std::uint64_t, Callback callback) {
    if (keymap_ == nullptr || tap_) {
        return std::nullopt;
    }
    if (!grabChords()) {
        return std::nullopt;
    }
    tap_ = ++lastHandle_;
    callback_ = std::move(callback);
    enabled_ = true;
    reportedFlags_ = flagsState(event_tap::combinedSessionState);
    return tap_;
}

std::optional<RunLoopSourceHandle> X11EventTap::createRunLoopSource(EventTapHandle tap) {
    if (tap_ != tap) {
        return std::nullopt;
    }
    // The events come through the connection's descriptor, which the event loop already reads.
    return static_cast<RunLoopSourceHandle>(tap);
}

void X11EventTap::enableTap(EventTapHandle tap, bool enabled) {
    if (tap_ == tap) {
        enabled_ = enabled;
    }
}

bool X11EventTap::isTapEnabled(EventTapHandle tap) const {
    return tap_ == tap && enabled_;
}

void X11EventTap::invalidate(EventTapHandle tap) {
    if (tap_ != tap) {
        return;
    }
    ungrabChords();
    if (activeGrab_) {
        xcb_ungrab_keyboard(connection_.connection(), XCB_CURRENT_TIME);
        activeGrab_ = false;
    }
    connection_.flush();
    tap_.reset();
    callback_ = nullptr;
    enabled_ = false;
}

KeyboardEventFlags X11EventTap::flagsState(std::int32_t) const {
    auto* reply = xcb_query_pointer_reply(
        connection_.connection(), xcb_query_pointer(connection_.connection(), connection_.root()),
        nullptr);
    if (reply == nullptr) {
        return 0;
    }
    const auto flags = XkbKeyTranslation::flags(reply->mask);
    std::free(reply);
    return flags;
}

xcb_keycode_t X11EventTap::keycodeOf(std::uint16_t storedKeyCode) const {
    const auto name = XkbKeyTranslation::xkbKeyName(storedKeyCode);
    if (!name || keymap_ == nullptr) {
        return 0;
    }
    for (auto keycode = xkb_keymap_min_keycode(keymap_); keycode <= xkb_keymap_max_keycode(keymap_);
         ++keycode) {
        const char* keyName = xkb_keymap_key_get_name(keymap_, keycode);
        if (keyName != nullptr && *name == keyName) {
            return static_cast<xcb_keycode_t>(keycode);
        }
    }
    return 0;
}

std::int64_t X11EventTap::storedKeyCodeOf(xcb_keycode_t keycode) const {
    const char* name = keymap_ ? xkb_keymap_key_get_name(keymap_, keycode) : nullptr;
    if (name != nullptr) {
        if (auto code = XkbKeyTranslation::storedKeyCode(name)) {
            return *code;
        }
    }
    // Keys without a stored code still need one that no stored key uses.
    return 0x1000 + keycode;
}

std::vector<X11EventTap::Chord> X11EventTap::chords() const {
    const auto preferences = preferences_ ? preferences_->preferences() : SwitcherPreferences{};
    const auto& shortcut = preferences.shortcutConfiguration;
    const std::uint16_t hold = XkbKeyTranslation::modifierMask(
        shortcut.holdModifier == SwitcherHoldModifier::control ? keyboard_event_flag::control
                                                               : keyboard_event_flag::option);
    const std::uint16_t shift = XkbKeyTranslation::modifierMask(keyboard_event_flag::shift);
    const std::uint16_t alt = XkbKeyTranslation::modifierMask(keyboard_event_flag::option);
    std::vector<Chord> result;
    auto add = [&](std::uint16_t storedKeyCode, std::uint16_t modifiers, bool required) {
        const auto keycode = keycodeOf(storedKeyCode);
        if (keycode == 0) {
            log().error(
                "no key of this keyboard has the stored code %{public}u; its shortcut is "
                "not available",
                storedKeyCode);
            return;
        }
        std::string keyName = "key " + std::to_string(keycode);
        const auto keysym = xkb_state_key_get_one_sym(state_, keycode);
        char buffer[64];
        if (keysym != XKB_KEY_NoSymbol && xkb_keysym_get_name(keysym, buffer, sizeof buffer) > 0) {
            keyName = buffer;
            // "space" reads as "Space" beside "Alt+".
            if (keyName[0] >= 'a' && keyName[0] <= 'z') {
                keyName[0] = static_cast<char>(keyName[0] - 'a' + 'A');
            }
        }
        for (const auto& existing : result) {
            if (existing.keycode == keycode && existing.modifiers == modifiers) {
                return;
            }
        }
        result.push_back({modifierWords(modifiers) + keyName, keycode, modifiers, required});
    };
    add(shortcut.triggerKeyCode, hold, true);
    add(shortcut.triggerKeyCode, hold | shift, false);
    add(gesture_key::grave, hold, false);
    add(gesture_key::grave, hold | shift, false);
    add(gesture_key::space, alt, false);
    return result;
}

bool X11EventTap::grabChord(const Chord& chord) {
    auto* connection = connection_.connection();
    std::vector<xcb_void_cookie_t> cookies;
    for (auto lock : XkbKeyTranslation::lockMasks) {
        cookies.push_back(xcb_grab_key_checked(connection, 1, connection_.root(),
                                               chord.modifiers | lock, chord.keycode,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_SYNC));
    }
    bool taken = false;
    for (auto cookie : cookies) {
        if (auto* error = xcb_request_check(connection, cookie)) {
            taken = true;
            std::free(error);
        }
    }
    if (taken) {
        ungrabChord(chord);
    }
    return !taken;
}

void X11EventTap::ungrabChord(const Chord& chord) {
    for (auto lock : XkbKeyTranslation::lockMasks) {
        xcb_ungrab_key(connection_.connection(), chord.keycode, connection_.root(),
                       chord.modifiers | lock);
    }
}

X11EventTap::GrabOutcome X11EventTap::grabMissingChords() {
    GrabOutcome outcome;
    for (const auto& chord : chords()) {
        if (holds(chord)) {
            continue;
        }
        if (grabChord(chord)) {
            if (reportedTaken_.erase(chord.name) > 0) {
                log().info("%{public}s is free again and now belongs to Orvane", chord.name);
            }
            grabbed_.push_back(chord);
            continue;
        }
        outcome.anyTaken = true;
        outcome.requiredTaken = outcome.requiredTaken || chord.required;
        if (!reportedTaken_.insert(chord.name).second) {
            continue;
        }
        constexpr std::string_view taken =
            "%{public}s is already taken by another program, most often the window manager's own "
            "window switcher: free it in the window manager's keyboard settings. Orvane keeps "
            "trying by itself.";
        // Only the required chord keeps Orvane from working; the others are news, not errors.
        if (chord.required) {
            log().error(taken, chord.name);
        } else {
            log().info(taken, chord.name);
        }
    }
    connection_.flush();
    return outcome;
}

bool X11EventTap::grabChords() {
    const auto outcome = grabMissingChords();
    if (outcome.requiredTaken) {
        ungrabChords();
    }
    if (missingChordsHandler_) {
        missingChordsHandler_(outcome.anyTaken && !outcome.requiredTaken);
    }
    return !outcome.requiredTaken;
}

void X11EventTap::retryMissingChords() {
    // Without a tap the program's own retry brings it back, and with it every chord.
    const bool anyTaken = tap_ && grabMissingChords().anyTaken;
    if (missingChordsHandler_) {
        missingChordsHandler_(anyTaken);
    }
}

bool X11EventTap::holds(const Chord& chord) const {
    return std::any_of(grabbed_.begin(), grabbed_.end(), [&](const Chord& mine) {
        return mine.keycode == chord.keycode && mine.modifiers == chord.modifiers;
    });
}

void X11EventTap::ungrabChords() {
    for (const auto& chord : grabbed_) {
        ungrabChord(chord);
    }
    grabbed_.clear();
    connection_.flush();
}

bool X11EventTap::requiredChordIsFree() {
    const auto all = chords();
    const auto required =
        std::find_if(all.begin(), all.end(), [](const Chord& chord) { return chord.required; });
    if (required == all.end()) {
        return false;
    }
    if (holds(*required)) {
        return true;
    }
    if (!grabChord(*required)) {
        return false;
    }
    ungrabChord(*required);
    connection_.flush();
    return true;
}

std::string X11EventTap::requiredChordName() const {
    for (const auto& chord : chords()) {
        if (chord.required) {
            return chord.name;
        }
    }
    return "Alt+Tab";
}

void X11EventTap::handleEvent(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7f;
    if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE) {
        handleKey(reinterpret_cast<const xcb_key_press_event_t&>(event), type == XCB_KEY_PRESS);
        return;
    }
    if (type == XCB_MAPPING_NOTIFY) {
        return;  // the keyboard extension's own notice below does the work
    }
    if (xkbFirstEvent_ == 0 || type != xkbFirstEvent_) {
        return;
    }
    const auto xkbType = reinterpret_cast<const std::uint8_t*>(&event)[1];
    if (xkbType == XCB_XKB_STATE_NOTIFY && state_ != nullptr) {
        const auto& notice = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
        const std::uint16_t held = notice.baseMods;
        bool holdWentDown = false;
        for (const auto& chord : grabbed_) {
            if (chord.required && chord.modifiers != 0) {
                holdWentDown = (held & chord.modifiers) == chord.modifiers &&
                               (heldModifiers_ & chord.modifiers) != chord.modifiers;
            }
        }
        heldModifiers_ = held;
        xkb_state_update_mask(state_, notice.baseMods, notice.latchedMods, notice.lockedMods,
                              static_cast<xkb_layout_index_t>(notice.baseGroup),
                              static_cast<xkb_layout_index_t>(notice.latchedGroup),
                              static_cast<xkb_layout_index_t>(notice.lockedGroup));
        if (holdWentDown && holdModifierHandler_ && tap_ && !activeGrab_) {
            holdModifierHandler_();
        }
    } else if (xkbType == XCB_XKB_NEW_KEYBOARD_NOTIFY || xkbType == XCB_XKB_MAP_NOTIFY) {
        reloadKeymap();
        if (tap_) {
            log().info("keyboard mapping changed; shortcuts grabbed again");
            ungrabChords();
            grabChords();
        }
    }
}

void X11EventTap::deliver(KeyboardEventType type, std::int64_t keyCode, KeyboardEventFlags flags,
                          bool isAutorepeat, std::u16string text, bool* swallowed) {
    if (type == keyboard_event_type::flagsChanged) {
        reportedFlags_ = flags;
    }
    bool result = false;
    if (callback_ && enabled_) {
        // Kept alive through the call: the logic may remove the tap from inside it.
        auto callback = callback_;
        result = callback(type, LinuxKeyboardEvent(keyCode, flags, isAutorepeat, std::move(text)));
    }
    if (swallowed != nullptr) {
        *swallowed = result;
    }
}

void X11EventTap::handleKey(const xcb_key_press_event_t& event, bool isPress) {
    connection_.noteEventTime(event.time);
    auto* connection = connection_.connection();
    const bool fromPassiveGrab = !activeGrab_;
    const auto keysym = state_ ? xkb_state_key_get_one_sym(state_, event.detail) : XKB_KEY_NoSymbol;
    const auto modifierFlag = XkbKeyTranslation::modifierFlagOfKeysym(keysym);
    const auto stateFlags = XkbKeyTranslation::flags(event.state);
    bool swallowed = false;
    if (modifierFlag != 0) {
        deliver(keyboard_event_type::flagsChanged, storedKeyCodeOf(event.detail),
                isPress ? (stateFlags | modifierFlag) : (stateFlags & ~modifierFlag), false, {},
                nullptr);
        swallowed = true;
    } else {
        if (stateFlags != reportedFlags_) {
            deliver(keyboard_event_type::flagsChanged, 0, stateFlags, false, {}, nullptr);
        }
        const bool isAutorepeat = isPress && pressedKeys_.contains(event.detail);
        if (isPress) {
            pressedKeys_.insert(event.detail);
        } else {
            pressedKeys_.erase(event.detail);
        }
        std::u16string text;
        if (isPress && state_ != nullptr) {
            char buffer[64] = {};
            xkb_state_key_get_utf8(state_, event.detail, buffer, sizeof buffer);
            // Dead keys and compose sequences count only while a session holds the keyboard.
            text = utf16(activeGrab_ && compose_ ? compose_->feed(keysym, buffer) : buffer);
        }
        deliver(isPress ? keyboard_event_type::keyDown : keyboard_event_type::keyUp,
                storedKeyCodeOf(event.detail), stateFlags, isAutorepeat, std::move(text),
                &swallowed);
    }
    if (fromPassiveGrab) {
        xcb_allow_events(connection,
                         swallowed ? XCB_ALLOW_ASYNC_KEYBOARD : XCB_ALLOW_REPLAY_KEYBOARD,
                         event.time);
    } else if (!swallowed) {
        forwardToFocus(event);
    }
    synchronizeActiveGrab(event.time);
    connection_.flush();
}

void X11EventTap::perform(ExternalGesture gesture) {
    const auto preferences = preferences_ ? preferences_->preferences() : SwitcherPreferences{};
    const auto [key, flags] = chordOfGesture(gesture, preferences.shortcutConfiguration);
    // The modifiers first, as a keyboard would send them; what the user really holds is told
    // right after, once the session has the keyboard.
    deliver(keyboard_event_type::flagsChanged, 0, reportedFlags_ | flags, false, {}, nullptr);
    deliver(keyboard_event_type::keyDown, key, reportedFlags_, false, {}, nullptr);
    deliver(keyboard_event_type::keyUp, key, reportedFlags_, false, {}, nullptr);
    synchronizeActiveGrab(XCB_CURRENT_TIME);
    if (!activeGrab_) {
        // No session took the keyboard (the gesture opened nothing, or the grab failed): the
        // modifiers played are not held.
        deliver(keyboard_event_type::flagsChanged, 0, flagsState(event_tap::combinedSessionState),
                false, {}, nullptr);
    }
    connection_.flush();
}

void X11EventTap::synchronizeActiveGrab(xcb_timestamp_t time) {
    auto* connection = connection_.connection();
    const bool wanted = tap_ && isSessionActive_ && isSessionActive_();
    if (wanted && !activeGrab_) {
        auto* reply =
            xcb_grab_keyboard_reply(connection,
                                    xcb_grab_keyboard(connection, 0, connection_.root(), time,
                                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                    nullptr);
        activeGrab_ = reply != nullptr && reply->status == XCB_GRAB_STATUS_SUCCESS;
        if (compose_) {
            compose_->reset();
        }
        if (!activeGrab_) {
            log().error("the keyboard could not be grabbed for the session (status %{public}d)",
                        reply ? reply->status : -1);
        }
        std::free(reply);
        // The hold modifier may have come up before the grab: tell the logic what is held now.
        const auto held = flagsState(event_tap::combinedSessionState);
        if (activeGrab_ && held != reportedFlags_) {
            deliver(keyboard_event_type::flagsChanged, 0, held, false, {}, nullptr);
            synchronizeActiveGrab(time);
        }
    } else if (!wanted && activeGrab_) {
        xcb_ungrab_keyboard(connection, time);
        activeGrab_ = false;
        pressedKeys_.clear();
    }
}

void X11EventTap::forwardToFocus(const xcb_key_press_event_t& event) {
    auto* connection = connection_.connection();
    auto* focus = xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr);
    if (focus == nullptr) {
        return;
    }
    const auto window = focus->focus;
    std::free(focus);
    if (window == XCB_NONE || window == XCB_INPUT_FOCUS_POINTER_ROOT) {
        return;
    }
    xcb_key_press_event_t forwarded = event;
    forwarded.event = window;
    forwarded.child = XCB_NONE;
    const bool isPress = (event.response_type & 0x7f) == XCB_KEY_PRESS;
    xcb_send_event(connection, 1, window,
                   isPress ? XCB_EVENT_MASK_KEY_PRESS : XCB_EVENT_MASK_KEY_RELEASE,
                   reinterpret_cast<const char*>(&forwarded));
}

}  // namespace orvane
