#include "platform/qt/controls/combo_box_control.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QKeyEvent>
#include <QWheelEvent>
#include <functional>

namespace platform::qt {

namespace {

constexpr int kFieldHeight = 20;

class ComboBox : public QComboBox {
  public:
    ComboBox(QWidget* parent, std::function<void(WORD code)> notify)
        : QComboBox(parent), notify_(std::move(notify)) {}

    void showPopup() override {
        notify_(CBN_DROPDOWN);
        QComboBox::showPopup();
    }
    void hidePopup() override {
        const bool shown = view()->isVisible();
        QComboBox::hidePopup();
        if (shown) {
            notify_(CBN_CLOSEUP);
        }
    }

  protected:
    // The page is what the wheel scrolls.
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }

    // Ctrl+Tab is no character to search an entry by.
    void keyPressEvent(QKeyEvent* event) override {
        event->key() == Qt::Key_Tab ? event->ignore() : QComboBox::keyPressEvent(event);
    }

  private:
    std::function<void(WORD code)> notify_;
};

}  // namespace

ComboBoxControl::ComboBoxControl(WindowContext& context, const CreateParams& params)
    : Window(context, params) {
    auto box =
        std::make_unique<ComboBox>(params.surface, [this](WORD code) { QueueCommand(code); });
    box_ = box.get();
    QObject::connect(box_, &QComboBox::activated, box_, [this] {
        QueueCommand(CBN_SELENDOK);
        QueueCommand(CBN_SELCHANGE);
    });
    QObject::connect(box_, &QComboBox::currentTextChanged, box_,
                     [this, before = QString()](const QString& text) mutable {
                         QAccessibleTextUpdateEvent event(box_, 0, before, text);
                         QAccessible::updateAccessibility(&event);
                         before = text;
                     });
    Adopt(std::move(box), params);
}

LRESULT ComboBoxControl::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case CB_ADDSTRING: {
            // The toolkit selects the first entry of an empty box by itself.
            const int selected = box_->currentIndex();
            box_->addItem(TextOf(lParam));
            box_->setCurrentIndex(selected);
            return box_->count() - 1;
        }
        case CB_GETCURSEL:
            return box_->currentIndex();
        case CB_SETCURSEL:
            return Select(static_cast<LRESULT>(wParam));
        case WM_SETTEXT:
            return CB_ERR;
        default:
            return Window::HandleMessage(message, wParam, lParam);
    }
}

QString ComboBoxControl::Text() const {
    return box_->currentText();
}

void ComboBoxControl::FocusChanged(bool gained, Qt::FocusReason reason) {
    Window::FocusChanged(gained, reason);
    QueueCommand(gained ? CBN_SETFOCUS : CBN_KILLFOCUS);
}

void ComboBoxControl::Place(const QRect& place) {
    Window::Place(QRect(place.topLeft(), QSize(place.width(), kFieldHeight)));
}

LRESULT ComboBoxControl::Select(LRESULT index) {
    if (index < -1 || index >= box_->count()) {
        return CB_ERR;
    }
    box_->setCurrentIndex(static_cast<int>(index));
    return index;
}

}  // namespace platform::qt
