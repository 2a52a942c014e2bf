#include "platform/report/report_json.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "platform/text/json_object.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

// The word for each action, and the fields that its second text has.
struct Wording {
    ReportAction action;
    const char* word;
    const char* other = nullptr;
    const char* otherUnits = nullptr;
};

constexpr Wording kWordings[] = {
    {ReportAction::DeleteFile, "delete-file"},
    {ReportAction::RemoveDirectory, "remove-directory"},
    {ReportAction::MakeDirectory, "make-directory"},
    {ReportAction::MoveEntry, "move", "destination", "destination_units"},
    {ReportAction::MakeShortcut, "make-shortcut", "target", "target_units"},
    {ReportAction::WriteValue, "write-value", "name", "name_units"},
    {ReportAction::DeleteKey, "delete-key"},
    {ReportAction::ReadDirectory, "read-directory"},
    {ReportAction::Restart, "restart"},
    {ReportAction::EraseDevice, "erase-device"},
};

std::string UtcTime(std::time_t time) {
    std::tm parts{};
    gmtime_r(&time, &parts);
    std::array<char, 32> text{};
    const std::size_t length =
        std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
    return {text.data(), length};
}

std::string ValueObject(const std::optional<ReportedValue>& value) {
    if (!value) {
        return "null";
    }
    const auto* const bytes = reinterpret_cast<const char*>(value->bytes.data());
    JsonObject object;
    object.Number("type", value->type).Text("bytes", HexOf({bytes, value->bytes.size()}));
    if (const std::optional<std::uint64_t> number = NumberOf(*value)) {
        object.Number("number", *number);
    } else if (const std::optional<std::u16string> text = TextOf(*value)) {
        object.Text("text", ReadableText(*text));
    }
    return object.Take();
}

void AddDevice(JsonObject& line, const std::string& device) {
    line.Text("device", ReadableBytes(device));
    if (ReadableBytes(device) != device) {
        line.Text("bytes", HexOf(device));
    }
}

void AddTotals(JsonObject& line, const ReportTotals& totals) {
    line.Number("files_deleted", totals.filesDeleted)
        .Number("bytes_deleted", totals.bytesDeleted)
        .Number("entries_moved", totals.entriesMoved)
        .Number("directories_made", totals.directoriesMade)
        .Number("directories_removed", totals.directoriesRemoved)
        .Number("shortcuts_made", totals.shortcutsMade)
        .Number("values_written", totals.valuesWritten)
        .Number("keys_deleted", totals.keysDeleted)
        .Number("not_done", totals.notDone);
}

}  // namespace

void ReportJson::Begin(const ReportRun& run) {
    stream_.Begin(run.isRehearsal);
    JsonObject line;
    AddDevice(line.Text("kind", "run").Text("version", run.version), run.device);
    line.Text("started", UtcTime(run.started))
        .Text("program_line", "program_line_units", run.programLine)
        .Flag("rehearsal", run.isRehearsal);
    stream_.WriteLine(line.Take());
}

void ReportJson::Write(const ReportEvent& event) {
    const Wording& wording =
        *std::find_if(std::begin(kWordings), std::end(kWordings),
                      [&](const Wording& each) { return each.action == event.action; });
    JsonObject line;
    line.Text("kind", "event").Text("action", wording.word).Flag("done", !event.failure);
    if (event.step > 0) {
        line.Number("step", static_cast<std::uint64_t>(event.step));
    }
    if (!event.path.empty()) {
        line.Text("path", "units", event.path);
    }
    if (wording.other != nullptr) {
        line.Text(wording.other, wording.otherUnits, event.other);
    }
    if (event.bytes) {
        line.Number("size", *event.bytes);
    }
    if (event.action == ReportAction::WriteValue) {
        line.Raw("before", ValueObject(event.before)).Raw("after", ValueObject(event.after));
    }
    if (event.failure) {
        line.Text("reason", ReadableBytes(*event.failure));
    }
    stream_.WriteLine(line.Take());
}

Status ReportJson::Finish(const ReportEnd& end) {
    JsonObject line;
    AddTotals(line.Text("kind", "totals"), end.totals);
    if (end.exitCode) {
        line.Number("exit_code", static_cast<std::uint64_t>(*end.exitCode));
    }
    stream_.WriteLine(line.Take());
    return stream_.Finish();
}

void SumJson::NoteWithoutTotals(const std::string& device, int exitCode) {
    JsonObject line;
    AddDevice(line.Text("kind", "ended"), device);
    stream_.WriteLine(line.Number("exit_code", static_cast<std::uint64_t>(exitCode)).Take());
}

Status SumJson::Finish(const ReportSum& sum) {
    JsonObject line;
    AddTotals(line.Text("kind", "sum").Number("devices", sum.devices), sum.totals);
    stream_.WriteLine(line.Number("exit_code", static_cast<std::uint64_t>(sum.exitCode)).Take());
    return stream_.Finish();
}

}  // namespace platform
