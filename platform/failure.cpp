#include "platform/failure.h"

#include <cstring>

namespace platform {

std::string ReasonOf(const Failure& failure) {
    return failure.reason != nullptr ? failure.reason : std::strerror(failure.error);
}

std::string Describe(const Failure& failure) {
    const std::string object = failure.object.empty() ? "" : failure.object + ": ";
    return object + "cannot " + failure.tried + ": " + ReasonOf(failure);
}

}  // namespace platform
