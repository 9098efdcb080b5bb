#include "platform/posix/ProgramBundle.h"

namespace orvane {

ProgramBundle::ProgramBundle(const std::string& version, const std::string& build)
    : infoDictionary_{{"CFBundleShortVersionString", version},
                      {"CFBundleVersion", build},
                      {"CFBundleIdentifier", std::string("com.brimcote.orvane")},
                      {"CFBundleName", std::string("Orvane")}} {}

std::optional<PropertyListValue> ProgramBundle::objectForInfoDictionaryKey(
    const std::string& key) const {
    auto found = infoDictionary_.find(key);
    if (found == infoDictionary_.end()) {
        return std::nullopt;
    }
    return found->second;
}

}  // namespace orvane
