// The software updater as the menu and the About pane see it.
#pragma once

#include <functional>
#include <string>

#include "core/Observable.h"

namespace orvane {

class SoftwareUpdateService {
  public:
    virtual ~SoftwareUpdateService() = default;

    // The updater can start a check now; observable.
    virtual bool canCheckForUpdates() const = 0;
    virtual ObservationToken observeCanCheckForUpdates(
        std::function<void(const bool&)> observer) = 0;
    virtual void removeCanCheckForUpdatesObserver(ObservationToken token) = 0;

    virtual bool automaticallyChecksForUpdates() const = 0;
    virtual void setAutomaticallyChecksForUpdates(bool enabled) = 0;
    // Starts a user-initiated update check.
    virtual void checkForUpdates() = 0;
    // How new versions arrive when the program does not update itself (a package manager brings
    // them); empty when it does. Then nothing about checking is offered.
    virtual std::string externalUpdateSource() const = 0;
};

}  // namespace orvane
