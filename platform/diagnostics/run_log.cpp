#include "platform/diagnostics/run_log.h"

#include <sysexits.h>

#include <cstdio>

#include "platform/text/readable_text.h"

namespace platform {

namespace {

RunLog* g_log = nullptr;

}  // namespace

RunLog::RunLog(const std::string& device)
    : prefix_("fennelbright: " + (device.empty() ? "" : ReadableBytes(device) + ": ")) {}

void RunLog::Say(const std::string& text) {
    std::fputs((prefix_ + text + '\n').c_str(), stderr);
}

void RunLog::SayUndone(const std::string& text) {
    CountUndone();
    Say(text);
}

int RunLog::ExitCode(bool strict) const {
    if (!isStored_ || (strict && undone_ > 0)) {
        return EX_IOERR;
    }
    return strict && !hasSettings_ ? EX_CONFIG : 0;
}

LogInUse::LogInUse(RunLog& log) {
    g_log = &log;
}

LogInUse::~LogInUse() {
    g_log = nullptr;
}

RunLog& LogInUse::Current() {
    static RunLog unnamed{""};
    return g_log != nullptr ? *g_log : unnamed;
}

}  // namespace platform
