#include <fcntl.h>

#include <cstdlib>

#include "platform/report/last_run_file.h"
#include "platform/report/report_html.h"
#include "platform/report/report_json.h"
#include "tests/support/system_calls.h"
#include "tests/support/temporary_device.h"

namespace {

using platform::ReportAction;
using Value = platform::ReportedValue;

const platform::ReportEvent kEvents[] = {
    {.action = ReportAction::DeleteFile, .path = u"\\a\n\"'&<script>\xD800", .bytes = 1},
    {ReportAction::MoveEntry, u"\\ä\x202E", u"\\\xF0FF", {}, {}, {}, "\xFF\"", 14},
    {ReportAction::WriteValue, u"HKCU", u"<0041>", {}, {}, Value{REG_SZ, {'"', 0, 0, 0}}, {}, 99},
    {ReportAction::WriteValue,
     u"HKCU",
     u"",
     {},
     Value{REG_DWORD, {1, 0, 0, 0x80}},
     Value{REG_QWORD, {1, 0, 0, 0, 1, 0, 0, 0}}},
    {ReportAction::WriteValue, u"HKCU", u"", {}, Value{REG_BINARY, {10}}, Value{REG_SZ, {10}}},
    {ReportAction::Restart}};

constexpr char kJson[] =
    R"({"kind":"run","version":"1","device":"<F0FF><b>","bytes":"ff3c623e","started":"1970-01-02T00:00:00Z","program_line":"s<0001>","program_line_units":"00730001","rehearsal":true}
{"kind":"event","action":"delete-file","done":true,"path":"\\a \"'&<script><D800>","units":"005c0061000a002200270026003c007300630072006900700074003ed800","size":1}
{"kind":"event","action":"move","done":false,"step":14,"path":"\\ä<202E>","units":"005c00e4202e","destination":"\\<F0FF>","destination_units":"005cf0ff","reason":"<F0FF>\""}
{"kind":"event","action":"write-value","done":true,"step":99,"path":"HKCU","name":"<0041>","before":null,"after":{"type":1,"bytes":"22000000","text":"\""}}
{"kind":"event","action":"write-value","done":true,"path":"HKCU","name":"","before":{"type":4,"bytes":"01000080","number":2147483649},"after":{"type":11,"bytes":"0100000001000000","number":4294967297}}
{"kind":"event","action":"write-value","done":true,"path":"HKCU","name":"","before":{"type":3,"bytes":"0a"},"after":{"type":1,"bytes":"0a"}}
{"kind":"event","action":"restart","done":true}
{"kind":"totals","files_deleted":1,"bytes_deleted":1,"entries_moved":0,"directories_made":0,"directories_removed":0,"shortcuts_made":0,"values_written":3,"keys_deleted":0,"not_done":1,"exit_code":74}
)";

constexpr const char* kPageHas[] = {
    "<td>&lt;F0FF&gt;&lt;b&gt;</td>",
    "<li>deleted \\a &quot;&#39;&amp;&lt;script&gt;&lt;D800&gt; (1 byte)</li>",
    "<li class=\"undone\">Step 14: Move Favorites Storage: not moved \\ä&lt;202E&gt; to ",
    "<summary>Step 99 &ndash; 1 entry, 0 bytes deleted</summary>", "-&gt; &quot;&quot;&quot;</li>"};

platform::Descriptor OpenDirectory(const std::string& path) {
    return platform::Descriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

void WriteReport(platform::ReportWriter& writer) {
    platform::ReportEnd end{{}, 74};
    writer.Begin({"1", "\xFF<b>", u"s\x1", 86400, true});
    for (const platform::ReportEvent& event : kEvents) {
        writer.Write(event);
        end.totals.Count(event);
    }
    EXPECT_TRUE(writer.Finish(end).has_value());
}

TEST(Report, HostileTextsAreWhatReadersOfJsonAndPagesExpect) {
    const TemporaryDevice scratch;
    const std::string path = scratch.path() + "/json";
    std::FILE* const file = std::fopen(path.c_str(), "we");
    platform::ReportJson json(file);
    WriteReport(json);
    std::fclose(file);
    EXPECT_EQ(ReadFile(path), kJson);
    for (const std::string parser :
         {"jq -es 'length == 8' < ",
          "python3 -c 'import json, sys; [json.loads(l.decode()) for l in sys.stdin.buffer]' < "}) {
        EXPECT_EQ(std::system((parser + path + " > /dev/null").c_str()), 0) << parser;
    }
    platform::ReportHtml writer(OpenDirectory(scratch.path()), "page");
    WriteReport(writer);
    const std::string page = ReadFile(scratch.path() + "/page");
    for (const char* const part : kPageHas) {
        EXPECT_NE(page.find(part), std::string::npos) << part;
    }
    EXPECT_EQ(page.find("<script"), std::string::npos);
}

// With a fault at one system call; returns whether there was such a call.
bool WriteLastRun(const std::string& device, int number, int error) {
    const auto write = [&device] {
        const platform::Descriptor directory = OpenDirectory(device);
        platform::LastRunFile file(directory.get());
        for (int count = 0; count < 5000; ++count) {
            file.Write({ReportAction::DeleteFile, u"\\a"});
        }
        [[maybe_unused]] const platform::Status written = file.Finish({});
        return 0;
    };
    return RunWithFault({.faultAt = number, .error = error}, write) != kNoSuchCall;
}

TEST(Report, TheLastRunIsTheOldOneOrTheNewOneWhole) {
    for (const std::string old : {"", "old\n"}) {
        bool hasCall = true;
        for (int fault = 2; hasCall; ++fault) {
            const TemporaryDevice device;
            const std::string path = device.path() + "/last-run.txt";
            if (!old.empty()) {
                WriteFile(path, old);
            }
            hasCall = WriteLastRun(device.path(), fault / 2, fault % 2 == 0 ? 0 : ENOSPC);
            const std::string found = ReadFile(path);
            const bool isNew = found.size() > 100'000 && found.ends_with("0 not done\n");
            EXPECT_TRUE(isNew || (hasCall && found == old)) << fault << ' ' << found.size();
        }
    }
}

}  // namespace
