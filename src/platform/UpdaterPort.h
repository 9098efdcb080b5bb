// The software updater framework: its controller with the standard user interface, and the
// updater's observable ability to check.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace orvane {

using UpdaterObservationToken = std::uint64_t;

class UpdaterPort {
  public:
    virtual ~UpdaterPort() = default;

    // Creates the controller and starts the updater, with no delegates.
    virtual void startUpdater() = 0;
    virtual bool canCheckForUpdates() const = 0;
    // Calls `observer` with each new value on the thread that changes it; with `initial`, also at
    // once with the current value, before returning.
    virtual UpdaterObservationToken observeCanCheckForUpdates(std::function<void(bool)> observer,
                                                              bool initial) = 0;
    virtual void removeCanCheckForUpdatesObserver(UpdaterObservationToken token) = 0;
    virtual bool automaticallyChecksForUpdates() const = 0;
    virtual void setAutomaticallyChecksForUpdates(bool enabled) = 0;
    virtual void checkForUpdates() = 0;
    // How new versions arrive when something other than this updater brings them (a package
    // manager), in a sentence for the user; empty for an updater that checks by itself.
    virtual std::string externalUpdateSource() const = 0;
};

}  // namespace orvane
