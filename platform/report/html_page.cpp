#include "platform/report/html_page.h"

#include <utility>

#include "platform/text/readable_text.h"

namespace platform {

namespace {

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
h1 { font-size: 1.6rem; margin: 3rem 0 1rem; }
h1:first-child { margin-top: 0; }
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
.bad { border-color: var(--bad); background: var(--bad-card); }
</style>
</head>
<body>
)";

}  // namespace

HtmlPage::HtmlPage(Descriptor directory, std::string name, bool isRehearsal)
    : directory_(std::move(directory)),
      name_(std::move(name)),
      file_(directory_.get(), Survives::PowerLoss) {
    Append(kBeforeTitle);
    Append(isRehearsal ? "rehearsal of a run" : "report of a run");
    Append(kAfterTitle);
}

Status HtmlPage::Publish() {
    Append("</body>\n</html>\n");
    Status published = file_.PublishAs(name_);
    return published ? published : FailOf(published.error(), ReadableBytes(name_));
}

}  // namespace platform
