// User defaults as files under `$XDG_CONFIG_HOME/orvane/` (or `~/.config/orvane/`), one file per
// key. Each write goes to a temporary file that is flushed to disk and renamed over the old one,
// so a crash or a full disk leaves the last good record in place.
#pragma once

#include <filesystem>

#include "platform/UserDefaultsPort.h"

namespace orvane {

class XdgUserDefaults final : public UserDefaultsPort {
  public:
    // The folder from the environment, created on the first write.
    static std::filesystem::path defaultFolder();
    explicit XdgUserDefaults(std::filesystem::path folder = defaultFolder());

    std::optional<std::string> dataForKey(const std::string& key) const override;
    // A failed write is logged and leaves the file as it was.
    void setData(const std::string& key, const std::string& bytes) override;

    std::filesystem::path pathForKey(const std::string& key) const;

  private:
    std::filesystem::path folder_;
};

}  // namespace orvane
