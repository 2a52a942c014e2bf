#include "platform/host/worst_exit_code.h"

#include <sysexits.h>

#include <algorithm>
#include <iterator>

namespace platform {

int WorseExitCode(int left, int right) {
    // Worst first. What is not among them, such as the end by a signal, is worse than all.
    static constexpr int kWorstFirst[] = {EX_OSERR,   1,          EX_CANTCREAT,   EX_TEMPFAIL,
                                          EX_DATAERR, EX_NOINPUT, EX_UNAVAILABLE, EX_IOERR,
                                          EX_CONFIG,  0};
    const auto rank = [](int code) {
        const int* const found = std::find(std::begin(kWorstFirst), std::end(kWorstFirst), code);
        return found == std::end(kWorstFirst) ? -1 : found - std::begin(kWorstFirst);
    };
    return rank(left) <= rank(right) ? left : right;
}

}  // namespace platform
