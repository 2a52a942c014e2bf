#include "platform/qt/controls/tree_control.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QStyle>
#include <QTreeWidget>
#include <algorithm>

#include "platform/qt/base/escaped_display_text.h"
#include "platform/qt/base/handheld_style.h"
#include "platform/qt/base/message_queue.h"
#include "platform/qt/base/sort_order.h"
#include "platform/qt/base/window_table.h"

namespace platform::qt {

class TreeItem : public QTreeWidgetItem {
  public:
    explicit TreeItem(std::uintptr_t number) : number_(number) {}

    HTREEITEM handle() const {
        return reinterpret_cast<HTREEITEM>(number_);  // NOLINT(performance-no-int-to-ptr)
    }
    const SortText& text() const { return text_; }
    void SetText(const QString& text) {
        text_ = SortText(text);
        emitDataChanged();
    }
    void SetIcon(const QIcon& icon) {
        icon_ = icon;
        emitDataChanged();
    }

    // Most items are never on view.
    QVariant data(int column, int role) const override {
        switch (role) {
            case Qt::DisplayRole:
                return ShownText(text_.text());
            case Qt::DecorationRole:
                return icon_;
            default:
                return QTreeWidgetItem::data(column, role);
        }
    }

    int children = 0;
    int image = 0;
    int selectedImage = 0;
    LPARAM parameter = 0;
    unsigned asked = 0;  // the last pass in which it was, whether or not its answer was stored

  private:
    std::uintptr_t number_;
    SortText text_{QString()};
    QIcon icon_;
};

namespace {

// Among children that are sorted.
int PlaceFor(const QTreeWidgetItem& parent, const SortText& text) {
    int low = 0;
    int high = parent.childCount();
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (static_cast<const TreeItem*>(parent.child(middle))->text() < text) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

int PlaceAfter(const QTreeWidgetItem& parent, const QTreeWidgetItem* sibling) {
    const int place =
        sibling == nullptr ? -1 : parent.indexOfChild(const_cast<QTreeWidgetItem*>(sibling));
    return place < 0 ? parent.childCount() : place + 1;
}

QPixmap PixmapFor(const QStyle& style, int image) {
    const int size = style.pixelMetric(QStyle::PM_SmallIconSize);
    const QIcon icon = image == kDeviceIcon ? DeviceIcon() : style.standardIcon(QStyle::SP_DirIcon);
    return icon.pixmap(size, size);
}

void ShowWhetherItOpens(QTreeWidgetItem& item, int children) {
    item.setChildIndicatorPolicy(children > 0 ? QTreeWidgetItem::ShowIndicator
                                              : QTreeWidgetItem::DontShowIndicator);
}

template <typename Record>
Record* RecordAt(LPARAM argument) {
    return reinterpret_cast<Record*>(argument);  // NOLINT(performance-no-int-to-ptr)
}

HTREEITEM ItemAt(LPARAM argument) {
    return reinterpret_cast<HTREEITEM>(argument);  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace

TreeControl::TreeControl(WindowContext& context, const CreateParams& params)
    : Window(context, params) {
    auto tree = std::make_unique<QTreeWidget>(params.surface);
    tree_ = tree.get();
    tree_->setAccessibleName(QStringLiteral("Folders"));
    tree_->setUniformRowHeights(true);
    tree_->setHeaderHidden(true);
    tree_->header()->setStretchLastSection(false);
    tree_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    tree_->setRootIsDecorated(false);
    tree_->setIndentation(15);
    tree_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tree_->setTabKeyNavigation(false);
    tree_->verticalScrollBar()->setContextMenuPolicy(Qt::PreventContextMenu);
    tree_->horizontalScrollBar()->setContextMenuPolicy(Qt::PreventContextMenu);
    QObject::connect(tree_, &QTreeWidget::itemExpanded, tree_, [this] { QueueAsking(); });
    QObject::connect(tree_, &QTreeWidget::itemCollapsed, tree_, [this] { QueueAsking(); });
    QObject::connect(tree_->verticalScrollBar(), &QScrollBar::valueChanged, tree_,
                     [this] { QueueAsking(); });
    Adopt(std::move(tree), params);
}

TreeControl::~TreeControl() = default;

LRESULT TreeControl::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != TVM_INSERTITEM) {
        Settle();
    }
    switch (message) {
        case TVM_INSERTITEM:
            return Insert(lParam);
        case TVM_EXPAND:
            return wParam == TVE_EXPAND ? Expand(lParam) : 0;
        case TVM_GETITEM:
            return Get(lParam);
        case TVM_SETITEM:
            return Set(lParam);
        case TVM_GETNEXTITEM:
            return Next(wParam, lParam);
        default:
            return Window::HandleMessage(message, wParam, lParam);
    }
}

void TreeControl::CarryOut(const MSG& message) {
    if (message.message == kAskForRows) {
        PrepareToPaint();
    }
}

void TreeControl::PrepareToPaint() {
    if (AskInView()) {
        askingQueued_ = false;
        tree_->viewport()->setUpdatesEnabled(true);
    }
}

LRESULT TreeControl::Insert(LPARAM record) {
    const auto* const insertion = RecordAt<const TVINSERTSTRUCT>(record);
    QTreeWidgetItem* const parent = insertion == nullptr ? nullptr : ParentFor(insertion->hParent);
    if (parent == nullptr) {
        return 0;
    }
    auto item = std::make_unique<TreeItem>(++last_);
    ApplyRecord(*item, insertion->item);
    TreeItem* const inserted = item.get();
    items_.emplace_hint(items_.end(), last_, inserted);
    if (insertion->hInsertAfter == TVI_SORT) {
        waiting_[parent].push_back(std::move(item));
    } else {
        Settle();
        const bool first = insertion->hInsertAfter == TVI_FIRST;
        parent->insertChild(first ? 0 : PlaceAfter(*parent, Find(insertion->hInsertAfter)),
                            item.release());
    }
    QueueAsking();
    return reinterpret_cast<LRESULT>(inserted->handle());
}

// Brings the items that wait to their places.
void TreeControl::Settle() {
    for (auto& [parent, items] : std::exchange(waiting_, {})) {
        std::ranges::stable_sort(
            items, [](const auto& one, const auto& other) { return one->text() < other->text(); });
        if (parent->childCount() == 0) {
            QList<QTreeWidgetItem*> children;
            for (auto& item : items) {
                children.push_back(item.release());
            }
            parent->addChildren(children);
        } else {
            for (auto& item : items) {
                const int place = PlaceFor(*parent, item->text());
                parent->insertChild(place, item.release());
            }
        }
    }
}

LRESULT TreeControl::Expand(LPARAM item) {
    TreeItem* const found = Find(ItemAt(item));
    if (found == nullptr) {
        return 0;
    }
    if (found->children == I_CHILDRENCALLBACK && !Ask(*found)) {
        return 0;
    }
    Settle();
    if (found->childCount() == 0) {
        return 0;
    }
    found->setExpanded(true);
    PrepareToPaint();
    return 1;
}

LRESULT TreeControl::Get(LPARAM record) {
    auto* const wanted = RecordAt<TVITEM>(record);
    TreeItem* const item = wanted == nullptr ? nullptr : Find(wanted->hItem);
    if (item == nullptr) {
        return FALSE;
    }
    if ((wanted->mask & TVIF_TEXT) != 0 && wanted->cchTextMax > 0) {
        CopyText(item->text().text(), static_cast<WPARAM>(wanted->cchTextMax),
                 reinterpret_cast<LPARAM>(wanted->pszText));
    }
    if ((wanted->mask & TVIF_IMAGE) != 0) {
        wanted->iImage = item->image;
    }
    if ((wanted->mask & TVIF_SELECTEDIMAGE) != 0) {
        wanted->iSelectedImage = item->selectedImage;
    }
    if ((wanted->mask & TVIF_PARAM) != 0) {
        wanted->lParam = item->parameter;
    }
    return (wanted->mask & TVIF_CHILDREN) == 0 || GetChildren(*item, *wanted);
}

bool TreeControl::GetChildren(TreeItem& item, TVITEM& wanted) {
    const std::optional<int> children =
        item.children == I_CHILDRENCALLBACK ? Ask(item) : item.children;
    wanted.cChildren = children.value_or(wanted.cChildren);
    return children.has_value();
}

LRESULT TreeControl::Set(LPARAM record) {
    const auto* const given = RecordAt<const TVITEM>(record);
    TreeItem* const item = given == nullptr ? nullptr : Find(given->hItem);
    if (item == nullptr) {
        return FALSE;
    }
    ApplyRecord(*item, *given);
    return TRUE;
}

LRESULT TreeControl::Next(WPARAM relation, LPARAM item) const {
    const QTreeWidgetItem* found = nullptr;
    if (relation == TVGN_CARET) {
        const QList<QTreeWidgetItem*> selected = tree_->selectedItems();
        found = selected.isEmpty() ? nullptr : selected.first();
    } else if (relation == TVGN_PARENT) {
        const TreeItem* const child = Find(ItemAt(item));
        found = child == nullptr ? nullptr : child->parent();
    }
    return found == nullptr
               ? 0
               : reinterpret_cast<LRESULT>(static_cast<const TreeItem*>(found)->handle());
}

TreeItem* TreeControl::Find(HTREEITEM item) const {
    const auto found = items_.find(reinterpret_cast<std::uintptr_t>(item));
    return found == items_.end() ? nullptr : found->second;
}

QTreeWidgetItem* TreeControl::ParentFor(HTREEITEM item) const {
    return item == nullptr || item == TVI_ROOT ? tree_->invisibleRootItem() : Find(item);
}

void TreeControl::ApplyRecord(TreeItem& item, const TVITEM& record) {
    if ((record.mask & TVIF_TEXT) != 0) {
        item.SetText(TextOf(reinterpret_cast<LPARAM>(record.pszText)));
    }
    if ((record.mask & TVIF_IMAGE) != 0) {
        item.image = record.iImage;
    }
    if ((record.mask & TVIF_SELECTEDIMAGE) != 0) {
        item.selectedImage = record.iSelectedImage;
    }
    if ((record.mask & (TVIF_IMAGE | TVIF_SELECTEDIMAGE)) != 0) {
        item.SetIcon(IconOf(item));
    }
    if ((record.mask & TVIF_PARAM) != 0) {
        item.parameter = record.lParam;
    }
    if ((record.mask & TVIF_CHILDREN) != 0) {
        item.children = record.cChildren;
        ShowWhetherItOpens(item, record.cChildren);
    }
}

// One for all items that have the same images.
QIcon TreeControl::IconOf(const TreeItem& item) {
    QIcon& icon = icons_[{item.image, item.selectedImage}];
    if (icon.isNull()) {
        icon = QIcon(PixmapFor(*tree_->style(), item.image));
        icon.addPixmap(PixmapFor(*tree_->style(), item.selectedImage), QIcon::Selected);
    }
    return icon;
}

// Rows may have come into view.
void TreeControl::QueueAsking() {
    if (!askingQueued_) {
        askingQueued_ = true;
        tree_->viewport()->setUpdatesEnabled(false);
        QueueToSelf(kAskForRows, 0, 0);
    }
}

TreeItem* TreeControl::UnaskedInView() {
    Settle();
    const int height = tree_->viewport()->height();
    for (QTreeWidgetItem* row = tree_->itemAt(0, 0);
         row != nullptr && tree_->visualItemRect(row).top() < height; row = tree_->itemBelow(row)) {
        auto* const item = static_cast<TreeItem*>(row);
        if (item->children == I_CHILDRENCALLBACK && item->asked != pass_) {
            return item;
        }
    }
    return nullptr;
}

// Asks the program for the number of an item's children. Nothing when the control has gone
// meanwhile.
std::optional<int> TreeControl::Ask(TreeItem& item) {
    const WindowTable& windows = context().windows;
    const HWND self = handle();
    item.asked = pass_;
    NMTVDISPINFO question = {};
    question.hdr = {self, static_cast<DWORD_PTR>(id()), TVN_GETDISPINFO};
    question.item.mask = TVIF_CHILDREN;
    question.item.hItem = item.handle();
    question.item.lParam = item.parameter;
    windows.Send(parent(), WM_NOTIFY, question.hdr.idFrom, reinterpret_cast<LPARAM>(&question));
    if (windows.Find(self) == nullptr) {
        return std::nullopt;
    }
    const int children =
        item.children == I_CHILDRENCALLBACK ? question.item.cChildren : item.children;
    ShowWhetherItOpens(item, children);
    return children;
}

// Asks for all rows in view, those too that the answers bring there. False when the control has
// gone meanwhile.
bool TreeControl::AskInView() {
    if (!tree_->isVisible()) {
        return true;
    }
    ++pass_;
    while (TreeItem* const item = UnaskedInView()) {
        if (!Ask(*item)) {
            return false;
        }
    }
    return true;
}

}  // namespace platform::qt
