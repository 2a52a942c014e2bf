#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "platform/io/buffered_new_file.h"
#include "platform/io/descriptor.h"
#include "platform/report/html_page.h"
#include "platform/report/report_writer.h"

namespace platform {

// The report on a page for a browser, which is written when the run is over. Until then, lists of
// what was done grow in files without a name in the page's directory, not in memory.
class ReportHtml : public ReportWriter {
  public:
    // On a page of its own, as that of HtmlPage, which is there in the end.
    ReportHtml(Descriptor directory, std::string name, bool isRehearsal = false);

    // Below what `page` has; that stays the caller's, who publishes it.
    explicit ReportHtml(HtmlPage& page);

    void Begin(const ReportRun& run) override { run_ = run; }
    void Write(const ReportEvent& event) override;
    Status Finish(const ReportEnd& end) override;

  private:
    // The entries of a page's list.
    struct List {
        explicit List(int directory) : items(directory, Survives::Kill) {}

        BufferedNewFile items;  // elements <li>
        std::uint64_t entries = 0;
        ReportTotals totals;
    };

    std::string StepId(int step) const;
    List& ListOf(int step);
    static void AddItem(List& list, const ReportEvent& event, const std::string& prefix);
    void AddFacts(const ReportEnd& end);
    void AddTotals(const ReportTotals& totals);
    void AddBars();
    void AddLists();
    void AddList(const std::string& opening, const std::string& summary, List& list);

    std::unique_ptr<HtmlPage> own_;  // null where the page is another's
    HtmlPage& page_;
    ReportRun run_;
    std::map<int, List> lists_;  // of each step that did something, or could not
    List notDone_;               // of all of them
};

// The page of several runs.
class SumHtml : public SumWriter {
  public:
    explicit SumHtml(HtmlPage& page) : page_(page) {}  // stays the caller's

    void BeginDevice(const std::string& device) override;
    void NoteWithoutTotals(const std::string& device, int exitCode) override;
    Status Finish(const ReportSum& sum) override;

  private:
    HtmlPage& page_;
    int runs_ = 0;
};

}  // namespace platform
