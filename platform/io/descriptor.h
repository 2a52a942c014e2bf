#pragma once

#include <unistd.h>

#include <utility>

namespace platform {

// Owns an open file descriptor and closes it; -1 is none.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        other.Close();
        return *this;
    }
    ~Descriptor() { Close(); }

    int get() const { return descriptor_; }
    explicit operator bool() const { return descriptor_ >= 0; }

    // Gives the descriptor away unclosed.
    int Release() { return std::exchange(descriptor_, -1); }

    void Close() {
        if (descriptor_ >= 0) {
            close(std::exchange(descriptor_, -1));
        }
    }

  private:
    int descriptor_ = -1;
};

}  // namespace platform
