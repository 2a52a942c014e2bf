#include "platform/report/report_lines.h"

#include <sysexits.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/text/readable_text.h"

namespace platform {

namespace {

// The words for each action: as it was done, and after "not". `link` stands between both paths.
struct Wording {
    ReportAction action;
    const char* done;
    const char* undone;
    const char* link = "";
};

constexpr Wording kWordings[] = {
    {ReportAction::DeleteFile, "deleted ", "deleted "},
    {ReportAction::RemoveDirectory, "removed directory ", "removed directory "},
    {ReportAction::MakeDirectory, "made directory ", "made directory "},
    {ReportAction::MoveEntry, "moved ", "moved ", " to "},
    {ReportAction::MakeShortcut, "made shortcut ", "made shortcut ", " to "},
    {ReportAction::WriteValue, "wrote ", "written "},
    {ReportAction::DeleteKey, "deleted key ", "deleted key "},
    {ReportAction::ReadDirectory, "read ", "read "},
    {ReportAction::Restart, "restarting the device", "restarted"},
    {ReportAction::EraseDevice, "erasing the device", "erased"},
};

constexpr std::pair<int, const char*> kWithoutTotals[] = {
    {EX_DATAERR, "nothing is done: its registry cannot be read"},
    {EX_NOINPUT, "nothing is done: it is no usable device directory"},
    {EX_OSERR, "broken off: the system had not enough memory for it"},
    {EX_CANTCREAT, "nothing is done: its registry could not be stored"},
    {EX_TEMPFAIL, "nothing is done: another run is using it"},
};

std::string Count(std::uint64_t count, const char* one, const char* many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

std::string ReadableValue(const std::optional<ReportedValue>& value) {
    if (!value) {
        return "nothing";
    }
    const auto number = value->type == REG_DWORD ? NumberOf(*value) : std::nullopt;
    const auto text = value->type == REG_SZ ? TextOf(*value) : std::nullopt;
    if (number || text) {
        return number ? std::to_string(*number) : '"' + ReadableText(*text) + '"';
    }
    return std::to_string(value->bytes.size()) + " bytes of type " + std::to_string(value->type);
}

// What the event is about.
std::string ObjectOf(const ReportEvent& event, const Wording& wording) {
    const std::string path = ReadableText(event.path);
    switch (event.action) {
        case ReportAction::WriteValue:
            return '[' + path + "] \"" + ReadableText(event.other) + '"';
        case ReportAction::DeleteKey:
            return '[' + path + ']';
        default:
            return path + wording.link + ReadableText(event.other);
    }
}

// What is said of it besides, when it was done.
std::string DetailsOf(const ReportEvent& event) {
    if (event.action == ReportAction::WriteValue) {
        return ": " + ReadableValue(event.before) + " -> " + ReadableValue(event.after);
    }
    if (event.action != ReportAction::DeleteFile) {
        return {};
    }
    return " (" + (event.bytes ? Count(*event.bytes, "byte", "bytes") : "size unknown") + ')';
}

}  // namespace

std::string DescriptionOf(const ReportEvent& event) {
    const Wording& wording =
        *std::find_if(std::begin(kWordings), std::end(kWordings),
                      [&](const Wording& each) { return each.action == event.action; });
    return (event.failure ? std::string("not ") + wording.undone : wording.done) +
           ObjectOf(event, wording) +
           (event.failure ? " (" + *event.failure + ')' : DetailsOf(event));
}

std::string ReportLine(const ReportEvent& event) {
    return (event.step > 0 ? "step " + std::to_string(event.step) + ": " : "") +
           DescriptionOf(event);
}

std::string ReportLine(const ReportTotals& totals, const std::string& title) {
    return title + ": " + Count(totals.filesDeleted, "file", "files") + " deleted (" +
           Count(totals.bytesDeleted, "byte", "bytes") + "), " +
           Count(totals.entriesMoved, "entry", "entries") + " moved, " +
           Count(totals.directoriesMade, "directory", "directories") + " made, " +
           Count(totals.directoriesRemoved, "directory", "directories") + " removed, " +
           Count(totals.shortcutsMade, "shortcut", "shortcuts") + " made, " +
           Count(totals.valuesWritten, "value", "values") + " written, " +
           Count(totals.keysDeleted, "key", "keys") + " deleted, " +
           std::to_string(totals.notDone) + " not done";
}

std::string WhyWithoutTotals(int exitCode) {
    const auto* const found =
        std::ranges::find(kWithoutTotals, exitCode, [](const auto& each) { return each.first; });
    return found != std::end(kWithoutTotals)
               ? found->second
               : "broken off, with exit code " + std::to_string(exitCode);
}

void ReportLines::Begin(const ReportRun& run) {
    stream_.Begin(run.isRehearsal);
    if (run.isRehearsal) {
        stream_.WriteLine("rehearsal: nothing is changed; the run would report:");
    }
}

Status ReportLines::Finish(const ReportEnd& end) {
    stream_.WriteLine(ReportLine(end.totals));
    return stream_.Finish();
}

void SumLines::BeginDevice(const std::string& device) {
    stream_.WriteLine("device " + ReadableBytes(device));
}

void SumLines::NoteWithoutTotals(const std::string& /*device*/, int exitCode) {
    stream_.WriteLine(WhyWithoutTotals(exitCode));
}

Status SumLines::Finish(const ReportSum& sum) {
    stream_.WriteLine(ReportLine(sum.totals, "sum of " + std::to_string(sum.devices) + " devices"));
    return stream_.Finish();
}

}  // namespace platform
