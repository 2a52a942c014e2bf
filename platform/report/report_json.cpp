#include "platform/report/report_json.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "platform/text/readable_text.h"

namespace platform {

namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

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

void AppendHexByte(std::string& text, unsigned byte) {
    text += kHexDigits[byte >> 4 & 0xF];
    text += kHexDigits[byte & 0xF];
}

template <typename Bytes>
std::string HexOfBytes(const Bytes& bytes) {
    std::string text;
    text.reserve(2 * bytes.size());
    for (const auto byte : bytes) {
        AppendHexByte(text, static_cast<unsigned char>(byte));
    }
    return text;
}

// Four digits for each unit.
std::string HexOfUnits(std::u16string_view units) {
    std::string text;
    text.reserve(4 * units.size());
    for (const char16_t unit : units) {
        AppendHexByte(text, static_cast<unsigned>(unit >> 8));
        AppendHexByte(text, static_cast<unsigned>(unit & 0xFF));
    }
    return text;
}

constexpr std::size_t kUsualLength = 256;

// An object of JSON while it is written. Texts are readable ones: UTF-8 without control characters.
class JsonObject {
  public:
    JsonObject() { text_.reserve(kUsualLength); }

    JsonObject& Raw(const char* name, std::string_view value) {
        ((text_ += text_.empty() ? "{\"" : ",\"") += name) += "\":";
        text_ += value;
        return *this;
    }

    JsonObject& Number(const char* name, std::uint64_t value) {
        return Raw(name, std::to_string(value));
    }

    JsonObject& Flag(const char* name, bool value) { return Raw(name, value ? "true" : "false"); }

    JsonObject& Text(const char* name, std::string_view value) {
        Raw(name, "\"");
        for (const char byte : value) {
            if (byte == '"' || byte == '\\') {
                text_ += '\\';
            }
            text_ += byte;
        }
        text_ += '"';
        return *this;
    }

    // With the units where the readable form is not exact.
    JsonObject& Text(const char* name, const char* unitsName, std::u16string_view value) {
        Text(name, ReadableText(value));
        return IsReadable(value) ? *this : Text(unitsName, HexOfUnits(value));
    }

    std::string Take() { return std::move(text_ += '}'); }

  private:
    std::string text_;
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
    JsonObject object;
    object.Number("type", value->type).Text("bytes", HexOfBytes(value->bytes));
    if (const std::optional<std::uint64_t> number = NumberOf(*value)) {
        object.Number("number", *number);
    } else if (const std::optional<std::u16string> text = TextOf(*value)) {
        object.Text("text", ReadableText(*text));
    }
    return object.Take();
}

}  // namespace

void ReportJson::Begin(const ReportRun& run) {
    const std::string device = ReadableBytes(run.device);
    stream_.Begin(run.isRehearsal);
    JsonObject line;
    line.Text("kind", "run").Text("version", run.version).Text("device", device);
    if (device != run.device) {
        line.Text("bytes", HexOfBytes(run.device));
    }
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
    const ReportTotals& totals = end.totals;
    JsonObject line;
    line.Text("kind", "totals")
        .Number("files_deleted", totals.filesDeleted)
        .Number("bytes_deleted", totals.bytesDeleted)
        .Number("entries_moved", totals.entriesMoved)
        .Number("directories_made", totals.directoriesMade)
        .Number("directories_removed", totals.directoriesRemoved)
        .Number("shortcuts_made", totals.shortcutsMade)
        .Number("values_written", totals.valuesWritten)
        .Number("keys_deleted", totals.keysDeleted)
        .Number("not_done", totals.notDone);
    if (end.exitCode) {
        line.Number("exit_code", static_cast<std::uint64_t>(*end.exitCode));
    }
    stream_.WriteLine(line.Take());
    return stream_.Finish();
}

}  // namespace platform
