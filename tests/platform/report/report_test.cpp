#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "platform/report/last_run_file.h"
#include "platform/report/report_html.h"
#include "platform/report/report_json.h"
#include "platform/report/report_lines.h"
#include "tests/support/system_calls.h"
#include "tests/support/temporary_device.h"

namespace {

using platform::ReportAction;
using platform::ReportEvent;

platform::Descriptor OpenDirectory(const std::string& path) {
    return platform::Descriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// An event, and what it is in each form; the page has its line where it says nothing else.
const struct {
    ReportEvent event;
    std::string line;
    std::string json;
    std::string page = {};
} kCases[] = {
    {{.action = ReportAction::DeleteFile, .path = u"\\T\\a\n\"'&<script>\\\xD800", .bytes = 1},
     "deleted \\T\\a \"'&<script>\\<D800> (1 byte)",
     R"({"kind":"event","action":"delete-file","done":true,"path":"\\T\\a \"'&<script>\\<D800>",)"
     R"("units":"005c0054005c0061000a002200270026003c007300630072006900700074003e005cd800","size":1})",
     "<li>deleted \\T\\a &quot;&#39;&amp;&lt;script&gt;\\&lt;D800&gt; (1 byte)</li>"},
    {{.action = ReportAction::MoveEntry,
      .path = u"\\ä\x202E",
      .other = u"\\b\xF0FF",
      .failure = "\xFF\"",
      .step = 14},
     "step 14: not moved \\ä<202E> to \\b<F0FF> (\xFF\")",
     R"({"kind":"event","action":"move","done":false,"step":14,"path":"\\ä<202E>",)"
     R"("units":"005c00e4202e","destination":"\\b<F0FF>","destination_units":"005c0062f0ff",)"
     R"("reason":"<F0FF>\""})",
     "<li class=\"undone\">Step 14: Move Favorites Storage: not moved \\ä"},
    {{.action = ReportAction::WriteValue,
      .path = u"HKCU\\K",
      .other = u"<0041>",
      .after = platform::ReportedValue{REG_SZ, {'"', 0, 0, 0}},
      .step = 99},
     "step 99: wrote [HKCU\\K] \"<0041>\": nothing -> \"\"\"",
     R"({"kind":"event","action":"write-value","done":true,"step":99,"path":"HKCU\\K",)"
     R"("name":"<0041>","before":null,"after":{"type":1,"bytes":"22000000","text":"\""}})",
     "<summary>Step 99 &ndash; 1 entry, 0 bytes deleted</summary>"},
    {{.action = ReportAction::WriteValue,
      .path = u"HKCU",
      .before = platform::ReportedValue{REG_DWORD, {1, 0, 0, 0x80}},
      .after = platform::ReportedValue{REG_QWORD, {1, 0, 0, 0, 1, 0, 0, 0}}},
     "wrote [HKCU] \"\": 2147483649 -> 8 bytes of type 11",
     R"({"kind":"event","action":"write-value","done":true,"path":"HKCU","name":"",)"
     R"("before":{"type":4,"bytes":"01000080","number":2147483649},)"
     R"("after":{"type":11,"bytes":"0100000001000000","number":4294967297}})",
     "<li>wrote [HKCU] &quot;&quot;: 2147483649 -&gt; 8 bytes of type 11</li>"},
    {{.action = ReportAction::WriteValue,
      .path = u"HKCU",
      .before = platform::ReportedValue{REG_BINARY, {0xA}},
      .after = platform::ReportedValue{REG_SZ, {0xA}}},
     "wrote [HKCU] \"\": 1 bytes of type 3 -> 1 bytes of type 1",
     R"({"kind":"event","action":"write-value","done":true,"path":"HKCU","name":"",)"
     R"("before":{"type":3,"bytes":"0a"},"after":{"type":1,"bytes":"0a"}})"},
    {{.action = ReportAction::Restart},
     "restarting the device",
     R"({"kind":"event","action":"restart","done":true})"},
};

TEST(Report, EveryFormHasEveryEventAndIsWhatItsReadersExpect) {
    const TemporaryDevice scratch;
    const std::string linesPath = scratch.path() + "/lines";
    const std::string jsonPath = scratch.path() + "/json";
    std::FILE* const linesFile = std::fopen(linesPath.c_str(), "we");
    std::FILE* const jsonFile = std::fopen(jsonPath.c_str(), "we");
    platform::ReportLines lines(linesFile);
    platform::ReportJson json(jsonFile);
    platform::ReportHtml page(OpenDirectory(scratch.path()), "page");
    platform::ReportTotals totals;
    const std::vector<platform::ReportWriter*> writers = {&lines, &json, &page};
    for (platform::ReportWriter* const writer : writers) {
        totals = {};
        writer->Begin({"1.0", "d\xFF<b>", u"s\x1", 86400, true});
        for (const auto& each : kCases) {
            writer->Write(each.event);
            totals.Count(each.event);
        }
        EXPECT_TRUE(writer->Finish({totals, 74}).has_value());
    }
    std::fclose(linesFile);
    std::fclose(jsonFile);
    std::string allLines;
    std::string allJson =
        R"({"kind":"run","version":"1.0","device":"d<F0FF><b>","bytes":"64ff3c623e",)"
        R"("started":"1970-01-02T00:00:00Z","program_line":"s<0001>",)"
        R"("program_line_units":"00730001","rehearsal":true})"
        "\n";
    for (const auto& each : kCases) {
        allLines += each.line + '\n';
        allJson += each.json + '\n';
        EXPECT_NE(ReadFile(scratch.path() + "/page").find(each.page), std::string::npos)
            << each.page;
    }
    EXPECT_EQ(ReadFile(scratch.path() + "/page").find("<script>"), std::string::npos);
    EXPECT_TRUE(ReadFile(linesPath).starts_with(allLines + "total: 1 file deleted (1 byte), "));
    EXPECT_EQ(ReadFile(jsonPath),
              allJson + R"({"kind":"totals","files_deleted":1,"bytes_deleted":1,"entries_moved":0,)"
                        R"("directories_made":0,"directories_removed":0,"shortcuts_made":0,)"
                        R"("values_written":3,"keys_deleted":0,"not_done":1,"exit_code":74})"
                        "\n");
    for (const std::string parser :
         {"jq -es 'length == 8' < ",
          "python3 -c 'import json, sys; [json.loads(l.decode()) for l in sys.stdin.buffer]' < "}) {
        EXPECT_EQ(std::system((parser + jsonPath + " > /dev/null").c_str()), 0) << parser;
    }
}

// Writes last-run.txt with a fault at one system call; returns whether there was such a call.
bool WriteLastRun(const std::string& device, int number, int error) {
    const pid_t child = fork();
    if (child == 0) {
        const platform::Descriptor directory = OpenDirectory(device);
        platform::LastRunFile file(directory.get());
        g_calls.faultAt = number;
        g_calls.error = error;
        for (int count = 0; count < 5000; ++count) {
            file.Write({.action = ReportAction::DeleteFile, .path = u"\\a", .bytes = 0});
        }
        const bool isWritten = file.Finish({}).has_value();
        _exit(g_calls.faultAt > 0 ? 2 : isWritten ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFSIGNALED(status) || WEXITSTATUS(status) != 2;
}

TEST(Report, TheLastRunIsTheOldOneOrTheNewOneWhole) {
    for (const bool isThere : {false, true}) {
        bool hasCall = true;
        for (int fault = 2; hasCall; ++fault) {
            const TemporaryDevice device;
            const std::string path = device.path() + "/last-run.txt";
            if (isThere) {
                WriteFile(path, "old\n");
            }
            hasCall = WriteLastRun(device.path(), fault / 2, fault % 2 == 0 ? 0 : ENOSPC);
            const std::string found = ReadFile(path);
            EXPECT_TRUE(found == (isThere ? "old\n" : "") ||
                        (found.size() > 100'000 && found.ends_with("0 not done\n")))
                << fault << found.size();
        }
    }
}

}  // namespace
