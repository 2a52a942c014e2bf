#pragma once

#include "platform/qt/base/list_box_model.h"
#include "platform/qt/base/window.h"

namespace platform::qt {

class ListView;

// Class "LISTBOX".
class ListBoxControl : public Window {
  public:
    ListBoxControl(WindowContext& context, const CreateParams& params);

    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void PrepareToPaint() override { model_->Settle(); }
    void FocusChanged(bool gained, Qt::FocusReason reason) override;

  private:
    const QString* TextAt(WPARAM index);
    LRESULT TextLength(WPARAM index);
    LRESULT CopyEntry(WPARAM index, LPARAM buffer);
    std::vector<int> SelectedRows();
    LRESULT CopySelected(WPARAM room, LPARAM indices);
    LRESULT Select(bool selected, LPARAM index);
    void QueueNotice(WORD code);

    bool multiple_;
    bool notifies_;
    std::unique_ptr<ListBoxModel> model_;
    ListView* list_;
};

}  // namespace platform::qt
