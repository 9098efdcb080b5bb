// Opening shared libraries and looking up their entry points at run time (`dlopen`, `dlsym`).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

using DynamicLibraryHandle = std::uint64_t;

class DynamicLibraryPort {
  public:
    virtual ~DynamicLibraryPort() = default;

    // Mode 1 is lazy binding. Without a path, the program itself. Nothing when it can't be opened.
    virtual std::optional<DynamicLibraryHandle> open(const std::optional<std::string>& path,
                                                     int mode) = 0;
    // The entry point's address, or null when the library has no such symbol.
    virtual void* symbol(DynamicLibraryHandle library, std::string_view name) = 0;
};

}  // namespace orvane
