// Software updates on Linux come from the package manager: the updater never checks by itself and
// has no control to offer. It tells how new versions arrive: with the system's updates for a
// packaged copy, by building again for one built from source.
#pragma once

#include <filesystem>
#include <string>

#include "platform/UpdaterPort.h"

namespace orvane {

class PackageManagerUpdater final : public UpdaterPort {
  public:
    // `program` is the running executable; `packageDatabase` the folder of dpkg's file lists.
    explicit PackageManagerUpdater(std::filesystem::path program,
                                   std::filesystem::path packageDatabase = "/var/lib/dpkg/info");

    void startUpdater() override {}
    bool canCheckForUpdates() const override { return false; }
    UpdaterObservationToken observeCanCheckForUpdates(std::function<void(bool)> observer,
                                                      bool initial) override;
    void removeCanCheckForUpdatesObserver(UpdaterObservationToken) override {}
    bool automaticallyChecksForUpdates() const override { return false; }
    void setAutomaticallyChecksForUpdates(bool) override {}
    void checkForUpdates() override {}
    std::string externalUpdateSource() const override;

    // Whether a package of the database lists `program` among its files.
    bool isPackaged() const;

  private:
    std::filesystem::path program_;
    std::filesystem::path packageDatabase_;
    UpdaterObservationToken lastToken_ = 0;
};

}  // namespace orvane
