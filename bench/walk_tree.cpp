// Runs one of the program's walkers on a file tree and no other part of the program; the search has
// no windows and matches nothing:
//
//     walk_tree delete FILES_ROOT '\Temp\'
//     walk_tree move FILES_ROOT '\A' '\B\'
//     walk_tree search FILES_ROOT '\Temp'
//
// A tree of several hundred levels needs more open files than a process usually may have; the
// caller raises the limit.

#include <fcntl.h>
#include <sysexits.h>

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/application.h"
#include "engine/file_tree.h"
#include "platform/display/message_boxes_as_lines.h"
#include "platform/io/descriptor.h"
#include "platform/seam/device_store.h"
#include "platform/text/text_encoding.h"
#include "search/tree_search.h"
#include "shell/main_windows.h"
#include "tests/support/files_alone.h"

namespace {

struct Walk {
    std::string_view task;
    const char* root;
    std::u16string directory;
    std::u16string destination;  // of a move
};

std::optional<Walk> ReadWalk(int count, char** words) {
    if (count < 4) {
        return std::nullopt;
    }
    Walk walk{words[1], words[2], platform::WideText(words[3]).value_or(u""), {}};
    if (count == 5) {
        walk.destination = platform::WideText(words[4]).value_or(u"");
    }
    const bool isComplete = ((walk.task == "delete" || walk.task == "search") && count == 4) ||
                            (walk.task == "move" && count == 5 && !walk.destination.empty());
    return isComplete && !walk.directory.empty() ? std::optional(std::move(walk)) : std::nullopt;
}

void SearchWithoutWindows(const WCHAR* directory) {
    platform::MessageBoxesAsLines windows(stderr);
    const platform::WindowsInUse inUse(windows);
    CDisplayWindow display;
    g_DisplayWindow = &display;
    SearchFiles(nullptr, TEXT("tmp"), directory);
}

void Run(const Walk& walk) {
    if (walk.task == "delete") {
        DeleteTree(walk.directory.c_str(), true, true);
    } else if (walk.task == "search") {
        SearchWithoutWindows(walk.directory.c_str());
    } else {
        MoveTree(walk.directory.c_str(), walk.destination.c_str());
    }
}

}  // namespace

int main(int count, char** words) {
    const std::optional<Walk> walk = ReadWalk(count, words);
    if (!walk) {
        std::fputs(
            "Usage: walk_tree delete FILES_ROOT DIRECTORY\n"
            "       walk_tree move FILES_ROOT DIRECTORY DESTINATION\n"
            "       walk_tree search FILES_ROOT DIRECTORY\n",
            stderr);
        return EX_USAGE;
    }
    platform::Descriptor root(open(walk->root, O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!root) {
        std::perror(walk->root);
        return EX_NOINPUT;
    }
    FilesAlone store(std::move(root), {});
    const platform::StoreInUse inUse(store);
    Run(*walk);
    return 0;
}
