#pragma once

#include <string>
#include <vector>

#include "core/platform_types.h"
#include "platform/command_line/setting_words.h"
#include "platform/diagnostics/failure.h"

namespace platform {

// How a run is reported on standard output, or the settings are shown there.
enum class ReportForm { None, Lines, Json };

// What the words of the host's command line ask for.
struct CommandLine {
    enum class Task { Run, Boot, Settings, MakeSampleDevice, ShowHelpPage, ShowHelp, ShowVersion };

    Task task = Task::Run;
    std::string device;  // the directory to run on, or to make; empty: its user is to be asked
    std::vector<std::string> furtherDevices;  // device directories for the same silent run
    bool isByHalves = false;  // that directory is only the file tree; the other parts:
    std::string registry;     // its registry's file; empty: none
    std::string state;        // where what is kept of its runs goes; empty: below the user's own
    std::u16string modulePath;
    std::u16string programLine;  // the program's own command line
    std::string helpPlace;       // of the help page on standard input that is to be shown
    ReportForm report = ReportForm::None;
    std::string reportPage;              // the file for the report as a page; empty: none
    std::vector<SettingChange> changes;  // no option twice
    ReportForm shownSettings = ReportForm::None;
    bool strict = false;
    bool rehearse = false;
    bool noDisplay = false;
    double scale = 0;  // desktop pixels for a pixel of the handheld; 0: fitting for the desktop
};

// Reads the command line. The object of a failure is the option that is wrong, if it is one alone.
Result<CommandLine> ParseCommandLine(int count, char** words);

extern const char kHelp[];

}  // namespace platform
