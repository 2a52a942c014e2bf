#include "platform/report/report_stream.h"

#include <utility>

namespace platform {

void ReportStream::Begin(bool isRehearsal) {
    constexpr std::size_t kManyLines = 65536;
    std::setvbuf(output_, nullptr, isRehearsal ? _IOFBF : _IOLBF,
                 isRehearsal ? kManyLines : BUFSIZ);
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
