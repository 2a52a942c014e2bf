#include "platform/command_line.h"

#include <getopt.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <system_error>

#include "platform/host_text.h"
#include "platform/sample_device.h"

namespace platform {

const char kHelp[] =
    "Usage: fennelbright --device DIR [OPTION]... [--] [COMMAND LINE]\n"
    "       fennelbright --device DIR --boot [OPTION]...\n"
    "       fennelbright --new-device DIR\n"
    "\n"
    "Cleans up and tunes the handheld whose files and registry are in DIR.\n"
    "\n"
    "  --device DIR      the device directory: \"files\" in it is the handheld's file tree,\n"
    "                    \"registry.reg\" its registry\n"
    "  --module PATH     where the program lies on the device; settings.dat is beside it\n"
    "                    (\\Program Files\\Fennelbright\\Fennelbright.exe)\n"
    "  --report          say on standard output what was done\n"
    "  --no-display      open no window; messages go to standard error\n"
    "  --boot            do what the device does when it starts: run the program for each "
    "shortcut\n"
    "                    of \\Windows\\StartUp that names it\n"
    "  --scale N         show the handheld's screen N times as large, 1 to 8 (as large as the\n"
    "                    desktop allows)\n"
    "  --new-device DIR  make a sample device\n"
    "  --help, --version\n"
    "\n"
    "The COMMAND LINE is the program's own: \"silent\" does what settings.dat asks for, without\n"
    "windows; without one the program opens its windows on the display.\n"
    "\n"
    "Exit codes: 0 the program has ended as it does; 64 wrong usage; 65 the registry cannot be\n"
    "read; 66 no usable device directory; 69 no display for the program's windows; 73 what is to\n"
    "be made cannot be made.\n";

namespace {

// What stands between the options comes as choice 1.
enum Choice {
    kWord = 1,
    kDevice,
    kModule,
    kReport,
    kNoDisplay,
    kScale,
    kBoot,
    kNewDevice,
    kHelpChoice,
    kVersion
};

constexpr double kLargestScale = 8;

constexpr option kChoices[] = {
    {"device", required_argument, nullptr, kDevice},
    {"module", required_argument, nullptr, kModule},
    {"report", no_argument, nullptr, kReport},
    {"no-display", no_argument, nullptr, kNoDisplay},
    {"boot", no_argument, nullptr, kBoot},
    {"scale", required_argument, nullptr, kScale},
    {"new-device", required_argument, nullptr, kNewDevice},
    {"help", no_argument, nullptr, kHelpChoice},
    {"version", no_argument, nullptr, kVersion},
    {nullptr, 0, nullptr, 0},
};

std::optional<CommandLine> Refuse(const char* reason) {
    std::fprintf(stderr, "fennelbright: %s; see fennelbright --help\n", reason);
    return std::nullopt;
}

// Appends a word to the program's own command line; returns why it cannot be taken, or null.
const char* TakeWord(const char* value, CommandLine& line) {
    const std::optional<std::u16string> word = WideText(value);
    if (!word) {
        return "a word of the command line is not UTF-8";
    }
    line.programLine += line.programLine.empty() ? u"" : u" ";
    line.programLine += *word;
    return nullptr;
}

// Who asks for help is not to start anything.
void SetTask(CommandLine& line, CommandLine::Task task) {
    if (line.task != CommandLine::Task::ShowHelp && line.task != CommandLine::Task::ShowVersion) {
        line.task = task;
    }
}

const char* TakeScale(const char* value, CommandLine& line) {
    char* end = nullptr;
    line.scale = std::strtod(value, &end);
    const bool whole = end != value && *end == '\0';
    return whole && line.scale >= 1 && line.scale <= kLargestScale ? nullptr
                                                                   : "the scale is not from 1 to 8";
}

// Takes one option; returns why it cannot be taken, or null.
const char* Take(int choice, const char* value, CommandLine& line) {
    switch (choice) {
        case kWord:
            return TakeWord(value, line);
        case kDevice:
        case kNewDevice:
            if (!line.device.empty()) {
                return "more than one device directory is named";
            }
            line.device = value;
            SetTask(line, choice == kDevice ? line.task : CommandLine::Task::MakeSampleDevice);
            return line.device.empty() ? "the device directory is named by an empty word" : nullptr;
        case kModule:
            line.modulePath = WideText(value).value_or(std::u16string());
            return line.modulePath.empty() ? "the path behind --module is empty or not UTF-8"
                                           : nullptr;
        case kReport:
            line.report = true;
            return nullptr;
        case kNoDisplay:
            line.noDisplay = true;
            return nullptr;
        case kBoot:
            SetTask(line, CommandLine::Task::Boot);
            return nullptr;
        case kScale:
            return TakeScale(value, line);
        case kHelpChoice:
            line.task = CommandLine::Task::ShowHelp;
            return nullptr;
        case kVersion:
            line.task = CommandLine::Task::ShowVersion;
            return nullptr;
        default:
            return "nothing was started";
    }
}

const char* WhyIncomplete(const CommandLine& line) {
    const bool runs = line.task == CommandLine::Task::Run || line.task == CommandLine::Task::Boot;
    if (runs && line.device.empty()) {
        return "no device directory is named";
    }
    if (line.task == CommandLine::Task::MakeSampleDevice && !line.programLine.empty()) {
        return "a sample device takes no command line";
    }
    if (line.task == CommandLine::Task::Boot && !line.programLine.empty()) {
        return "the shortcuts have the command lines for --boot";
    }
    return nullptr;
}

}  // namespace

std::optional<CommandLine> ParseCommandLine(int count, char** words) {
    CommandLine line;
    line.modulePath = kDefaultModulePath;
    for (int choice = 0; (choice = getopt_long(count, words, "-", kChoices, nullptr)) != -1;) {
        if (const char* const reason = Take(choice, optarg, line)) {
            return Refuse(reason);
        }
    }
    for (; optind < count; ++optind) {
        if (const char* const reason = TakeWord(words[optind], line)) {
            return Refuse(reason);
        }
    }
    if (const char* const reason = WhyIncomplete(line)) {
        return Refuse(reason);
    }
    return line;
}

}  // namespace platform
