#include "platform/report/report_html.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <iterator>
#include <utility>

#include "platform/report/report_lines.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

// What the steps of the Apply sequence are about, by their numbers.
constexpr const char* kStepTitles[] = {
    "Outside of the steps",
    "User Defined 1",
    "User Defined 2",
    "\\Temp",
    "\\Windows\\Temp",
    "\\My Documents\\Temp",
    "Clear Pocket IE Cache",
    "Clear Pocket IE History",
    "Move Pocket IE Cache",
    "Limit Pocket IE Cache",
    "Limit Pocket IE History",
    "Limit Pocket IE Cookies",
    "Move AvantGo Cache",
    "Clear Redundant Registry Keys",
    "Move Favorites Storage",
    "Move Fonts Folder",
    "Move My Documents",
    "Remove redundant start menu items",
    "Set font cache size",
    "Silent cleanup at startup",
    "Disable start menu animation",
    "Disable window animation",
    "Selected directories",
    "Selected files",
    "Selected startup shortcuts",
};

constexpr char kBeforeTitle[] = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<title>Fennelbright: )";

constexpr char kAfterTitle[] = R"(</title>
<style>
:root { --page: #fbfaf7; --text: #21241f; --quiet: #62675d; --line: #d9d8d0; --card: #fff;
        --bar: #4c8a4a; --bad: #b3261e; --bad-card: #fdeceb; }
@media (prefers-color-scheme: dark) {
:root { --page: #171916; --text: #e4e6df; --quiet: #a0a599; --line: #373b34; --card: #20231f;
        --bar: #79b573; --bad: #ff9c93; --bad-card: #3a1f1d; }
}
body { margin: 0 auto; max-width: 64rem; padding: 1.5rem; background: var(--page);
       color: var(--text); font: 1rem/1.5 system-ui, sans-serif; }
h1 { font-size: 1.6rem; margin: 0 0 1rem; }
h2 { font-size: 1.15rem; margin: 2rem 0 .5rem; }
table { border-collapse: collapse; width: 100%; }
th, td { padding: .25rem .75rem .25rem 0; border-bottom: 1px solid var(--line);
         text-align: left; vertical-align: top; overflow-wrap: anywhere; }
th { color: var(--quiet); font-weight: normal; }
.facts th { width: 12rem; }
.number { text-align: right; white-space: nowrap; }
.track { width: 35%; }
.bar { background: var(--bar); height: 1rem; margin-top: .25rem; border-radius: 2px; }
details { margin: .5rem 0; border: 1px solid var(--line); border-radius: 6px;
          background: var(--card); }
summary { cursor: pointer; padding: .5rem .75rem; }
ul { margin: 0; padding: 0 .75rem .75rem 2rem; font-family: ui-monospace, monospace;
     font-size: .875rem; overflow-wrap: anywhere; }
a { color: inherit; }
.undone { color: var(--bad); font-weight: bold; }
.rehearsal { border: 2px dashed var(--bar); border-radius: 6px; padding: .5rem .75rem; }
#undone { border-color: var(--bad); background: var(--bad-card); }
</style>
</head>
<body>
)";

constexpr char kRehearsalHeading[] =
    "<h1>Rehearsal of a run</h1>\n<p class=\"rehearsal\">Nothing was changed. This is what the run "
    "would do, and what it could not do.</p>\n";

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char byte : text) {
        switch (byte) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&#39;";
                break;
            default:
                escaped += byte;
        }
    }
    return escaped;
}

// With a comma before each three digits.
std::string Grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t left = digits.size(); left > 3; left -= 3) {
        digits.insert(left - 3, 1, ',');
    }
    return digits;
}

std::string TitleOf(int step) {
    const auto index = static_cast<std::size_t>(step);
    std::string title = index < std::size(kStepTitles) ? kStepTitles[index] : "";
    if (step == 0) {
        return title;
    }
    return "Step " + std::to_string(step) + (title.empty() ? "" : ": ") + title;
}

std::string LocalTime(std::time_t time) {
    std::tm parts{};
    localtime_r(&time, &parts);
    std::array<char, 64> text{};
    const std::size_t length =
        std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S %z", &parts);
    return {text.data(), length};
}

std::string NotDone(std::uint64_t count) {
    return "<span class=\"undone\">" + Grouped(count) + " not done</span>";
}

// A row of a table with one fact; `value` is escaped already.
std::string Fact(std::string_view name, std::string_view value) {
    return std::string("<tr><th>").append(name).append("</th><td>").append(value) + "</td></tr>\n";
}

std::string Summary(const std::string& title, std::uint64_t entries, const ReportTotals& totals) {
    std::string text = Escaped(title) + " &ndash; " + Grouped(entries) +
                       (entries == 1 ? " entry, " : " entries, ") + Grouped(totals.bytesDeleted) +
                       " bytes deleted";
    return totals.notDone > 0 ? text + ", " + NotDone(totals.notDone) : text;
}

std::string BarRow(int step, const ReportTotals& totals, std::uint64_t most) {
    const std::uint64_t percent =
        static_cast<std::uint64_t>(100.0 * static_cast<double>(totals.bytesDeleted) /
                                   static_cast<double>(std::max<std::uint64_t>(most, 1)));
    return "<tr><td><a href=\"#step" + std::to_string(step) + "\">" + Escaped(TitleOf(step)) +
           "</a>" + (totals.notDone > 0 ? "<br>" + NotDone(totals.notDone) : "") +
           "</td><td class=\"number\">" + Grouped(totals.filesDeleted) +
           "</td><td class=\"number\">" + Grouped(totals.bytesDeleted) +
           "</td><td class=\"track\"><div class=\"bar\" style=\"width: " + std::to_string(percent) +
           "%\"></div></td></tr>\n";
}

}  // namespace

ReportHtml::ReportHtml(Descriptor directory, std::string name)
    : directory_(std::move(directory)),
      name_(std::move(name)),
      page_(directory_.get(), Survives::PowerLoss),
      notDone_(directory_.get()) {}

ReportHtml::List& ReportHtml::ListOf(int step) {
    return lists_.try_emplace(step, directory_.get()).first->second;
}

void ReportHtml::AddItem(List& list, const ReportEvent& event, const std::string& prefix) {
    ++list.entries;
    list.totals.Count(event);
    list.items.Append(event.failure ? "<li class=\"undone\">" : "<li>");
    list.items.Append(Escaped(prefix + DescriptionOf(event)) + "</li>\n");
}

void ReportHtml::Write(const ReportEvent& event) {
    AddItem(ListOf(event.step), event, "");
    if (event.failure) {
        AddItem(notDone_, event, event.step > 0 ? TitleOf(event.step) + ": " : "");
    }
}

void ReportHtml::AddFacts(const ReportEnd& end) {
    page_.Append(run_.isRehearsal ? kRehearsalHeading : "<h1>Report of a run</h1>\n");
    page_.Append("<table class=\"facts\">\n");
    page_.Append(Fact("Device", Escaped(ReadableBytes(run_.device))));
    page_.Append(Fact("Started", LocalTime(run_.started)));
    page_.Append(Fact("Command line", Escaped(ReadableText(run_.programLine))));
    page_.Append(Fact("Version", Escaped(run_.version)));
    if (end.exitCode) {
        page_.Append(Fact("Exit code", std::to_string(*end.exitCode)));
    }
    page_.Append("</table>\n");
}

void ReportHtml::AddTotals(const ReportTotals& totals) {
    const std::pair<const char*, std::uint64_t> counts[] = {
        {"Files deleted", totals.filesDeleted},
        {"Bytes deleted", totals.bytesDeleted},
        {"Entries moved", totals.entriesMoved},
        {"Directories made", totals.directoriesMade},
        {"Directories removed", totals.directoriesRemoved},
        {"Shortcuts made", totals.shortcutsMade},
        {"Values written", totals.valuesWritten},
        {"Keys deleted", totals.keysDeleted},
    };
    page_.Append("<h2>Totals</h2>\n<table class=\"facts\">\n");
    for (const auto& [name, count] : counts) {
        page_.Append(Fact(name, Grouped(count)));
    }
    page_.Append(Fact("Not done", totals.notDone > 0
                                      ? "<a href=\"#undone\">" + NotDone(totals.notDone) + "</a>"
                                      : "0"));
    page_.Append("</table>\n");
}

void ReportHtml::AddBars() {
    std::uint64_t most = 0;
    for (const auto& [step, list] : lists_) {
        most = std::max(most, list.totals.bytesDeleted);
    }
    page_.Append(
        "<h2>Tasks</h2>\n<table>\n<tr><th>Task</th><th class=\"number\">Files deleted</th>"
        "<th class=\"number\">Bytes</th><th></th></tr>\n");
    for (const auto& [step, list] : lists_) {
        page_.Append(BarRow(step, list.totals, most));
    }
    page_.Append("</table>\n");
}

void ReportHtml::AddList(const std::string& opening, const std::string& summary, List& list) {
    page_.Append("<details " + opening + "><summary>" + summary + "</summary>\n<ul>\n");
    page_.AppendContentOf(list.items);
    page_.Append("</ul>\n</details>\n");
}

void ReportHtml::AddLists() {
    page_.Append(run_.isRehearsal ? "<h2>What would be done</h2>\n" : "<h2>What was done</h2>\n");
    for (auto& [step, list] : lists_) {
        AddList("id=\"step" + std::to_string(step) + "\"",
                Summary(TitleOf(step), list.entries, list.totals), list);
    }
}

Status ReportHtml::Finish(const ReportEnd& end) {
    page_.Append(kBeforeTitle);
    page_.Append(run_.isRehearsal ? "rehearsal of a run" : "report of a run");
    page_.Append(kAfterTitle);
    AddFacts(end);
    AddTotals(end.totals);
    if (notDone_.entries > 0) {
        AddList("id=\"undone\" open", NotDone(notDone_.entries), notDone_);
    }
    if (lists_.empty()) {
        page_.Append("<p>There was nothing to do.</p>\n");
    } else {
        AddBars();
        AddLists();
    }
    page_.Append("</body>\n</html>\n");
    Status published = page_.PublishAs(name_);
    return published ? published : FailOf(published.error(), ReadableBytes(name_));
}

}  // namespace platform
