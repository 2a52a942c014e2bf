#pragma once

#include <cstdio>
#include <string>

#include "platform/diagnostics/failure.h"

namespace platform {

// Writes lines to a stream, each one at once: what is reported was done, and a run that is killed
// must not take lines with it. A rehearsal has done nothing, so its lines are gathered.
class ReportStream {
  public:
    // `output` stays the caller's.
    explicit ReportStream(std::FILE* output);

    // Before the first line of a run.
    void Begin(bool isRehearsal);

    // `line` without its end.
    void WriteLine(std::string line);

    // Fails when not every line could be written.
    Status Finish();

  private:
    std::FILE* output_;
    bool isWritten_ = true;
};

}  // namespace platform
