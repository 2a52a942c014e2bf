#include "platform/qt/controls/accessible_controls.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QComboBox>
#include <algorithm>
#include <map>

#include "platform/qt/controls/tab_row_widget.h"

namespace platform::qt {

namespace {

// A combo box: its label is the name, the entry that is chosen its text.
class AccessibleComboBox : public QAccessibleWidget, public QAccessibleTextInterface {
  public:
    explicit AccessibleComboBox(QComboBox& box)
        : QAccessibleWidget(&box, QAccessible::ComboBox), box_(box) {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? box_.currentText() : QAccessibleWidget::text(kind);
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this)
                                                  : QAccessibleWidget::interface_cast(type);
    }
    int childCount() const override { return 1; }
    QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(box_.view()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return child->object() == box_.view() ? 0 : -1;
    }
    QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }

    QStringList actionNames() const override { return {showMenuAction()}; }
    void doAction(const QString& action) override {
        if (action == showMenuAction()) {
            box_.view()->isVisible() ? box_.hidePopup() : box_.showPopup();
        }
    }

    QString text(int start, int end) const override {
        return box_.currentText().mid(start, end - start);
    }
    int characterCount() const override { return static_cast<int>(box_.currentText().size()); }
    QRect characterRect(int /*offset*/) const override { return rect(); }
    int offsetAtPoint(const QPoint& /*point*/) const override { return -1; }
    QString attributes(int /*offset*/, int* start, int* end) const override {
        *start = 0;
        *end = characterCount();
        return {};
    }
    // Nothing of it can be selected, and it has no caret.
    void selection(int /*index*/, int* start, int* end) const override { *start = *end = 0; }
    int selectionCount() const override { return 0; }
    void addSelection(int /*start*/, int /*end*/) override {}
    void removeSelection(int /*index*/) override {}
    void setSelection(int /*index*/, int /*start*/, int /*end*/) override {}
    int cursorPosition() const override { return 0; }
    void setCursorPosition(int /*position*/) override {}
    void scrollToSubstring(int /*start*/, int /*end*/) override {}

  private:
    QComboBox& box_;
};

// One of the tabs, which is pressed as by the stylus.
class AccessibleTab : public QAccessibleInterface, public QAccessibleActionInterface {
  public:
    AccessibleTab(QTabBar& bar, TabRowWidget& row, int index)
        : bar_(bar), row_(row), index_(index) {}

    bool isValid() const override { return index_ < bar_.count(); }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(&bar_);
    }
    QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? bar_.tabText(index_) : QString();
    }
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}
    QRect rect() const override {
        return bar_.tabRect(index_).translated(bar_.mapToGlobal(QPoint(0, 0)));
    }
    QAccessible::Role role() const override { return QAccessible::PageTab; }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.selectable = true;
        state.selected = index_ == bar_.currentIndex();
        state.offscreen = !bar_.visibleRegion().contains(bar_.tabRect(index_).center());
        state.invisible = !bar_.isVisible();
        state.disabled = !bar_.isEnabled();
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override {
        if (action == pressAction()) {
            row_.Tap(index_);
        }
    }
    QStringList keyBindingsForAction(const QString& /*action*/) const override { return {}; }

  private:
    QTabBar& bar_;
    TabRowWidget& row_;
    int index_;
};

class AccessibleTabs : public QAccessibleWidget {
  public:
    AccessibleTabs(QTabBar& bar, TabRowWidget& row)
        : QAccessibleWidget(&bar, QAccessible::PageTabList), bar_(bar), row_(row) {}
    ~AccessibleTabs() override {
        for (const auto& [index, id] : tabs_) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }

    int childCount() const override { return bar_.count(); }
    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= bar_.count()) {
            return nullptr;
        }
        const auto [place, isNew] = tabs_.try_emplace(index, 0);
        if (isNew) {
            // NOLINTBEGIN(clang-analyzer-cplusplus.NewDeleteLeaks): it becomes the toolkit's own
            place->second =
                QAccessible::registerAccessibleInterface(new AccessibleTab(bar_, row_, index));
            // NOLINTEND(clang-analyzer-cplusplus.NewDeleteLeaks)
        }
        return QAccessible::accessibleInterface(place->second);
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        return child(bar_.tabAt(bar_.mapFromGlobal(QPoint(x, y))));
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto found = std::ranges::find_if(tabs_, [child](const auto& tab) {
            return QAccessible::accessibleInterface(tab.second) == child;
        });
        return found == tabs_.end() ? -1 : found->first;
    }

  private:
    QTabBar& bar_;
    TabRowWidget& row_;
    mutable std::map<int, QAccessible::Id> tabs_;  // by their indices
};

// Null for an object that the toolkit itself describes well.
QAccessibleInterface* Describe(const QString& className, QObject* object) {
    if (auto* const box = qobject_cast<QComboBox*>(object);
        className == u"QComboBox" && box != nullptr && !box->isEditable()) {
        return new AccessibleComboBox(*box);
    }
    if (auto* const bar = qobject_cast<QTabBar*>(object);
        className == u"QTabBar" && bar != nullptr && bar->parentWidget() != nullptr) {
        auto* const row = dynamic_cast<TabRowWidget*>(bar->parentWidget()->parentWidget());
        return row == nullptr ? nullptr : new AccessibleTabs(*bar, *row);
    }
    auto* const widget = qobject_cast<QWidget*>(object);
    const bool isWindow = widget != nullptr && widget->windowType() == Qt::Window;
    return className == u"QWidget" && isWindow ? new QAccessibleWidget(widget, QAccessible::Window)
                                               : nullptr;
}

}  // namespace

void DescribeControls() {
    QAccessible::installFactory(Describe);
}

}  // namespace platform::qt
