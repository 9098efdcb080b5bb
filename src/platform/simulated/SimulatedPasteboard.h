// The simulated general pasteboard: typed texts, with the platform's rule that only whoever cleared
// the pasteboard last may write to it. Counts the clears.
#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "platform/PasteboardPort.h"

namespace orvane {

class SimulatedPasteboard final : public PasteboardPort {
  public:
    void clearContents() override;
    // Refused while another application owns the contents.
    bool setString(const std::string& text, const std::string& type) override;
    std::optional<std::string> stringForType(const std::string& type) const override;

    // Another application takes the pasteboard and leaves these texts on it.
    void setContentsFromAnotherApplication(std::map<std::string, std::string> stringsByType);
    const std::map<std::string, std::string>& stringsByType() const { return stringsByType_; }
    std::size_t clearCount() const { return clearCount_; }

  private:
    std::map<std::string, std::string> stringsByType_;
    bool ownedByProgram_ = false;
    std::size_t clearCount_ = 0;
};

}  // namespace orvane
