// Where the platform keeps its installed applications, and how a listed file is known as one: the
// platform's own values, handed to the applications mode when it is made.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orvane {

struct ApplicationFolders {
    // Searched in this order; an application listed in two of them is offered twice.
    std::vector<std::string> directories;
    // The exact, case-sensitive ending of an application's file name, cut from display names.
    std::string suffix;
    // Whether a file with the suffix is an application to offer; every one is when unset.
    std::function<bool(const std::string& path)> isApplication;
};

}  // namespace orvane
