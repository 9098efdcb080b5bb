// The event tap on a Wayland compositor, where only the compositor sees every key. A gesture's
// first key comes from outside: a binding the compositor keeps (on sway, Orvane's own, added over
// its IPC as the preferences say and removed when the tap goes), or `orvane --gesture`. It is
// played as the keys of its chord. From then on the overlay has the keyboard, and its keys and
// modifier changes come here through the seat's keyboard, translated with the compositor's keymap:
// the release of the hold modifier, or a keyboard entering with it already up, ends the gesture.
// Main thread only.
#pragma once

#include <xkbcommon/xkbcommon.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/PreferencesProviding.h"
#include "platform/EventTapPort.h"
#include "platform/ExternalGesture.h"
#include "platform/wayland/SwayIpc.h"
#include "platform/wayland/WaylandConnection.h"
#include "platform/x11/XkbComposeInput.h"

namespace orvane {

class WaylandEventTap final : public EventTapPort {
  public:
    // With `sway`, the chords are sway bindings; without, only gestures sent from outside start a
    // session.
    // A session that has not had the keyboard within a second of its start is ended: the
    // compositor gave the overlay no focus, and no release would ever be seen.
    WaylandEventTap(WaylandConnection& connection, SwayIpc* sway,
                    std::shared_ptr<RunLoopPort> runLoop);
    ~WaylandEventTap() override;
    WaylandEventTap(const WaylandEventTap&) = delete;
    WaylandEventTap& operator=(const WaylandEventTap&) = delete;

    // Where the chords come from; the bindings follow every change. Set before the tap is made.
    void setPreferences(std::shared_ptr<PreferencesProviding> preferences);
    // Whether a session runs now.
    void setSessionQuery(std::function<bool()> isSessionActive);

    std::optional<EventTapHandle> createTap(std::uint32_t location, std::uint32_t placement,
                                            std::uint32_t options, std::uint64_t eventMask,
                                            Callback callback) override;
    std::optional<RunLoopSourceHandle> createRunLoopSource(EventTapHandle tap) override;
    void enableTap(EventTapHandle tap, bool enabled) override;
    bool isTapEnabled(EventTapHandle tap) const override;
    void invalidate(EventTapHandle tap) override;
    KeyboardEventFlags flagsState(std::int32_t stateIdentifier) const override;

    // Whether Orvane's bindings are in place now.
    bool hasBindings() const { return !installed_.empty(); }
    // The required chord in the desktop's words ("Alt+Tab").
    std::string requiredChordName() const;

    // A gesture from outside or from a binding, played as the keys of its chord.
    void perform(ExternalGesture gesture);
    // The gesture of a binding event of sway's IPC; nothing for bindings that are not Orvane's.
    static std::optional<ExternalGesture> gestureOfBinding(const nlohmann::json& event);

  private:
    struct Chord {
        std::string modifiers;  // as sway names them: "Mod1+Shift+"
        std::string key;        // the keysym's name: "Tab"
        ExternalGesture gesture = ExternalGesture::next;
    };

    // The name of the keysym a stored key types in the standard layout ("Tab", "grave").
    std::optional<std::string> keysymName(std::uint16_t storedKeyCode) const;
    std::vector<Chord> chords() const;
    void installBindings();
    void removeBindings();
    void deliver(KeyboardEventType type, std::int64_t keyCode, KeyboardEventFlags flags,
                 std::u16string text, bool isAutorepeat = false);
    KeyboardEventFlags currentFlags() const;
    std::int64_t storedKeyCodeOf(xkb_keycode_t keycode) const;
    void takeKeymap(int descriptor, std::uint32_t size);
    void handleKey(std::uint32_t key, bool isPress);
    void startRepeating(xkb_keycode_t keycode);
    void stopRepeating();
    void repeat(xkb_keycode_t keycode);
    void handleModifiers(std::uint32_t depressed, std::uint32_t latched, std::uint32_t locked,
                         std::uint32_t group);

    struct Listeners;

    WaylandConnection& connection_;
    SwayIpc* sway_;
    std::shared_ptr<RunLoopPort> runLoop_;
    std::optional<TimerToken> focusPatience_;
    wl_seat* seat_ = nullptr;
    wl_keyboard* keyboard_ = nullptr;
    xkb_context* context_ = nullptr;
    // The compositor's keymap for the keys; a standard one names the keys of the bindings.
    xkb_keymap* keymap_ = nullptr;
    xkb_state* state_ = nullptr;
    xkb_keymap* standardKeymap_ = nullptr;
    std::unique_ptr<XkbComposeInput> compose_;
    std::shared_ptr<PreferencesProviding> preferences_;
    std::optional<ObservationToken> preferencesObservation_;
    std::function<bool()> isSessionActive_;
    std::optional<EventTapHandle> tap_;
    Callback callback_;
    bool enabled_ = false;
    EventTapHandle lastHandle_ = 0;
    KeyboardEventFlags reportedFlags_ = 0;
    bool hasFocus_ = false;
    // The key held down that repeats, at the compositor's rate (keys a second) after its delay
    // (milliseconds).
    struct Repeating {
        xkb_keycode_t keycode = 0;
        TimerToken timer = 0;
    };
    std::optional<Repeating> repeating_;
    std::int32_t repeatRate_ = 25, repeatDelay_ = 600;
    // The bindings sway holds for Orvane, as sway names them ("Mod1+Tab").
    std::vector<std::string> installed_;
};

}  // namespace orvane
