// Any format string with arguments of every kind, including numbers no integer holds.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "core/LogMessageFormatter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Up to eight arguments of nine bytes each (a kind and a payload), then the format string.
    std::vector<orvane::LogArgument> arguments;
    std::size_t offset = 0;
    const std::size_t count = size > 0 ? data[offset++] % 9 : 0;
    for (std::size_t index = 0; index < count && offset + 9 <= size; ++index, offset += 9) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, data + offset + 1, sizeof bits);
        switch (data[offset] % 5) {
            case 0:
                arguments.emplace_back(static_cast<std::int64_t>(bits));
                break;
            case 1:
                arguments.emplace_back(bits);
                break;
            case 2: {
                double number = 0;
                std::memcpy(&number, &bits, sizeof number);
                arguments.emplace_back(number);
                break;
            }
            case 3:
                arguments.emplace_back((bits & 1) != 0);
                break;
            default:
                arguments.emplace_back(
                    std::string(reinterpret_cast<const char*>(data + offset + 1), 8));
                break;
        }
    }
    const std::string_view format(reinterpret_cast<const char*>(data + offset), size - offset);
    (void)orvane::LogMessageFormatter::format(format, arguments);
    return 0;
}
