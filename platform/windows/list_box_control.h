#pragma once

#include "platform/windows/window.h"

class QListWidget;

namespace platform::windows {

// Class "LISTBOX".
class ListBoxControl : public Window {
  public:
    ListBoxControl(Station& station, const Birth& birth);

    LRESULT Answer(UINT message, WPARAM wParam, LPARAM lParam) override;
    void FocusChanged(bool gained, Qt::FocusReason reason) override;

  private:
    LRESULT Add(const QString& text);
    LRESULT CopyEntry(WPARAM index, LPARAM buffer) const;
    LRESULT SelectedCount() const;
    LRESULT CopySelected(WPARAM room, LPARAM indices) const;
    LRESULT Select(bool selected, LPARAM index);
    void QueueNotice(WORD code);

    bool sorted_;
    bool multiple_;
    bool notifies_;
    QListWidget* list_;
};

}  // namespace platform::windows
