#pragma once

#include <string>
#include <tl/expected.hpp>
#include <utility>

#include "core/error_codes.h"

namespace platform {

// Why something could not be done: what was tried, on what, and the reason. Low layers fill in what
// they know; whoever knows the object by a name that a person would use adds it on the way up.
struct Failure {
    const char* tried = "";  // what cannot be done: "cannot TRIED" must read well
    std::string object;      // its name or path in readable form; empty where it was not added
    int error = 0;           // the system's reason, an errno; 0 where `reason` says it
    const char* reason = nullptr;  // words for it where the system has none that fit; else null
    LONG code = 0;                 // the platform's code where `error` does not lead to it
};

// A value, or why there is none. Nothing found is no failure where the value can say it.
template <typename Value>
using Result = tl::expected<Value, Failure>;

// Done, or why not.
using Status = Result<void>;

inline tl::unexpected<Failure> Fail(const char* tried, int error) {
    return tl::unexpected<Failure>(Failure{tried, {}, error});
}
inline tl::unexpected<Failure> FailBecause(const char* tried, const char* reason,
                                           LONG code = ERROR_GEN_FAILURE) {
    return tl::unexpected<Failure>(Failure{tried, {}, 0, reason, code});
}

// The same failure, of this object unless a lower layer has named a more exact one.
inline tl::unexpected<Failure> FailOf(Failure failure, std::string object) {
    if (failure.object.empty()) {
        failure.object = std::move(object);
    }
    return tl::unexpected<Failure>(std::move(failure));
}

// "OBJECT: cannot TRIED: REASON", for a line that a person reads.
std::string Describe(const Failure& failure);

// The reason alone.
std::string ReasonOf(const Failure& failure);

// The platform's code for it; never one that stands for success.
DWORD ErrorCodeOf(const Failure& failure);

// Whether it says that the thing, or a directory on the way to it, is not there.
bool IsNotThere(const Failure& failure);

}  // namespace platform
