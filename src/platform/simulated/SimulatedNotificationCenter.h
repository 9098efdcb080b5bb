// A notification centre of the simulated desktop: the process's own kind, under the desktop's name.
#pragma once

#include "platform/posix/LocalNotificationCenter.h"

namespace orvane {

using SimulatedNotificationCenter = LocalNotificationCenter;

}  // namespace orvane
