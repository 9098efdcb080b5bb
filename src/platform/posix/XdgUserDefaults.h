// User defaults as files under `$XDG_CONFIG_HOME/orvane/` (or `~/.config/orvane/`), one file per
// key. Each write goes to a temporary file that is flushed to disk and renamed over the old one,
// so a crash or a full disk leaves the last good record in place.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "platform/UserDefaultsPort.h"

namespace orvane {

class XdgUserDefaults final : public UserDefaultsPort {
  public:
    // Why the program can't take the record stored under a key; empty when it can.
    using Validator = std::function<std::string(const std::string& key, const std::string& bytes)>;

    // The folder from the environment, created on the first write.
    static std::filesystem::path defaultFolder();
    // A record the validator rejects, or a file that can't be read, is said once, naming the file
    // and the reason, and its bytes are kept beside it as `….rejected`: the next write replaces
    // the file, and the user's hand-edited text is not lost with it.
    explicit XdgUserDefaults(std::filesystem::path folder = defaultFolder(),
                             Validator validator = {});

    std::optional<std::string> dataForKey(const std::string& key) const override;
    // A failed write is logged and leaves the file as it was.
    std::optional<std::string> setData(const std::string& key, const std::string& bytes) override;

    std::filesystem::path pathForKey(const std::string& key) const;

  private:
    void keepAside(const std::filesystem::path& path, const std::string& bytes,
                   const std::string& reason) const;

    std::filesystem::path folder_;
    Validator validator_;
};

}  // namespace orvane
