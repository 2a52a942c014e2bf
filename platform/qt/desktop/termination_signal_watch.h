#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace platform::qt {

// Brings the signals that ask a process to end (SIGTERM, SIGINT, SIGHUP) to the toolkit's loop.
class TerminationSignalWatch {
  public:
    // From now on a signal calls `asked`, below the toolkit. One object at a time.
    explicit TerminationSignalWatch(std::function<void()> asked);
    ~TerminationSignalWatch();
    TerminationSignalWatch(const TerminationSignalWatch&) = delete;
    TerminationSignalWatch& operator=(const TerminationSignalWatch&) = delete;

  private:
    std::function<void()> asked_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace platform::qt
