#include "platform/display/message_boxes_of_silent_run.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <limits>

#include "platform/display/display_detection.h"
#include "platform/display/termination_signals.h"

namespace platform {

namespace {

constexpr int kAnswered = 64;  // and the answer: the exit code of a box that was answered

volatile std::sig_atomic_t g_askedToEnd = 0;
volatile pid_t g_box = 0;  // the process whose box is up

// The box is answered; the run goes on to its end.
void AnswerBox(int /*signal*/) {
    g_askedToEnd = 1;
    kill(g_box, SIGTERM);
}

}  // namespace

int MessageBoxesOfSilentRun::MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption,
                                         UINT type) {
    if (!hasFailed_ && g_askedToEnd == 0 && CheckDisplay()) {
        if (const std::optional<int> answer = ShowOnDisplay(text, caption, type)) {
            return *answer;
        }
        hasFailed_ = true;
    }
    return MessageBoxesAsLines::MessageBoxW(owner, text, caption, type);
}

// The process of a box, which goes when the run does.
void MessageBoxesOfSilentRun::ShowBoxAndExit(pid_t run, const WCHAR* text, const WCHAR* caption,
                                             UINT type) const {
    const sigset_t endSignals = TerminationSignals();
    sigprocmask(SIG_UNBLOCK, &endSignals, nullptr);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // Copies of the run's locks would keep the next run away if this one were killed.
    close_range(STDERR_FILENO + 1, std::numeric_limits<unsigned>::max(), 0);
    if (getppid() != run) {
        _exit(0);
    }
    const auto windows = OpenDisplayWindowSystem(params_);
    _exit(windows ? kAnswered + (*windows)->MessageBoxW(nullptr, text, caption, type) : 0);
}

std::optional<int> MessageBoxesOfSilentRun::ShowOnDisplay(const WCHAR* text, const WCHAR* caption,
                                                          UINT type) const {
    std::fflush(nullptr);  // else both processes would write what waits
    const pid_t run = getpid();
    // A signal waits until there is a box that it can be handed to.
    const sigset_t endSignals = TerminationSignals();
    sigprocmask(SIG_BLOCK, &endSignals, nullptr);
    const pid_t box = fork();
    if (box == 0) {
        ShowBoxAndExit(run, text, caption, type);
    }
    if (box > 0) {
        g_box = box;
        HandleTerminationSignals(AnswerBox);
    }
    sigprocmask(SIG_UNBLOCK, &endSignals, nullptr);
    int status = 0;
    while (box > 0 && waitpid(box, &status, 0) == -1 && errno == EINTR) {
    }
    HandleTerminationSignals(SIG_DFL);
    const int code = box > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    return code > kAnswered ? std::optional(code - kAnswered) : std::nullopt;
}

}  // namespace platform
