#include "platform/command_line/command_line.h"

#include <getopt.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string_view>

#include "core/win_main.h"
#include "platform/display/display_detection.h"
#include "platform/display/window_module_loader.h"
#include "platform/sample/sample_files.h"
#include "platform/text/readable_text.h"
#include "platform/text/text_encoding.h"

namespace platform {

const char kHelp[] = R"(Usage: fennelbright --device DIR [OPTION]... [--] [COMMAND LINE]
       fennelbright --device DIR --boot [OPTION]...
       fennelbright --device DIR [--set NAME=VALUE]... [--show-settings[=FORM]]
       fennelbright --files DIR [--registry FILE] ... in place of --device DIR
       fennelbright --new-device DIR
       fennelbright [OPTION]...

Cleans up and tunes a Pocket PC handheld whose files and registry are in the directory DIR.
Without a COMMAND LINE it opens windows, in which options are ticked and carried out. With the
COMMAND LINE "silent" it carries out the options that are ticked already, without windows.
Without --device it asks for DIR on the display.

The device
  --device DIR         a directory with the handheld's files in DIR/files and its registry as
                       DIR/registry.reg; with "silent" it may be given several times, and one
                       device is cleaned after the other
  --files DIR          instead of --device: the directory that holds the handheld's files
                       themselves, such as a mounted card
  --registry FILE      with --files: the registry, as a registry editor exports it; without it,
                       each thing that would be looked up there is reported as missing
  --state DIR          with --files: the directory for last-run.txt, the report of the last run
                       with "silent"; if not given, the program makes one for each card below
                       $XDG_STATE_HOME/fennelbright or ~/.local/state/fennelbright
  --module PATH        where the program is on the handheld, if it is not
                       \Program Files\Fennelbright\Fennelbright.exe; settings.dat, the file
                       with the options, is in the same folder
  --new-device DIR     make a sample device in the new directory DIR

What is done
  COMMAND LINE         "silent": clean without windows. Only its first letter counts, as on the
                       handheld: whatever begins with s, i, l, e, n or t (the letters of
                       "silent") cleans, "status" and "list" as well
  --boot               do what the handheld does when it starts: run the program for each
                       shortcut to it in \Windows\StartUp
  --rehearse           change nothing; with --report, show what the run would do

Options without windows
  --show-settings[=FORM]
                       list the options that settings.dat has, each as NAME=VALUE; with FORM
                       "json" as JSON, for programs ("lines" is the same as no FORM)
  --set NAME=VALUE     change the option NAME, one of those that --show-settings lists; VALUE is
                       "off", or what the option takes: "on", a folder such as '\Old\', letters
                       such as old for files *.old, or a size such as 1024kb or 2x; may be given
                       several times

The report
  --report[=FORM]      write to standard output what was done, and what could not be done; with
                       FORM "json" as JSON, for programs ("lines" is the same as no FORM)
  --report-html FILE   write the same into FILE, as a page for a browser
  --strict             end with exit code 74 if anything could not be done, with 78 if there is
                       no settings.dat

Windows and messages
  --no-display         open no windows; write messages to standard error instead
  --scale N            show the handheld's screen N times as large, N from 1 to 8; if not given,
                       as large as the desktop allows

About the program
  -h, --help           show this text
  -V, --version        show the version

Examples
  fennelbright --new-device handheld
                       make a sample device in the directory "handheld"
  fennelbright --device handheld
                       open the windows on it
  fennelbright --device handheld --set clean-temp=on --set 'clean-user-defined-1=\Old\'
                       have \Temp and \Old cleaned from now on
  fennelbright --device handheld --rehearse --report silent
                       show what would be cleaned
  fennelbright --device handheld --report silent
                       clean it, and show what was done
  fennelbright --files /media/card --no-display --report silent
                       clean a mounted card

Exit codes
   0  the program ended normally; without --strict also if something could not be done
   1  the display was lost while the windows were open
  64  the command line cannot be understood; nothing was started
  65  the registry cannot be read, or, with --set and --show-settings, settings.dat is damaged
  66  DIR is not the directory of a device, or cannot be used
  69  there is no display for the windows, or something that they need is not installed
  71  out of memory
  73  the sample device cannot be made, or the registry cannot be stored; nothing was changed
  74  registry or settings could not be stored; with --strict, something could not be done; with
      --set and --show-settings, settings.dat cannot be read
  75  another run is using the device
  78  with --strict, there is no settings.dat
)";

namespace {

// What stands between the options comes as choice 1.
enum Choice {
    kHelpChoice = 'h',
    kVersion = 'V',
    kWord = 1,
    kDevice,
    kFiles,
    kRegistry,
    kState,
    kModule,
    kReport,
    kReportPage,
    kStrict,
    kRehearse,
    kNoDisplay,
    kScale,
    kBoot,
    kNewDevice,
    kSet,
    kShowSettings,
    kShowHelpPage
};

constexpr double kLargestScale = 8;

constexpr option kChoices[] = {
    {"device", required_argument, nullptr, kDevice},
    {"files", required_argument, nullptr, kFiles},
    {"registry", required_argument, nullptr, kRegistry},
    {"state", required_argument, nullptr, kState},
    {"module", required_argument, nullptr, kModule},
    {"report", optional_argument, nullptr, kReport},
    {"report-html", required_argument, nullptr, kReportPage},
    {"strict", no_argument, nullptr, kStrict},
    {"rehearse", no_argument, nullptr, kRehearse},
    {"no-display", no_argument, nullptr, kNoDisplay},
    {"boot", no_argument, nullptr, kBoot},
    {"scale", required_argument, nullptr, kScale},
    {"new-device", required_argument, nullptr, kNewDevice},
    {"set", required_argument, nullptr, kSet},
    {"show-settings", optional_argument, nullptr, kShowSettings},
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
        return FailOf({kUnderstand, {}, 0, "the word is not UTF-8"}, ReadableBytes(value));
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
                        "it takes a number from 1 to 8");
}

Status ParseDevice(const char* value, CommandLine& line) {
    if (*value == '\0') {
        return Refuse("the name of the directory is empty");
    }
    if (line.device.empty()) {
        line.device = value;
        return {};
    }
    line.furtherDevices.emplace_back(value);
    return RefuseUnless(!line.isByHalves && line.task != CommandLine::Task::MakeSampleDevice,
                        "only one of --device, --files and --new-device can be given");
}

// A directory that is the only one.
Status ParseOneDevice(const char* value, CommandLine& line) {
    Status taken = ParseDevice(value, line);
    return taken ? RefuseUnless(line.furtherDevices.empty(),
                                "only one of --device, --files and --new-device can be given")
                 : taken;
}

Status ParseFiles(const char* value, CommandLine& line) {
    line.isByHalves = true;
    return ParseOneDevice(value, line);
}

// A name that can be given once.
Status ParsePlace(const char* value, std::string& place) {
    if (!place.empty()) {
        return Refuse("it can be given only once");
    }
    place = value;
    return RefuseUnless(!place.empty(), "the name is empty");
}

Status ParseModule(const char* value, CommandLine& line) {
    line.modulePath = WideText(value).value_or(std::u16string());
    return RefuseUnless(!line.modulePath.empty(), "the path is empty or not UTF-8");
}

// No form is the one for people.
Status ParseForm(const char* value, ReportForm& form) {
    const std::string_view name = value != nullptr ? value : "lines";
    form = name == "json" ? ReportForm::Json : ReportForm::Lines;
    return RefuseUnless(name == "json" || name == "lines", "it takes \"lines\" or \"json\"");
}

Status ParseChange(const char* value, CommandLine& line) {
    const Result<SettingChange> change = ParseSetting(value);
    if (!change) {
        return tl::unexpected<Failure>(change.error());
    }
    const bool isNew = std::ranges::find(line.changes, change->option, &SettingChange::option) ==
                       line.changes.end();
    line.changes.push_back(*change);
    return RefuseUnless(isNew, "the option is set twice");
}

// Options that take no value and only set something.
Status SetSwitch(int choice, CommandLine& line) {
    switch (choice) {
        case kStrict:
            line.strict = true;
            return {};
        case kRehearse:
            line.rehearse = true;
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
            return ParseDevice(value, line);
        case kFiles:
            return ParseFiles(value, line);
        case kRegistry:
            return ParsePlace(value, line.registry);
        case kState:
            return ParsePlace(value, line.state);
        case kNewDevice:
            SetTask(line, CommandLine::Task::MakeSampleDevice);
            return ParseOneDevice(value, line);
        case kModule:
            return ParseModule(value, line);
        case kReport:
            return ParseForm(value, line.report);
        case kReportPage:
            return ParsePlace(value, line.reportPage);
        case kScale:
            return ParseScale(value, line);
        case kSet:
            return ParseChange(value, line);
        case kShowSettings:
            return ParseForm(value, line.shownSettings);
        case kShowHelpPage:
            line.helpPlace = value;
            SetTask(line, CommandLine::Task::ShowHelpPage);
            return {};
        default:
            return SetSwitch(choice, line);
    }
}

const option* FindChoice(int choice) {
    const auto* const found = std::ranges::find(kChoices, choice, &option::val);
    return found == std::end(kChoices) ? nullptr : found;
}

// What getopt_long has not taken.
Status RefuseWord(int answer, const char* word) {
    const bool isKnown = optopt != 0 && FindChoice(optopt) != nullptr;
    const char* const reason = answer == ':' ? "a value must follow"
                               : isKnown     ? "this option takes no value"
                                             : "there is no such option";
    return FailOf({kUnderstand, {}, 0, reason}, ReadableBytes(word));
}

// A failure quotes the option as it was given.
Status TakeOption(int choice, const char* value, CommandLine& line) {
    Status taken = ParseOption(choice, value, line);
    if (taken || choice == kWord) {
        return taken;
    }
    const std::string quoted = value != nullptr ? " \"" + ReadableBytes(value) + '"' : "";
    return FailOf(taken.error(), std::string("--") + FindChoice(choice)->name + quoted);
}

// The ':' keeps getopt_long from writing messages of its own.
Status TakeOptions(int count, char** words, CommandLine& line) {
    Status taken;
    while (taken) {
        const char* const word = optind < count ? words[optind] : "";
        const int choice = getopt_long(count, words, "-:hV", kChoices, nullptr);
        if (choice == -1) {
            return taken;
        }
        taken = choice == ':' || choice == '?' ? RefuseWord(choice, word)
                                               : TakeOption(choice, optarg, line);
    }
    return taken;
}

// Whether the user can be asked for the device: the program is to open windows on a display.
bool AsksForDevice(const CommandLine& line) {
    return line.task == CommandLine::Task::Run && line.programLine.empty() && !line.noDisplay &&
           CheckDisplay().has_value();
}

bool AsksForSettings(const CommandLine& line) {
    return !line.changes.empty() || line.shownSettings != ReportForm::None;
}

struct Conflict {
    bool isThere;
    const char* reason;
};

Status CheckComplete(const CommandLine& line) {
    using enum CommandLine::Task;
    const bool works = line.task == Run || line.task == Boot || line.task == Settings;
    const bool hasWords = !line.programLine.empty();
    const Conflict conflicts[] = {
        {works && line.device.empty() && !AsksForDevice(line), "no device directory is given"},
        {works && !line.isByHalves && !(line.registry + line.state).empty(),
         "--registry and --state go with --files; --device DIR has both in DIR"},
        {!line.furtherDevices.empty() &&
             (line.task != Run || !IsSilentCommandLine(line.programLine.c_str())),
         "several devices are for a silent run alone"},
        {line.task == MakeSampleDevice && hasWords, "--new-device takes no command line"},
        {line.task == Boot && hasWords, "--boot takes no command line: each shortcut has its own"},
        {line.task == Boot && !line.reportPage.empty(),
         "--boot takes no --report-html: each run would replace the page of another"},
        {line.task == Settings && hasWords,
         "--set and --show-settings take no command line: run the program afterwards"},
        {(line.task == Settings || line.task == MakeSampleDevice) && line.rehearse,
         "--rehearse goes with a run of the program"},
        {(line.task == Boot || line.task == MakeSampleDevice) && AsksForSettings(line),
         "--set and --show-settings go with --device or --files alone"},
    };
    const auto* const found = std::ranges::find(conflicts, true, &Conflict::isThere);
    if (found == std::end(conflicts)) {
        return {};
    }
    return FailOf({kUnderstand, {}, 0, found->reason},
                  hasWords ? '"' + ReadableText(line.programLine) + '"' : "");
}

}  // namespace

Result<CommandLine> ParseCommandLine(int count, char** words) {
    CommandLine line;
    line.modulePath = kDefaultModulePath;
    Status taken = TakeOptions(count, words, line);
    for (; taken && optind < count; ++optind) {
        taken = ParseWord(words[optind], line);
    }
    if (line.task == CommandLine::Task::Run && AsksForSettings(line)) {
        line.task = CommandLine::Task::Settings;
    }
    taken = taken ? CheckComplete(line) : taken;
    if (!taken) {
        return tl::unexpected<Failure>(taken.error());
    }
    return line;
}

}  // namespace platform
