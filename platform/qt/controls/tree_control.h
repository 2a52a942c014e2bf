#pragma once

#include <QIcon>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/qt/base/window.h"

class QTreeWidget;
class QTreeWidgetItem;

namespace platform::qt {

class TreeItem;

// Class "SysTreeView32". Of a row whose children are not known the program is asked when the row
// comes into view, in a pass of its own: until it is over nothing of the tree is painted.
class TreeControl : public Window {
  public:
    TreeControl(WindowContext& context, const CreateParams& params);
    ~TreeControl() override;

    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void CarryOut(const MSG& message) override;
    void PrepareToPaint() override;

  private:
    LRESULT Insert(LPARAM record);
    void Settle();
    LRESULT Expand(LPARAM item);
    LRESULT Get(LPARAM record);
    bool GetChildren(TreeItem& item, TVITEM& wanted);
    LRESULT Set(LPARAM record);
    LRESULT Next(WPARAM relation, LPARAM item) const;
    TreeItem* Find(HTREEITEM item) const;
    QTreeWidgetItem* ParentFor(HTREEITEM item) const;
    void ApplyRecord(TreeItem& item, const TVITEM& record);
    QIcon IconOf(const TreeItem& item);
    void QueueAsking();
    TreeItem* UnaskedInView();
    std::optional<int> Ask(TreeItem& item);
    bool AskInView();

    QTreeWidget* tree_;
    std::map<std::uintptr_t, TreeItem*> items_;  // the tree's own, or in `waiting_`
    // Items that are to be sorted, by their parents, until the tree is asked or shown: those that
    // come one by one are sorted all at once.
    std::map<QTreeWidgetItem*, std::vector<std::unique_ptr<TreeItem>>> waiting_;
    std::map<std::pair<int, int>, QIcon> icons_;  // by the image and the one while selected
    std::uintptr_t last_ = 0;
    unsigned pass_ = 0;  // of asking for what is in view
    bool askingQueued_ = false;
};

// The system's small icons, by their index in the image list.
inline constexpr int kFolderIcon = 0;
inline constexpr int kDeviceIcon = 1;

}  // namespace platform::qt
