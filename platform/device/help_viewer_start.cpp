#include "platform/device/help_viewer_start.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

#include "platform/io/descriptor.h"
#include "platform/io/whole_file.h"
#include "platform/text/name_matching.h"

namespace platform {

namespace {

constexpr std::u16string_view kScheme = u"file:";
constexpr std::u16string_view kHelpFolder = u"\\Windows\\";
constexpr const char* kStart = "start the help viewer";

// A file without a name that holds the page, to be read from its beginning.
Result<Descriptor> HoldPage(std::string_view page) {
    Descriptor file(memfd_create("help page", MFD_CLOEXEC));
    if (!file) {
        return Fail(kStart, errno);
    }
    if (const Status written = WriteWhole(file.get(), page); !written) {
        return tl::unexpected<Failure>(written.error());
    }
    lseek(file.get(), 0, SEEK_SET);
    return file;
}

// What the new process starts with: the page as its input, nothing else that is open, no part in
// this terminal, all signals as they are by default, and a directory that is never unmounted.
class ViewerStart {
  public:
    explicit ViewerStart(int page) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_adddup2(&actions_, page, STDIN_FILENO);
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
            posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_WRONLY, 0);
        }
        posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
        posix_spawn_file_actions_addchdir_np(&actions_, "/");
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~ViewerStart() {
        posix_spawnattr_destroy(&attributes_);
        posix_spawn_file_actions_destroy(&actions_);
    }
    ViewerStart(const ViewerStart&) = delete;
    ViewerStart& operator=(const ViewerStart&) = delete;

    Result<pid_t> Start(const std::string& executable, std::vector<std::string> words) const {
        std::vector<char*> arguments(words.size() + 1);  // null after the last one
        std::transform(words.begin(), words.end(), arguments.begin(),
                       [](std::string& word) { return word.data(); });
        pid_t child = 0;
        const int error = posix_spawn(&child, executable.c_str(), &actions_, &attributes_,
                                      arguments.data(), environ);
        return error == 0 ? Result<pid_t>(child) : Fail(kStart, error);
    }

  private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

}  // namespace

HelpRequest ParseHelpRequest(std::u16string_view commandLine) {
    if (SameName(commandLine.substr(0, kScheme.size()), kScheme)) {
        commandLine.remove_prefix(kScheme.size());
    }
    const std::size_t mark = std::min(commandLine.find(u'#'), commandLine.size());
    HelpRequest request{std::u16string(commandLine.substr(0, mark)),
                        std::u16string(commandLine.substr(std::min(mark + 1, commandLine.size())))};
    if (!request.path.starts_with(u'\\')) {
        request.path.insert(0, kHelpFolder);
    }
    return request;
}

Status HelpViewers::Open(std::string_view page, const std::string& place) {
    std::erase_if(started_, [](pid_t viewer) { return waitpid(viewer, nullptr, WNOHANG) != 0; });
    const Result<Descriptor> held = HoldPage(page);
    if (!held) {
        return tl::unexpected<Failure>(held.error());
    }
    std::vector<std::string> words = {"fennelbright", "--show-help-page=" + place};
    if (scale_ > 0) {
        words.push_back("--scale=" + std::to_string(scale_));
    }
    const Result<pid_t> viewer = ViewerStart(held->get()).Start(executable_, std::move(words));
    if (!viewer) {
        return tl::unexpected<Failure>(viewer.error());
    }
    started_.push_back(*viewer);
    return {};
}

}  // namespace platform
