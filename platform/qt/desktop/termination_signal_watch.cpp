#include "platform/qt/desktop/termination_signal_watch.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/display/termination_signals.h"

namespace platform::qt {

namespace {

int g_pipe[2] = {-1, -1};

// A full pipe says what it has to say.
void Note(int /*signal*/) {
    const int kept = errno;
    const char mark = 0;
    [[maybe_unused]] const ssize_t written = write(g_pipe[1], &mark, 1);
    errno = kept;
}

}  // namespace

TerminationSignalWatch::TerminationSignalWatch(std::function<void()> asked)
    : asked_(std::move(asked)) {
    if (pipe2(g_pipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(g_pipe[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        char marks[16];
        while (read(g_pipe[0], marks, sizeof marks) > 0) {
        }
        asked_();
    });
    HandleTerminationSignals(Note);
}

TerminationSignalWatch::~TerminationSignalWatch() {
    if (notifier_ != nullptr) {
        HandleTerminationSignals(SIG_DFL);
        notifier_.reset();
        close(g_pipe[0]);
        close(g_pipe[1]);
    }
}

}  // namespace platform::qt
