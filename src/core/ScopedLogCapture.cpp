#include "core/ScopedLogCapture.h"

#include <utility>

#include "core/Log.h"

namespace orvane {

ScopedLogCapture::ScopedLogCapture()
    : sink_(std::make_shared<CapturingLogSink>()),
      previousSinks_(Log::shared().replaceSinks({sink_})) {}

ScopedLogCapture::~ScopedLogCapture() {
    Log::shared().replaceSinks(std::move(previousSinks_));
}

}  // namespace orvane
