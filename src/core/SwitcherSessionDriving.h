// Drives one switcher session: start, step the selection, commit or cancel. Main thread only.
#pragma once

#include <cstddef>

#include "core/SwitcherSelectionDirection.h"

namespace orvane {

class SwitcherSessionDriving {
  public:
    virtual ~SwitcherSessionDriving() = default;

    virtual bool isSessionActive() const = 0;
    // Starts over all switchable windows; true when a session runs afterwards.
    virtual bool startSession(bool backward) = 0;
    // The same over the frontmost process's windows.
    virtual bool startSameApplicationSession(bool backward) = 0;
    // Steps by a delta, wrapping at both ends.
    virtual void moveSelection(std::ptrdiff_t delta) = 0;
    // `left` and `up` step back by one; `right` and `down` forward.
    virtual void moveSelection(SwitcherSelectionDirection direction) = 0;
    // Ends the session and activates the selected window.
    virtual void commitSession() = 0;
    // Ends the session; nothing is activated.
    virtual void cancelSession() = 0;
};

}  // namespace orvane
