#pragma once

#include <vector>

#include "core/wide_text.h"

// The result of a look-up; of several for the same thing, the one listed last here counts. A
// look-up that failed says nothing about the entry.
enum class LookupResult { NotThere, Failed, Found };

// Whether the text is nothing but backslashes and blanks.
bool IsRootOrEmpty(WideView path);

// Looks up entries, each path once, and notes each look-up that failed.
class EntryLookup {
  public:
    // Whether `path` names an entry, or the pattern `path` matches one. A pattern is looked up
    // unchanged; a name also without the blanks, backslashes and full stops at its end, which the
    // handheld ignores. The text must outlive the object.
    bool Find(WideView path);

    // The result of all look-ups together.
    LookupResult result() const { return result_; }

  private:
    bool FindAsItStands(WideView path);

    PathText path_;
    std::vector<WideView> tried_;
    LookupResult result_ = LookupResult::NotThere;
};
