// The pasteboard as the desktop's clipboard (the X CLIPBOARD selection, through Qt).
#pragma once

#include "platform/PasteboardPort.h"

namespace orvane {

class QtPasteboard final : public PasteboardPort {
  public:
    void clearContents() override;
    // Only plain text is kept; other types are refused.
    bool setString(const std::string& text, const std::string& type) override;
    std::optional<std::string> stringForType(const std::string& type) const override;
};

}  // namespace orvane
