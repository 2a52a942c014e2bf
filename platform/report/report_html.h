#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "platform/io/buffered_new_file.h"
#include "platform/io/descriptor.h"
#include "platform/report/report_writer.h"

namespace platform {

// The report as a page for a browser: one file, which loads nothing and needs no scripts. It is
// there when the run is over, in place of nothing or of a regular file.
class ReportHtml : public ReportWriter {
  public:
    // `directory` is open; `name` is the page's name in it. Until the run is over, lists of what
    // was done grow in files without a name there, not in memory.
    ReportHtml(Descriptor directory, std::string name);

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

    List& ListOf(int step);
    static void AddItem(List& list, const ReportEvent& event, const std::string& prefix);
    void AddFacts(const ReportEnd& end);
    void AddTotals(const ReportTotals& totals);
    void AddBars();
    void AddLists();
    void AddList(const std::string& opening, const std::string& summary, List& list);

    Descriptor directory_;
    std::string name_;
    ReportRun run_;
    BufferedNewFile page_;
    std::map<int, List> lists_;  // of each step that did something, or could not
    List notDone_;               // of all of them
};

}  // namespace platform
