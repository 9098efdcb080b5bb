// Drives the launcher: the searchable overlay over open windows or installed applications.
#pragma once

#include <cstddef>
#include <string>

namespace orvane {

class LauncherSessionDriving {
  public:
    virtual ~LauncherSessionDriving() = default;

    virtual bool isLauncherSessionActive() const = 0;
    // Starts on the windows mode with an empty query; no effect when already active.
    virtual void beginLauncherSession() = 0;
    // Toggles windows and applications; the query is cleared and the selection goes to 0.
    virtual void switchLauncherMode() = 0;
    // Appends non-empty text; selection 0; results computed anew.
    virtual void appendToSearchQuery(const std::string& text) = 0;
    // Removes the query's last character; no effect on an empty query; selection 0.
    virtual void deleteLastSearchCharacter() = 0;
    // Steps the selection, wrapping over the visible items.
    virtual void moveLauncherSelection(std::ptrdiff_t delta) = 0;
    // Ends the session, then activates the selected item through the mode that was active.
    virtual void commitLauncherSession() = 0;
    // Ends the session, activates nothing, dismisses the overlay.
    virtual void endLauncherSession() = 0;
};

}  // namespace orvane
