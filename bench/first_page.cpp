// Runs the program on a device until its first page is painted, and ends the process; or changes
// tabs then and prints the mean time of one change in microseconds:
//
//     first_page DEVICE
//     first_page DEVICE TAB_CHANGES

#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "core/win_main.h"
#include "platform/device/assembled_device.h"
#include "platform/device/device_directory.h"
#include "platform/display/window_module_loader.h"

extern "C" platform::DisplayWindowSystem* FennelbrightMakeWindows(
    const platform::WindowModuleParams* params);

namespace {

// Watches the paintings of the whole process. A painting counts as done in the next turn of the
// toolkit's loop.
class PaintWatcher : public QObject {
  public:
    explicit PaintWatcher(int tabChanges) : left_(tabChanges) {}

    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Paint && object->isWidgetType() && !pending_) {
            pending_ = true;
            QTimer::singleShot(0, this, [this] { Painted(); });
        }
        return false;
    }

  private:
    // The last check box of a page is painted with the rest of the page.
    static QWidget* Host() {
        for (QWidget* const window : QApplication::topLevelWidgets()) {
            if (window->isVisible() &&
                window->findChild<QWidget*>(QStringLiteral("captionOk")) != nullptr) {
                return window;
            }
        }
        return nullptr;
    }

    void Painted() {
        pending_ = false;
        QWidget* const host = Host();
        if (host == nullptr) {
            return;
        }
        if (changes_ == 0) {
            clock_.start();
        }
        if (changes_ == left_) {
            if (left_ > 0) {
                std::printf("%lld\n", static_cast<long long>(clock_.nsecsElapsed() / 1000 / left_));
                std::fflush(stdout);
            }
            std::_Exit(0);
        }
        ++changes_;
        QTest::keyClick(host, Qt::Key_Tab, Qt::ControlModifier);
    }

    int left_;
    int changes_ = 0;
    bool pending_ = false;
    QElapsedTimer clock_;
};

}  // namespace

int main(int count, char** words) {
    if (count != 2 && count != 3) {
        std::fputs("Usage: first_page DEVICE [TAB_CHANGES]\n", stderr);
        return 64;
    }
    auto device = platform::OpenDeviceDirectory(words[1]).value();
    platform::AssembledDevice store(std::move(device.files),
                                    u"\\Program Files\\Fennelbright\\Fennelbright.exe",
                                    platform::Registry::Open(device.directory.get()).value());
    const platform::StoreInUse storeInUse(store);
    const platform::WindowModuleParams params = platform::WindowParamsFor(words[1], 1);
    const std::unique_ptr<platform::DisplayWindowSystem> windows(FennelbrightMakeWindows(&params));
    const platform::WindowsInUse windowsInUse(*windows);
    PaintWatcher watcher(count == 3 ? std::atoi(words[2]) : 0);
    qApp->installEventFilter(&watcher);
    std::u16string line;
    return WinMain(nullptr, nullptr, line.data(), 0);
}
