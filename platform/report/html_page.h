#pragma once

#include <string>

#include "platform/io/buffered_new_file.h"
#include "platform/io/descriptor.h"

namespace platform {

// A page for a browser with the reports of one run or of several, one below the other. It loads
// nothing, needs no scripts, and is there when it is whole, in place of nothing or of a regular
// file.
class HtmlPage {
  public:
    // `directory` is open; `name` is the page's name in it, and its title says whether it
    // is about a rehearsal.
    HtmlPage(Descriptor directory, std::string name, bool isRehearsal);

    int directory() const { return directory_.get(); }
    void Append(std::string_view html) { file_.Append(html); }
    void AppendContentOf(BufferedNewFile& other) { file_.AppendContentOf(other); }

    // A mark for the places on the page that belong to one of several runs.
    void BeginRun(int number) { mark_ = "run" + std::to_string(number) + "-"; }
    const std::string& mark() const { return mark_; }

    // Has what was appended written, so that the page can be continued by another process that has
    // the same file open.
    Status Flush() { return file_.Flush(); }

    // Ends the page and gives it its name; once at most.
    Status Publish();

  private:
    Descriptor directory_;
    std::string name_;
    std::string mark_;
    BufferedNewFile file_;
};

}  // namespace platform
