// What the launcher benchmarks share: menu-like application names, and one timed keystroke.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "core/LauncherMode.h"

namespace orvane {

// Names of one to three words, one in twenty with accented letters, so the Unicode path is paid.
std::vector<std::string> applicationLikeNames(std::size_t count);

// One keystroke that extends the query `typedBefore` by `key`: append, score every candidate,
// keep eight, publish. The Delete that restores the query is not timed.
void runLauncherKeystroke(benchmark::State& state, std::shared_ptr<LauncherMode> mode,
                          bool inApplications, const std::string& typedBefore,
                          const std::string& key);

}  // namespace orvane
