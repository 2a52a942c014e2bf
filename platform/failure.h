#pragma once

#include <string>
#include <tl/expected.hpp>
#include <utility>

namespace platform {

// Why something could not be done: what was tried, on what, and the reason. Low layers fill in what
// they know; whoever knows the object by a name that a person would use adds it on the way up.
struct Failure {
    const char* tried = "";        // what cannot be done: "cannot TRIED" must read well
    std::string object;            // its name or path in readable form; empty where nobody added it
    int error = 0;                 // the system's reason, an errno; 0 where `reason` says it
    const char* reason = nullptr;  // a reason that no errno stands for; null otherwise
};

// A value, or why there is none. Nothing found is no failure where the value can say it.
template <typename Value>
using Result = tl::expected<Value, Failure>;

// Done, or why not.
using Status = Result<void>;

inline tl::unexpected<Failure> Fail(const char* tried, int error) {
    return tl::unexpected<Failure>(Failure{tried, {}, error, nullptr});
}
inline tl::unexpected<Failure> FailBecause(const char* tried, const char* reason) {
    return tl::unexpected<Failure>(Failure{tried, {}, 0, reason});
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

}  // namespace platform
