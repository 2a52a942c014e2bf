#include "platform/host/command_line.h"

#include <getopt.h>

#include <cstdlib>
#include <optional>
#include <string_view>

#include "platform/device/sample_files.h"
#include "platform/display/display_detection.h"
#include "platform/display/window_module_loader.h"
#include "platform/text/readable_text.h"
#include "platform/text/text_encoding.h"

namespace platform {

const char kHelp[] =
    "Usage: fennelbright --device DIR [OPTION]... [--] [COMMAND LINE]\n"
    "       fennelbright [OPTION]...\n"
    "       fennelbright --device DIR --boot [OPTION]...\n"
    "       fennelbright --new-device DIR\n"
    "\n"
    "Cleans up and tunes the handheld whose files and registry are in DIR.\n"
    "\n"
    "  --device DIR      the device directory: \"files\" in it is the handheld's file tree,\n"
    "                    \"registry.reg\" its registry\n"
    "  --module PATH     where the program lies on the device; settings.dat is beside it\n"
    "                    (\\Program Files\\Fennelbright\\Fennelbright.exe)\n"
    "  --report[=FORM]   say on standard output what was done, and what could not be: FORM is\n"
    "                    \"lines\", which is the same as none, or \"json\" for programs\n"
    "  --report-html FILE  write the same as a page for a browser\n"
    "  --strict          end with 74 if anything could not be done, with 78 without settings\n"
    "  --no-display      open no window; messages go to standard error\n"
    "  --boot            do what the device does when it starts: run the program for each\n"
    "                    shortcut in \\Windows\\StartUp that leads to it\n"
    "  --scale N         show the handheld's screen N times as large, 1 to 8 (as large as the\n"
    "                    desktop allows)\n"
    "  --new-device DIR  make a sample device\n"
    "  --help, --version\n"
    "\n"
    "The COMMAND LINE is the program's own: \"silent\" does what settings.dat asks for, without\n"
    "windows; without one the program opens its windows on the display, and asks there for the\n"
    "device directory if none is given.\n"
    "\n"
    "Exit codes: 0 the program ended normally; 1 the display was lost; 64 wrong usage; 65 the\n"
    "registry cannot be read; 66 no usable device directory; 69 no display for the program's\n"
    "windows; 71 out of memory; 73 the sample device cannot be made, or the registry cannot be\n"
    "stored; 74 changes to registry or settings are not stored; 75 the device is in use by\n"
    "another run; 78 no settings, with --strict.\n";

namespace {

// What stands between the options comes as choice 1.
enum Choice {
    kWord = 1,
    kDevice,
    kModule,
    kReport,
    kReportPage,
    kStrict,
    kNoDisplay,
    kScale,
    kBoot,
    kNewDevice,
    kShowHelpPage,
    kHelpChoice,
    kVersion
};

constexpr double kLargestScale = 8;

constexpr option kChoices[] = {
    {"device", required_argument, nullptr, kDevice},
    {"module", required_argument, nullptr, kModule},
    {"report", optional_argument, nullptr, kReport},
    {"report-html", required_argument, nullptr, kReportPage},
    {"strict", no_argument, nullptr, kStrict},
    {"no-display", no_argument, nullptr, kNoDisplay},
    {"boot", no_argument, nullptr, kBoot},
    {"scale", required_argument, nullptr, kScale},
    {"new-device", required_argument, nullptr, kNewDevice},
    // With which the program starts its help viewer; users have no use for it.
    {"show-help-page", required_argument, nullptr, kShowHelpPage},
    {"help", no_argument, nullptr, kHelpChoice},
    {"version", no_argument, nullptr, kVersion},
    {nullptr, 0, nullptr, 0},
};

constexpr const char* kUnderstand = "understand the command line";

Status Refuse(const char* reason) {
    return FailBecause(kUnderstand, reason);
}

Status RefuseUnless(bool holds, const char* reason) {
    return holds ? Status() : Refuse(reason);
}

// Appends a word to the program's own command line.
Status ParseWord(const char* value, CommandLine& line) {
    const std::optional<std::u16string> word = WideText(value);
    if (!word) {
        return Refuse("a word of the command line is not UTF-8");
    }
    line.programLine += line.programLine.empty() ? u"" : u" ";
    line.programLine += *word;
    return {};
}

// Who asks for help is not to start anything.
void SetTask(CommandLine& line, CommandLine::Task task) {
    if (line.task != CommandLine::Task::ShowHelp && line.task != CommandLine::Task::ShowVersion) {
        line.task = task;
    }
}

Status ParseScale(const char* value, CommandLine& line) {
    char* end = nullptr;
    line.scale = std::strtod(value, &end);
    const bool whole = end != value && *end == '\0';
    return RefuseUnless(whole && line.scale >= 1 && line.scale <= kLargestScale,
                        "--scale takes a number from 1 to 8");
}

Status ParseDevice(const char* value, CommandLine::Task task, CommandLine& line) {
    if (!line.device.empty()) {
        return Refuse("only one of --device DIR and --new-device DIR can be given, and only once");
    }
    line.device = value;
    SetTask(line, task);
    return RefuseUnless(!line.device.empty(), "the name of the device directory is empty");
}

Status ParseModule(const char* value, CommandLine& line) {
    line.modulePath = WideText(value).value_or(std::u16string());
    return RefuseUnless(!line.modulePath.empty(), "the path after --module is empty or not UTF-8");
}

Status ParseReport(std::string_view form, CommandLine& line) {
    line.report = form == "json" ? ReportForm::Json : ReportForm::Lines;
    return RefuseUnless(form == "json" || form == "lines", "--report takes \"lines\" or \"json\"");
}

Status ParseReportPage(const char* value, CommandLine& line) {
    if (!line.reportPage.empty()) {
        return Refuse("more than one file for the report is given");
    }
    line.reportPage = value;
    return RefuseUnless(!line.reportPage.empty(), "the name of the file for the report is empty");
}

// Options that take no value and only set something.
Status SetSwitch(int choice, CommandLine& line) {
    switch (choice) {
        case kStrict:
            line.strict = true;
            return {};
        case kNoDisplay:
            line.noDisplay = true;
            return {};
        case kBoot:
            SetTask(line, CommandLine::Task::Boot);
            return {};
        case kHelpChoice:
            line.task = CommandLine::Task::ShowHelp;
            return {};
        case kVersion:
        default:
            line.task = CommandLine::Task::ShowVersion;
            return {};
    }
}

Status ParseOption(int choice, const char* value, CommandLine& line) {
    switch (choice) {
        case kWord:
            return ParseWord(value, line);
        case kDevice:
            return ParseDevice(value, line.task, line);
        case kNewDevice:
            return ParseDevice(value, CommandLine::Task::MakeSampleDevice, line);
        case kModule:
            return ParseModule(value, line);
        case kReport:
            return ParseReport(value != nullptr ? value : "lines", line);
        case kReportPage:
            return ParseReportPage(value, line);
        case kScale:
            return ParseScale(value, line);
        case kShowHelpPage:
            line.helpPlace = value;
            SetTask(line, CommandLine::Task::ShowHelpPage);
            return {};
        default:
            return SetSwitch(choice, line);
    }
}

// What getopt_long has not taken.
Status RefuseWord(int answer, const char* word) {
    const bool isKnown = optopt > kWord && optopt <= kVersion;
    const char* const reason = answer == ':' ? "a value must follow"
                               : isKnown     ? "this option takes no value"
                                             : "there is no such option";
    return FailOf({kUnderstand, {}, 0, reason}, ReadableBytes(word));
}

// The ':' keeps getopt_long from writing messages of its own.
Status TakeOptions(int count, char** words, CommandLine& line) {
    Status taken;
    while (taken) {
        const char* const word = optind < count ? words[optind] : "";
        const int choice = getopt_long(count, words, "-:", kChoices, nullptr);
        if (choice == -1) {
            return taken;
        }
        taken = choice == ':' || choice == '?' ? RefuseWord(choice, word)
                                               : ParseOption(choice, optarg, line);
    }
    return taken;
}

// Whether the user can be asked for the device: the program is to open windows on a display.
bool AsksForDevice(const CommandLine& line) {
    return line.task == CommandLine::Task::Run && line.programLine.empty() && !line.noDisplay &&
           CheckDisplay().has_value();
}

Status CheckComplete(const CommandLine& line) {
    const bool runs = line.task == CommandLine::Task::Run || line.task == CommandLine::Task::Boot;
    if (runs && line.device.empty() && !AsksForDevice(line)) {
        return Refuse("no device directory is given");
    }
    if (line.task == CommandLine::Task::MakeSampleDevice && !line.programLine.empty()) {
        return Refuse("--new-device takes no command line");
    }
    if (line.task == CommandLine::Task::Boot && !line.programLine.empty()) {
        return Refuse("--boot takes no command line: each shortcut has its own");
    }
    if (line.task == CommandLine::Task::Boot && !line.reportPage.empty()) {
        return Refuse("--boot takes no --report-html: each run would replace the page of another");
    }
    return {};
}

}  // namespace

Result<CommandLine> ParseCommandLine(int count, char** words) {
    CommandLine line;
    line.modulePath = kDefaultModulePath;
    Status taken = TakeOptions(count, words, line);
    for (; taken && optind < count; ++optind) {
        taken = ParseWord(words[optind], line);
    }
    taken = taken ? CheckComplete(line) : taken;
    if (!taken) {
        return tl::unexpected<Failure>(taken.error());
    }
    return line;
}

}  // namespace platform
