#include "platform/wayland/WaylandEventTap.h"

#include <sys/mman.h>
#include <unicode/unistr.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "core/Logger.h"
#include "platform/linux/LinuxKeyboardEvent.h"
#include "platform/linux/XkbKeyTranslation.h"

namespace orvane {

namespace {

const Logger& log() {
    return Logger::forCategory(LogCategory::shortcutinterception);
}

constexpr const char* bindingCommand = "nop orvane ";
constexpr double focusPatienceSeconds = 1.0;

std::u16string utf16(const std::string& utf8) {
    const auto text = icu::UnicodeString::fromUTF8(utf8);
    return std::u16string(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

const char* gestureName(ExternalGesture gesture) {
    switch (gesture) {
        case ExternalGesture::next:
            return "next";
        case ExternalGesture::previous:
            return "previous";
        case ExternalGesture::sameApplication:
            return "same-application";
        case ExternalGesture::sameApplicationPrevious:
            return "same-application-previous";
        case ExternalGesture::launcher:
            return "launcher";
    }
    return "next";
}

}  // namespace

// The seat's and keyboard's events, handed to the tap.
struct WaylandEventTap::Listeners {
    static WaylandEventTap& of(void* data) { return *static_cast<WaylandEventTap*>(data); }

    static void capabilities(void* data, wl_seat* seat, std::uint32_t capabilities) {
        auto& tap = of(data);
        const bool hasKeyboard = (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0;
        if (hasKeyboard && tap.keyboard_ == nullptr) {
            static const wl_keyboard_listener listener{&keymap, &enter,     &leave,
                                                       &key,    &modifiers, &repeatInfo};
            tap.keyboard_ = wl_seat_get_keyboard(seat);
            wl_keyboard_add_listener(tap.keyboard_, &listener, &tap);
        } else if (!hasKeyboard && tap.keyboard_ != nullptr) {
            wl_keyboard_destroy(tap.keyboard_);
            tap.keyboard_ = nullptr;
            tap.hasFocus_ = false;
        }
    }
    static void name(void*, wl_seat*, const char*) {}

    static void keymap(void* data, wl_keyboard*, std::uint32_t format, int descriptor,
                       std::uint32_t size) {
        if (format != WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1) {
            ::close(descriptor);
            log().error("the compositor's keymap is in no format Orvane reads; keys are unnamed");
            return;
        }
        of(data).takeKeymap(descriptor, size);
    }
    static void enter(void* data, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) {
        auto& tap = of(data);
        tap.hasFocus_ = true;
        if (tap.focusPatience_) {
            tap.runLoop_->cancelTimer(*tap.focusPatience_);
            tap.focusPatience_.reset();
        }
        // The modifiers held now follow at once, in their own event.
    }
    static void leave(void* data, wl_keyboard*, std::uint32_t, wl_surface*) {
        auto& tap = of(data);
        tap.hasFocus_ = false;
        tap.stopRepeating();
        if (tap.compose_) {
            tap.compose_->reset();
        }
    }
    static void key(void* data, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t key,
                    std::uint32_t state) {
        of(data).handleKey(key, state == WL_KEYBOARD_KEY_STATE_PRESSED);
    }
    static void modifiers(void* data, wl_keyboard*, std::uint32_t, std::uint32_t depressed,
                          std::uint32_t latched, std::uint32_t locked, std::uint32_t group) {
        of(data).handleModifiers(depressed, latched, locked, group);
    }
    static void repeatInfo(void* data, wl_keyboard*, std::int32_t rate, std::int32_t delay) {
        auto& tap = of(data);
        tap.repeatRate_ = std::max(rate, 0);
        tap.repeatDelay_ = std::max(delay, 0);
    }
};

WaylandEventTap::WaylandEventTap(WaylandConnection& connection, SwayIpc* sway,
                                 std::shared_ptr<RunLoopPort> runLoop)
    : connection_(connection), sway_(sway), runLoop_(std::move(runLoop)) {
    context_ = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    if (context_ != nullptr) {
        // The bindings name keys by what they type in the standard layout.
        standardKeymap_ = xkb_keymap_new_from_names(context_, nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS);
        compose_ = std::make_unique<XkbComposeInput>(context_);
    }
    static const wl_seat_listener listener{&Listeners::capabilities, &Listeners::name};
    seat_ = static_cast<wl_seat*>(connection_.bindGlobal(wl_seat_interface, 5));
    if (seat_ == nullptr) {
        log().error("the compositor offers no seat; the overlay gets no keys");
        return;
    }
    wl_seat_add_listener(seat_, &listener, this);
}

WaylandEventTap::~WaylandEventTap() {
    stopRepeating();
    if (preferences_ && preferencesObservation_) {
        preferences_->removePreferencesObserver(*preferencesObservation_);
    }
    if (tap_) {
        invalidate(*tap_);
    }
    if (keyboard_ != nullptr) {
        wl_keyboard_destroy(keyboard_);
    }
    if (seat_ != nullptr) {
        wl_seat_destroy(seat_);
    }
    xkb_state_unref(state_);
    xkb_keymap_unref(keymap_);
    xkb_keymap_unref(standardKeymap_);
    compose_.reset();
    xkb_context_unref(context_);
}

void WaylandEventTap::setPreferences(std::shared_ptr<PreferencesProviding> preferences) {
    preferences_ = std::move(preferences);
    preferencesObservation_ = preferences_->observePreferences([this](const SwitcherPreferences&) {
        if (tap_) {
            removeBindings();
            installBindings();
        }
    });
}

void WaylandEventTap::setSessionQuery(std::function<bool()> isSessionActive) {
    isSessionActive_ = std::move(isSessionActive);
}

std::optional<EventTapHandle> WaylandEventTap::createTap(std::uint32_t, std::uint32_t,
                                                         std::uint32_t, std::uint64_t,
                                                         Callback callback) {
    if (tap_) {
        return std::nullopt;
    }
    tap_ = ++lastHandle_;
    callback_ = std::move(callback);
    enabled_ = true;
    installBindings();
    return tap_;
}

std::optional<RunLoopSourceHandle> WaylandEventTap::createRunLoopSource(EventTapHandle tap) {
    if (tap_ != tap) {
        return std::nullopt;
    }
    // Keys and bindings come through descriptors the event loop already reads.
    return static_cast<RunLoopSourceHandle>(tap);
}

void WaylandEventTap::enableTap(EventTapHandle tap, bool enabled) {
    if (tap_ == tap) {
        enabled_ = enabled;
    }
}

bool WaylandEventTap::isTapEnabled(EventTapHandle tap) const {
    return tap_ == tap && enabled_;
}

void WaylandEventTap::invalidate(EventTapHandle tap) {
    if (tap_ != tap) {
        return;
    }
    removeBindings();
    tap_.reset();
    callback_ = nullptr;
    enabled_ = false;
}

KeyboardEventFlags WaylandEventTap::flagsState(std::int32_t) const {
    // Without the keyboard the compositor tells nothing of it: what was last seen stands.
    return hasFocus_ ? currentFlags() : reportedFlags_;
}

KeyboardEventFlags WaylandEventTap::currentFlags() const {
    if (state_ == nullptr) {
        return 0;
    }
    const auto held =
        static_cast<xkb_state_component>(XKB_STATE_MODS_DEPRESSED | XKB_STATE_MODS_LATCHED);
    KeyboardEventFlags flags = 0;
    const std::pair<const char*, KeyboardEventFlags> names[] = {
        {XKB_MOD_NAME_SHIFT, keyboard_event_flag::shift},
        {XKB_MOD_NAME_CTRL, keyboard_event_flag::control},
        {XKB_MOD_NAME_ALT, keyboard_event_flag::option},
        {XKB_MOD_NAME_LOGO, keyboard_event_flag::command}};
    for (const auto& [name, flag] : names) {
        if (xkb_state_mod_name_is_active(state_, name, held) > 0) {
            flags |= flag;
        }
    }
    return flags;
}

std::optional<std::string> WaylandEventTap::keysymName(std::uint16_t storedKeyCode) const {
    const auto name = XkbKeyTranslation::xkbKeyName(storedKeyCode);
    const auto keycode = name && standardKeymap_
                             ? xkb_keymap_key_by_name(standardKeymap_, std::string(*name).c_str())
                             : XKB_KEYCODE_INVALID;
    const xkb_keysym_t* symbols = nullptr;
    if (keycode == XKB_KEYCODE_INVALID ||
        xkb_keymap_key_get_syms_by_level(standardKeymap_, keycode, 0, 0, &symbols) <= 0) {
        return std::nullopt;
    }
    char buffer[64];
    if (xkb_keysym_get_name(symbols[0], buffer, sizeof buffer) <= 0) {
        return std::nullopt;
    }
    return std::string(buffer);
}

std::vector<WaylandEventTap::Chord> WaylandEventTap::chords() const {
    const auto preferences = preferences_ ? preferences_->preferences() : SwitcherPreferences{};
    std::vector<Chord> result;
    for (auto gesture :
         {ExternalGesture::next, ExternalGesture::previous, ExternalGesture::sameApplication,
          ExternalGesture::sameApplicationPrevious, ExternalGesture::launcher}) {
        // A binding takes its keys from every window: gestures turned off leave them alone.
        const bool enabled = gesture == ExternalGesture::previous
                                 ? preferences.reverseCyclingEnabled
                             : gesture == ExternalGesture::sameApplication ||
                                     gesture == ExternalGesture::sameApplicationPrevious
                                 ? preferences.sameApplicationCyclingEnabled
                                 : true;
        if (!enabled) {
            continue;
        }
        const auto chord = chordOfGesture(gesture, preferences.shortcutConfiguration);
        auto key = keysymName(static_cast<std::uint16_t>(chord.storedKeyCode));
        if (!key) {
            log().error("no key has the stored code %{public}u; its shortcut is not available",
                        static_cast<unsigned>(chord.storedKeyCode));
            continue;
        }
        std::string modifiers;
        for (const auto& [flag, name] : {std::pair{keyboard_event_flag::control, "Ctrl+"},
                                         std::pair{keyboard_event_flag::option, "Mod1+"},
                                         std::pair{keyboard_event_flag::shift, "Shift+"}}) {
            if ((chord.flags & flag) != 0) {
                modifiers += name;
            }
        }
        result.push_back({std::move(modifiers), std::move(*key), gesture});
    }
    return result;
}

void WaylandEventTap::installBindings() {
    if (sway_ == nullptr || !sway_->isOpen()) {
        return;
    }
    for (const auto& chord : chords()) {
        const auto binding = chord.modifiers + chord.key;
        const auto errors = sway_->run("bindsym --no-repeat " + binding + " " + bindingCommand +
                                       gestureName(chord.gesture));
        if (errors.empty()) {
            installed_.push_back(binding);
        } else {
            log().error("sway refused the binding %{public}s: %{public}s", binding.c_str(),
                        errors.front().c_str());
        }
    }
    if (!installed_.empty()) {
        log().info("%{public}s and its companions are bound in sway", requiredChordName().c_str());
    }
}

void WaylandEventTap::removeBindings() {
    if (sway_ != nullptr && sway_->isOpen()) {
        for (const auto& binding : installed_) {
            sway_->run("unbindsym " + binding);
        }
    }
    installed_.clear();
}

std::string WaylandEventTap::requiredChordName() const {
    const auto preferences = preferences_ ? preferences_->preferences() : SwitcherPreferences{};
    const auto& shortcut = preferences.shortcutConfiguration;
    std::string name = shortcut.holdModifier == SwitcherHoldModifier::control ? "Ctrl+" : "Alt+";
    auto key = keysymName(shortcut.triggerKeyCode)
                   .value_or("key " + std::to_string(shortcut.triggerKeyCode));
    if (key[0] >= 'a' && key[0] <= 'z') {
        key[0] = static_cast<char>(key[0] - 'a' + 'A');
    }
    return name + key;
}

std::optional<ExternalGesture> WaylandEventTap::gestureOfBinding(const nlohmann::json& event) {
    const auto binding = event.find("binding");
    if (binding == event.end() || !binding->is_object()) {
        return std::nullopt;
    }
    const auto command = binding->value("command", std::string());
    const std::string_view prefix = bindingCommand;
    if (command.rfind(prefix, 0) != 0) {
        return std::nullopt;
    }
    return externalGestureNamed(std::string_view(command).substr(prefix.size()));
}

void WaylandEventTap::deliver(KeyboardEventType type, std::int64_t keyCode,
                              KeyboardEventFlags flags, std::u16string text, bool isAutorepeat) {
    if (type == keyboard_event_type::flagsChanged) {
        reportedFlags_ = flags;
    }
    if (callback_ && enabled_) {
        // Kept alive through the call: the logic may remove the tap from inside it.
        auto callback = callback_;
        callback(type, LinuxKeyboardEvent(keyCode, flags, isAutorepeat, std::move(text)));
    }
}

void WaylandEventTap::perform(ExternalGesture gesture) {
    if (!tap_) {
        return;
    }
    const auto preferences = preferences_ ? preferences_->preferences() : SwitcherPreferences{};
    const auto [key, flags] = chordOfGesture(gesture, preferences.shortcutConfiguration);
    // While the overlay has the keyboard, the modifiers it reports are the real ones.
    const auto before = hasFocus_ ? currentFlags() : reportedFlags_;
    deliver(keyboard_event_type::flagsChanged, 0, before | flags, {});
    deliver(keyboard_event_type::keyDown, key, reportedFlags_, {});
    deliver(keyboard_event_type::keyUp, key, reportedFlags_, {});
    const bool inSession = isSessionActive_ && isSessionActive_();
    if (hasFocus_ || !inSession) {
        // What is really held decides now: a released Alt ends the session at once.
        const auto held = hasFocus_ ? currentFlags() : before;
        if (held != reportedFlags_) {
            deliver(keyboard_event_type::flagsChanged, 0, held, {});
        }
        return;
    }
    if (!focusPatience_) {
        focusPatience_ = runLoop_->scheduleTimer(focusPatienceSeconds, false, 0.1, [this] {
            focusPatience_.reset();
            if (!hasFocus_ && isSessionActive_ && isSessionActive_()) {
                log().error("the overlay never had the keyboard; the gesture ends here");
                deliver(keyboard_event_type::flagsChanged, 0, 0, {});
            }
        });
    }
}

void WaylandEventTap::takeKeymap(int descriptor, std::uint32_t size) {
    void* mapped = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    ::close(descriptor);
    if (mapped == MAP_FAILED || context_ == nullptr) {
        log().error("the compositor's keymap could not be read; keys are unnamed");
        return;
    }
    auto* keymap =
        xkb_keymap_new_from_buffer(context_, static_cast<const char*>(mapped),
                                   ::strnlen(static_cast<const char*>(mapped), size),
                                   XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS);
    ::munmap(mapped, size);
    auto* state = keymap != nullptr ? xkb_state_new(keymap) : nullptr;
    if (state == nullptr) {
        xkb_keymap_unref(keymap);
        log().error("the compositor's keymap does not compile; keeping the previous one");
        return;
    }
    xkb_state_unref(state_);
    xkb_keymap_unref(keymap_);
    keymap_ = keymap;
    state_ = state;
}

std::int64_t WaylandEventTap::storedKeyCodeOf(xkb_keycode_t keycode) const {
    const char* name = keymap_ ? xkb_keymap_key_get_name(keymap_, keycode) : nullptr;
    if (name != nullptr) {
        if (auto stored = XkbKeyTranslation::storedKeyCode(name)) {
            return *stored;
        }
    }
    // A keymap of its own (a virtual keyboard's) names its keys as it likes: the key of the
    // standard layout that types the same is the one meant.
    const xkb_keysym_t* symbols = nullptr;
    if (keymap_ != nullptr && standardKeymap_ != nullptr &&
        xkb_keymap_key_get_syms_by_level(keymap_, keycode, 0, 0, &symbols) > 0) {
        const auto keysym = symbols[0];
        for (auto candidate = xkb_keymap_min_keycode(standardKeymap_);
             candidate <= xkb_keymap_max_keycode(standardKeymap_); ++candidate) {
            const xkb_keysym_t* standard = nullptr;
            if (xkb_keymap_key_get_syms_by_level(standardKeymap_, candidate, 0, 0, &standard) > 0 &&
                standard[0] == keysym) {
                const char* standardName = xkb_keymap_key_get_name(standardKeymap_, candidate);
                if (auto stored = standardName ? XkbKeyTranslation::storedKeyCode(standardName)
                                               : std::nullopt) {
                    return *stored;
                }
            }
        }
    }
    // Keys without a stored code still need one that no stored key uses.
    return 0x1000 + keycode;
}

void WaylandEventTap::handleModifiers(std::uint32_t depressed, std::uint32_t latched,
                                      std::uint32_t locked, std::uint32_t group) {
    if (state_ == nullptr) {
        return;
    }
    xkb_state_update_mask(state_, depressed, latched, locked, 0, 0, group);
    const auto flags = currentFlags();
    if (flags != reportedFlags_) {
        deliver(keyboard_event_type::flagsChanged, 0, flags, {});
    }
}

void WaylandEventTap::handleKey(std::uint32_t key, bool isPress) {
    if (state_ == nullptr) {
        return;
    }
    const xkb_keycode_t keycode = key + 8;
    const auto keysym = xkb_state_key_get_one_sym(state_, keycode);
    // Modifier keys tell their change in the modifiers event that follows.
    if (XkbKeyTranslation::modifierFlagOfKeysym(keysym) != 0) {
        return;
    }
    const auto flags = currentFlags();
    if (flags != reportedFlags_) {
        deliver(keyboard_event_type::flagsChanged, 0, flags, {});
    }
    std::u16string text;
    if (isPress) {
        char buffer[64] = {};
        xkb_state_key_get_utf8(state_, keycode, buffer, sizeof buffer);
        text = utf16(compose_ ? compose_->feed(keysym, buffer) : buffer);
    }
    if (isPress) {
        startRepeating(keycode);
    } else if (repeating_ && repeating_->keycode == keycode) {
        stopRepeating();
    }
    deliver(isPress ? keyboard_event_type::keyDown : keyboard_event_type::keyUp,
            storedKeyCodeOf(keycode), flags, std::move(text));
}

void WaylandEventTap::startRepeating(xkb_keycode_t keycode) {
    stopRepeating();
    if (repeatRate_ <= 0 || keymap_ == nullptr || !xkb_keymap_key_repeats(keymap_, keycode)) {
        return;
    }
    // Wayland leaves repeat to the client: the compositor only says how fast.
    repeating_ = Repeating{
        keycode, runLoop_->scheduleTimer(repeatDelay_ / 1000.0, false, 0.0, [this, keycode] {
            if (!repeating_) {
                return;
            }
            repeating_->timer = runLoop_->scheduleTimer(1.0 / repeatRate_, true, 0.0,
                                                        [this, keycode] { repeat(keycode); });
            repeat(keycode);
        })};
}

void WaylandEventTap::stopRepeating() {
    if (repeating_) {
        runLoop_->cancelTimer(repeating_->timer);
        repeating_.reset();
    }
}

void WaylandEventTap::repeat(xkb_keycode_t keycode) {
    // A key still held when the overlay went away is released where Orvane does not hear it.
    if (state_ == nullptr || !hasFocus_ || !isSessionActive_ || !isSessionActive_()) {
        stopRepeating();
        return;
    }
    char buffer[64] = {};
    xkb_state_key_get_utf8(state_, keycode, buffer, sizeof buffer);
    deliver(keyboard_event_type::keyDown, storedKeyCodeOf(keycode), currentFlags(), utf16(buffer),
            true);
}

}  // namespace orvane
