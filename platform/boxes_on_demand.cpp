#include "platform/boxes_on_demand.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <iterator>

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

// While it lives, the signals that ask a process to end answer the box.
class EndSignals {
  public:
    explicit EndSignals(pid_t box) {
        g_box = box;
        struct sigaction action = {};
        action.sa_handler = AnswerBox;
        action.sa_flags = SA_RESTART;
        for (std::size_t index = 0; index < std::size(kSignals); ++index) {
            sigaction(kSignals[index], &action, &before_[index]);
        }
    }
    ~EndSignals() {
        for (std::size_t index = 0; index < std::size(kSignals); ++index) {
            sigaction(kSignals[index], &before_[index], nullptr);
        }
    }
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;

  private:
    static constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};
    struct sigaction before_[std::size(kSignals)] = {};
};

}  // namespace

int BoxesOnDemand::MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) {
    if (!hasFailed_ && g_askedToEnd == 0 && DisplayIsThere()) {
        if (const std::optional<int> answer = ShowOnDisplay(text, caption, type)) {
            return *answer;
        }
        hasFailed_ = true;
    }
    return ConsoleWindows::MessageBoxW(owner, text, caption, type);
}

std::optional<int> BoxesOnDemand::ShowOnDisplay(const WCHAR* text, const WCHAR* caption,
                                                UINT type) const {
    std::fflush(nullptr);           // else both processes would write what waits
    std::signal(SIGCHLD, SIG_DFL);  // where it is ignored, a process takes its answer along
    const pid_t box = fork();
    if (box == -1) {
        return std::nullopt;
    }
    if (box == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        std::string reason;
        const auto windows = OpenDisplayWindows(needs_, reason);
        _exit(windows == nullptr ? 0
                                 : kAnswered + windows->MessageBoxW(nullptr, text, caption, type));
    }
    const EndSignals answering(box);
    int status = 0;
    while (waitpid(box, &status, 0) == -1 && errno == EINTR) {
    }
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    return code > kAnswered ? std::optional(code - kAnswered) : std::nullopt;
}

}  // namespace platform
