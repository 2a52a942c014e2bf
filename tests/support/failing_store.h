#pragma once

#include <gtest/gtest.h>

#include <cerrno>

#include "platform/seam/forwarding_store.h"
#include "tests/support/files_alone.h"

// Thrown where a restart of the device ends the program, so that nothing after it runs.
struct DeviceRestarted {};

inline void ThrowRestarted(int code) {
    EXPECT_EQ(code, 0);
    throw DeviceRestarted();
}

// Lets the n-th call come back with failure and its own reason, without having done anything; all
// others go on.
class FailingStore : public platform::ForwardingStore {
  public:
    // `failing` counts from 1; 0 lets every call through. `reason` is an errno.
    FailingStore(platform::DeviceStore& inner, int failing, int reason = EIO)
        : ForwardingStore(inner), failing_(failing), reason_{"go on", {}, reason} {}

    int calls() const { return calls_; }

    const platform::Failure& LastFailure() const override {
        return calls_ == failing_ ? reason_ : ForwardingStore::LastFailure();
    }

  protected:
    platform::DeviceFiles& files() override {
        return IsFailing() ? nothing_ : ForwardingStore::files();
    }
    platform::DeviceRegistry& registry() override {
        return IsFailing() ? nothing_ : ForwardingStore::registry();
    }
    platform::DeviceSystem& system() override {
        return IsFailing() ? nothing_ : ForwardingStore::system();
    }

  private:
    bool IsFailing() { return ++calls_ == failing_; }

    // Without a file tree, without a registry, and with a path that no buffer holds.
    FilesAlone nothing_{platform::Descriptor(), std::u16string(5000, u'x')};
    int failing_;
    platform::Failure reason_;
    int calls_ = 0;
};
