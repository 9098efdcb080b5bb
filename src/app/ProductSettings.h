// Settings of the product that ship inside the program rather than in the user's preferences.
#pragma once

namespace orvane {

// Where bug reports go: a plain e-mail address, used as the path of a mailto URL.
inline constexpr const char* supportEmailAddress = "support@brimcote.com";

}  // namespace orvane
