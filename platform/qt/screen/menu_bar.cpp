#include "platform/qt/screen/menu_bar.h"

#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QShowEvent>
#include <algorithm>

#include "platform/qt/base/message_queue.h"

namespace platform::qt {

namespace {

class UpwardMenu : public QMenu {
  public:
    UpwardMenu(const QString& title, QMenuBar& bar) : QMenu(title, &bar), bar_(bar) {}

  protected:
    void showEvent(QShowEvent* event) override {
        const QRect display = screen()->geometry();
        const int above = bar_.mapToGlobal(QPoint(0, 0)).y() - height();
        const int lowest = std::max(display.top(), display.bottom() + 1 - height());
        move(x(), std::clamp(above, display.top(), lowest));
        QMenu::showEvent(event);
    }

    // The key that leads to the menus leads back.
    void keyPressEvent(QKeyEvent* event) override {
        QMenu::keyPressEvent(event);
        if (event->key() == Qt::Key_F10) {
            close();
            bar_.setActiveAction(nullptr);
        }
    }

  private:
    QMenuBar& bar_;
};

}  // namespace

MenuBar::MenuBar(WindowContext& context, const CreateParams& params, const MenuResource& menu)
    : Window(context, params) {
    auto bar = std::make_unique<QMenuBar>(params.surface);
    bar->setNativeMenuBar(false);
    for (const MenuPopup& popup : menu.popups) {
        auto* const items = new UpwardMenu(TextOf(popup.text), *bar);  // the bar's own
        for (const MenuItem& item : popup.items) {
            items->addAction(TextOf(item.text))->setData(item.command);
        }
        bar->addMenu(items);
    }
    QObject::connect(bar.get(), &QMenuBar::triggered, bar.get(), [this](const QAction* action) {
        this->context().queue.Post(this->parent(), WM_COMMAND, action->data().toUInt(), 0);
    });
    Adopt(std::move(bar), params);
}

}  // namespace platform::qt
