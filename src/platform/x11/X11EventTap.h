// The event tap over the X keyboard. Passive synchronous grabs on the root window catch the
// shortcut chords (with every lock-key combination); while a switcher or launcher session runs, an
// active grab brings every key. "Swallow" consumes a frozen event, "pass" replays it to the
// focused window. Modifier changes are reported as flags-changed events, and a modifier state the
// logic has not seen yet is reported before the key that reveals it.
#pragma once

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon.h>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/PreferencesProviding.h"
#include "platform/EventTapPort.h"
#include "platform/ExternalGesture.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/XkbComposeInput.h"

namespace orvane {

class X11EventTap final : public EventTapPort {
  public:
    explicit X11EventTap(X11Connection& connection);
    ~X11EventTap() override;

    // Where the chords come from; grabs follow every change. Set before the tap is created.
    void setPreferences(std::shared_ptr<PreferencesProviding> preferences);
    // Whether a session runs now: the active grab is held exactly while it answers true.
    void setSessionQuery(std::function<bool()> isSessionActive);

    std::optional<EventTapHandle> createTap(std::uint32_t location, std::uint32_t placement,
                                            std::uint32_t options, std::uint64_t eventMask,
                                            Callback callback) override;
    std::optional<RunLoopSourceHandle> createRunLoopSource(EventTapHandle tap) override;
    void enableTap(EventTapHandle tap, bool enabled) override;
    bool isTapEnabled(EventTapHandle tap) const override;
    void invalidate(EventTapHandle tap) override;
    KeyboardEventFlags flagsState(std::int32_t stateIdentifier) const override;

    // Whether the required chord (hold and trigger) is Orvane's now, or free to take: another
    // program's grab can only be seen by trying, so a grab is made and let go at once.
    bool requiredChordIsFree();
    // The required chord in the desktop's words ("Alt+Tab").
    std::string requiredChordName() const;

    // Told, after every grab of the chords, whether a chord the tap wants is held by another
    // program, so that someone retries it: only the required chord has the program's own retry.
    void setMissingChordsHandler(std::function<void(bool anyMissing)> handler) {
        missingChordsHandler_ = std::move(handler);
    }
    // Told when the switcher's hold modifier went down outside a session: a gesture likely
    // follows.
    void setHoldModifierHandler(std::function<void()> handler) {
        holdModifierHandler_ = std::move(handler);
    }
    // Grabs the chords another program held until now; each one taken is said once.
    void retryMissingChords();

    // Plays a gesture that came from outside as the keys of its chord. The session it starts then
    // follows the real keyboard: a hold modifier still held keeps it open until released, one
    // already up commits it at once.
    void perform(ExternalGesture gesture);

  private:
    struct Chord {
        std::string name;
        xcb_keycode_t keycode = 0;
        std::uint16_t modifiers = 0;
        bool required = false;
    };

    void handleEvent(const xcb_generic_event_t& event);
    void handleKey(const xcb_key_press_event_t& event, bool isPress);
    void deliver(KeyboardEventType type, std::int64_t keyCode, KeyboardEventFlags flags,
                 bool isAutorepeat, std::u16string text, bool* swallowed);
    void reloadKeymap();
    std::vector<Chord> chords() const;
    struct GrabOutcome {
        bool anyTaken = false;
        bool requiredTaken = false;
    };
    // Grabs every chord not held yet; one line per chord another program holds, said once.
    GrabOutcome grabMissingChords();
    // Grabs every chord; false, holding none, when the required chord could not be grabbed.
    bool grabChords();
    bool holds(const Chord& chord) const;
    // Grabs one chord with every lock-key combination; false, with none of them kept, when
    // another program holds it.
    bool grabChord(const Chord& chord);
    void ungrabChord(const Chord& chord);
    void ungrabChords();
    void synchronizeActiveGrab(xcb_timestamp_t time);
    xcb_keycode_t keycodeOf(std::uint16_t storedKeyCode) const;
    std::int64_t storedKeyCodeOf(xcb_keycode_t keycode) const;
    void forwardToFocus(const xcb_key_press_event_t& event);

    X11Connection& connection_;
    std::shared_ptr<PreferencesProviding> preferences_;
    std::optional<ObservationToken> preferencesObservation_;
    std::function<bool()> isSessionActive_;
    xkb_context* context_ = nullptr;
    xkb_keymap* keymap_ = nullptr;
    xkb_state* state_ = nullptr;
    std::unique_ptr<XkbComposeInput> compose_;
    std::int32_t deviceIdentifier_ = -1;
    std::uint8_t xkbFirstEvent_ = 0;

    std::optional<EventTapHandle> tap_;
    Callback callback_;
    bool enabled_ = false;
    EventTapHandle lastHandle_ = 0;
    std::vector<Chord> grabbed_;
    bool activeGrab_ = false;
    KeyboardEventFlags reportedFlags_ = 0;
    std::set<xcb_keycode_t> pressedKeys_;
    // Chords reported as taken, so that each retry does not say it again.
    std::set<std::string> reportedTaken_;
    std::function<void(bool)> missingChordsHandler_;
    std::function<void()> holdModifierHandler_;
    std::uint16_t heldModifiers_ = 0;
};

}  // namespace orvane
