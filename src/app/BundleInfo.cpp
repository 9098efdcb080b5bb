#include "app/BundleInfo.h"

namespace orvane {

std::string bundleInfoText(const BundlePort& bundle, const std::string& key) {
    const auto value = bundle.objectForInfoDictionaryKey(key);
    return value && value->text() != nullptr ? *value->text() : std::string("—");
}

std::string applicationVersionText(const BundlePort& bundle) {
    return bundleInfoText(bundle, "CFBundleShortVersionString") + " (" +
           bundleInfoText(bundle, "CFBundleVersion") + ")";
}

}  // namespace orvane
