// The general pasteboard.
#pragma once

#include <optional>
#include <string>

namespace orvane {

inline constexpr const char* pasteboardTypeString = "public.utf8-plain-text";

class PasteboardPort {
  public:
    virtual ~PasteboardPort() = default;

    // Removes whatever the pasteboard holds, of every type.
    virtual void clearContents() = 0;
    // Answers whether the pasteboard took the text.
    virtual bool setString(const std::string& text, const std::string& type) = 0;
    virtual std::optional<std::string> stringForType(const std::string& type) const = 0;
};

}  // namespace orvane
