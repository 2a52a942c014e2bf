#pragma once

#include <vector>

#include "core/wide_text.h"

// What looking for an entry came to; of several looks for the same thing, the last of these counts.
// A look that failed says nothing about the entry.
enum class LookupResult { NotThere, Failed, Found };

// Whether the text is nothing but backslashes and blanks.
bool IsRootOrEmpty(WideView path);

// Looks for entries, for none twice, and notes each look that failed.
class EntryLookup {
  public:
    // Whether `path` names an entry, or the pattern `path` matches one. A pattern is looked for as
    // it stands; a name also without the blanks, backslashes and full stops at its end, which do
    // not count on the handheld. The text must outlive the object.
    bool Find(WideView path);

    // What all of them came to.
    LookupResult result() const { return result_; }

  private:
    bool FindAsItStands(WideView path);

    PathText path_;
    std::vector<WideView> tried_;
    LookupResult result_ = LookupResult::NotThere;
};
