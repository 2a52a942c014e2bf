#include "platform/report/report_stream.h"

#include <utility>

namespace platform {

ReportStream::ReportStream(std::FILE* output) : output_(output) {
    std::setvbuf(output_, nullptr, _IOLBF, BUFSIZ);
}

void ReportStream::Begin(bool isRehearsal) {
    constexpr std::size_t kManyLines = 65536;
    if (isRehearsal) {
        std::setvbuf(output_, nullptr, _IOFBF, kManyLines);
    }
}

void ReportStream::WriteLine(std::string line) {
    line += '\n';
    isWritten_ = std::fwrite(line.data(), 1, line.size(), output_) == line.size() && isWritten_;
}

Status ReportStream::Finish() {
    if (std::fflush(output_) != 0 || !isWritten_) {
        return FailBecause("write the report", "standard output cannot be written");
    }
    return {};
}

}  // namespace platform
