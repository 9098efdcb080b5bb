// The dynamic library port of a POSIX system, over `dlopen` and `dlsym`. Libraries it opens stay
// loaded for the program's life, so that entry points found in them never dangle.
#pragma once

#include "platform/DynamicLibraryPort.h"

namespace orvane {

class PosixDynamicLibrary final : public DynamicLibraryPort {
  public:
    // The mode goes to `dlopen` as it is; 1 is lazy binding on every POSIX system.
    std::optional<DynamicLibraryHandle> open(const std::optional<std::string>& path,
                                             int mode) override;
    // `library` must be a handle this port answered.
    void* symbol(DynamicLibraryHandle library, std::string_view name) override;
};

}  // namespace orvane
