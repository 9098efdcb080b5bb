// Writes the program's log lines into the transcript as they happen, from a minimum level up.
#pragma once

#include "Transcript.h"
#include "core/LogSink.h"

namespace orvane::simulator {

class TranscriptLogSink final : public LogSink {
  public:
    TranscriptLogSink(Transcript& transcript, LogLevel minimumLevel)
        : transcript_(transcript), minimumLevel_(minimumLevel) {}

    void write(const LogRecord& record) override;
    void setMinimumLevel(LogLevel minimumLevel) { minimumLevel_ = minimumLevel; }
    // Nothing more reaches the transcript.
    void mute() { muted_ = true; }

  private:
    Transcript& transcript_;
    LogLevel minimumLevel_;
    bool muted_ = false;
};

}  // namespace orvane::simulator
