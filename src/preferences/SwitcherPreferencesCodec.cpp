#include "preferences/SwitcherPreferencesCodec.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

// Quotes a stored value for a failure reason; the parser already rejected invalid UTF-8, the
// replacement handler only guards against throwing while reporting.
std::string describe(const json& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

// Reads the keys of one JSON object into fields, in call order. After the first failure every
// later read is skipped, so the reason always names the first failing key in the table.
class FieldReader {
  public:
    FieldReader(const json& object, std::string prefix)
        : object_(object), prefix_(std::move(prefix)) {}

    bool failed() const { return failure_.has_value(); }
    std::string takeFailure() { return std::move(*failure_); }

    void readBool(const char* key, bool& field) {
        const json* value = present(key);
        if (value == nullptr) {
            return;
        }
        if (!value->is_boolean()) {
            fail(key, "expected a boolean, found " + std::string(value->type_name()));
            return;
        }
        field = value->get<bool>();
    }

    template <typename Enumeration, std::size_t Count>
    void readEnumeration(const char* key, const std::array<Enumeration, Count>& cases,
                         Enumeration& field) {
        const json* value = present(key);
        if (value == nullptr) {
            return;
        }
        if (!value->is_string()) {
            fail(key, "expected a string, found " + std::string(value->type_name()));
            return;
        }
        const auto& raw = value->get_ref<const std::string&>();
        std::string choices;
        for (Enumeration candidate : cases) {
            if (rawValue(candidate) == raw) {
                field = candidate;
                return;
            }
            choices += choices.empty() ? "" : ", ";
            choices += rawValue(candidate);
        }
        fail(key, describe(*value) + " is not one of " + choices);
    }

    void readKeyCode(const char* key, StoredKeyCode& field) {
        const json* value = present(key);
        if (value == nullptr) {
            return;
        }
        if (!value->is_number()) {
            fail(key, "expected a number, found " + std::string(value->type_name()));
            return;
        }
        constexpr auto limit = std::numeric_limits<StoredKeyCode>::max();
        // JSON has one number type, so 48.0 is the integer 48 whichever way it was written.
        std::optional<StoredKeyCode> code;
        if (value->is_number_unsigned()) {
            const auto integer = value->get<std::uint64_t>();
            if (integer <= limit) {
                code = static_cast<StoredKeyCode>(integer);
            }
        } else if (value->is_number_integer()) {
            const auto integer = value->get<std::int64_t>();
            if (integer >= 0 && integer <= limit) {
                code = static_cast<StoredKeyCode>(integer);
            }
        } else {
            const auto number = value->get<double>();
            if (number >= 0 && number <= limit && std::trunc(number) == number) {
                code = static_cast<StoredKeyCode>(number);
            }
        }
        if (!code) {
            fail(key, describe(*value) + " is not an integer from 0 to " + std::to_string(limit));
            return;
        }
        field = *code;
    }

    // Hands the nested object to `read`, which receives a reader for it.
    template <typename Read>
    void readObject(const char* key, Read read) {
        const json* value = present(key);
        if (value == nullptr) {
            return;
        }
        if (!value->is_object()) {
            fail(key, "expected an object, found " + std::string(value->type_name()));
            return;
        }
        FieldReader nested(*value, prefix_ + key + ".");
        read(nested);
        if (nested.failed()) {
            failure_ = nested.takeFailure();
        }
    }

  private:
    // The value stored under `key`, or null when the field keeps its default.
    const json* present(const char* key) const {
        if (failed()) {
            return nullptr;
        }
        const auto found = object_.find(key);
        if (found == object_.end() || found->is_null()) {
            return nullptr;
        }
        return &*found;
    }

    void fail(const char* key, const std::string& reason) {
        failure_ = prefix_ + key + ": " + reason;
    }

    const json& object_;
    std::string prefix_;
    std::optional<std::string> failure_;
};

}  // namespace

SwitcherPreferencesCodec::EncodeResult SwitcherPreferencesCodec::encode(
    const SwitcherPreferences& preferences) {
    const auto& shortcut = preferences.shortcutConfiguration;
    ordered_json object;
    object["shortcutConfiguration"] = ordered_json{
        {"holdModifier", std::string(rawValue(shortcut.holdModifier))},
        {"triggerKeyCode", shortcut.triggerKeyCode},
    };
    object["reverseCyclingEnabled"] = preferences.reverseCyclingEnabled;
    object["sameApplicationCyclingEnabled"] = preferences.sameApplicationCyclingEnabled;
    object["thumbnailsEnabled"] = preferences.thumbnailsEnabled;
    object["overlayLayoutStyle"] = std::string(rawValue(preferences.overlayLayoutStyle));
    object["cardSize"] = std::string(rawValue(preferences.cardSize));
    object["menuBarIconVisible"] = preferences.menuBarIconVisible;
    try {
        return {object.dump(), {}};
    } catch (const ordered_json::exception& error) {
        return {std::nullopt, error.what()};
    }
}

SwitcherPreferencesCodec::DecodeResult SwitcherPreferencesCodec::decode(std::string_view bytes) {
    json document;
    try {
        document = json::parse(bytes.begin(), bytes.end());
    } catch (const json::exception& error) {
        // A number beyond a double's range raises out_of_range, not parse_error: both mean bytes
        // that hold no record.
        return {std::nullopt, std::string("not valid JSON: ") + error.what()};
    }
    if (!document.is_object()) {
        return {std::nullopt,
                "top level: expected an object, found " + std::string(document.type_name())};
    }

    SwitcherPreferences preferences;
    FieldReader reader(document, "");
    reader.readObject("shortcutConfiguration", [&](FieldReader& nested) {
        auto& shortcut = preferences.shortcutConfiguration;
        nested.readEnumeration("holdModifier", allSwitcherHoldModifiers, shortcut.holdModifier);
        nested.readKeyCode("triggerKeyCode", shortcut.triggerKeyCode);
    });
    reader.readBool("reverseCyclingEnabled", preferences.reverseCyclingEnabled);
    reader.readBool("sameApplicationCyclingEnabled", preferences.sameApplicationCyclingEnabled);
    reader.readBool("thumbnailsEnabled", preferences.thumbnailsEnabled);
    reader.readEnumeration("overlayLayoutStyle", allSwitcherOverlayLayoutStyles,
                           preferences.overlayLayoutStyle);
    reader.readEnumeration("cardSize", allSwitcherCardSizes, preferences.cardSize);
    reader.readBool("menuBarIconVisible", preferences.menuBarIconVisible);
    if (reader.failed()) {
        return {std::nullopt, reader.takeFailure()};
    }
    return {preferences, {}};
}

}  // namespace orvane
