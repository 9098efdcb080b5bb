#include "platform/posix/LinuxSystemInformation.h"

#include <cstring>
#include <fstream>
#include <string>

namespace orvane {

namespace {

std::string firstLine(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    while (!line.empty() && (line.back() == ' ' || line.back() == '\n')) {
        line.pop_back();
    }
    return line;
}

}  // namespace

LinuxSystemInformation::LinuxSystemInformation(std::filesystem::path root)
    : root_(std::move(root)) {}

std::string LinuxSystemInformation::operatingSystemVersionString() const {
    for (const char* candidate : {"etc/os-release", "usr/lib/os-release"}) {
        std::ifstream file(root_ / candidate);
        for (std::string line; std::getline(file, line);) {
            if (line.rfind("PRETTY_NAME=", 0) == 0) {
                auto value = line.substr(12);
                if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
                    value.back() == value.front()) {
                    value = value.substr(1, value.size() - 2);
                }
                return value;
            }
        }
    }
    return "Linux";
}

int LinuxSystemInformation::sysctlByName(const std::string& name, void* oldValue,
                                         std::size_t* oldLength) const {
    if (name != "hw.model" || oldLength == nullptr) {
        return -1;
    }
    const auto dmi = root_ / "sys/class/dmi/id";
    auto model = firstLine(dmi / "product_name");
    const auto vendor = firstLine(dmi / "sys_vendor");
    if (!vendor.empty() && model.rfind(vendor, 0) != 0) {
        model = vendor + (model.empty() ? "" : " " + model);
    }
    if (model.empty()) {
        return -1;
    }
    const std::size_t size = model.size() + 1;
    if (oldValue == nullptr) {
        *oldLength = size;
        return 0;
    }
    const auto count = std::min(*oldLength, size);
    std::memcpy(oldValue, model.c_str(), count);
    *oldLength = count;
    return 0;
}

}  // namespace orvane
