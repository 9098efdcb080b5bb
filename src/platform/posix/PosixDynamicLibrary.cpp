#include "platform/posix/PosixDynamicLibrary.h"

#include <dlfcn.h>

#include <cstdint>

namespace orvane {

static_assert(sizeof(void*) <= sizeof(DynamicLibraryHandle),
              "a library handle must fit in the port's handle");

std::optional<DynamicLibraryHandle> PosixDynamicLibrary::open(
    const std::optional<std::string>& path, int mode) {
    void* library = dlopen(path ? path->c_str() : nullptr, mode);
    if (library == nullptr) {
        return std::nullopt;
    }
    return static_cast<DynamicLibraryHandle>(reinterpret_cast<std::uintptr_t>(library));
}

void* PosixDynamicLibrary::symbol(DynamicLibraryHandle library, std::string_view name) {
    return dlsym(reinterpret_cast<void*>(static_cast<std::uintptr_t>(library)),
                 std::string(name).c_str());
}

}  // namespace orvane
