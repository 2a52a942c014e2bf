// Runs the program on a device without a display and takes a picture of every page, at twice the
// handheld's size: take_pictures DEVICE FOLDER

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/win_main.h"
#include "platform/device_directory.h"
#include "platform/directory_store.h"
#include "platform/display.h"

extern "C" platform::DisplayWindows* FennelbrightMakeWindows(const platform::DisplayNeeds* needs);

namespace {

QWidget& Host() {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window->findChild<QWidget*>(QStringLiteral("captionOk")) != nullptr) {
            return *window;
        }
    }
    std::fputs("take_pictures: no window\n", stderr);
    std::exit(1);
}

class Photographer {
  public:
    explicit Photographer(QString folder) : folder_(std::move(folder)) {
        for (const char* const page : {"clean-temp-files", "pocket-ie", "registry",
                                       "system-folders", "shortcuts", "performance"}) {
            steps_.emplace_back([this, page] { Save(Host(), page); });
            steps_.emplace_back([] { QTest::keyClick(&Host(), Qt::Key_Tab, Qt::ControlModifier); });
        }
        steps_.emplace_back([] { QTest::keyClick(&Host(), Qt::Key_F10); });
        steps_.emplace_back([this] { SaveMenu(); });
        steps_.emplace_back([] {
            QTest::mouseClick(Host().findChild<QWidget*>(QStringLiteral("captionOk")),
                              Qt::LeftButton);
        });
        QObject::connect(&clock_, &QTimer::timeout, &clock_, [this] { Step(); });
        clock_.start(50);
    }

  private:
    void Step() {
        if (next_ < steps_.size()) {
            steps_[next_++]();
        }
    }

    void Save(QWidget& window, const char* name) const {
        window.grab().save(folder_ + QLatin1Char('/') + QLatin1String(name) +
                           QStringLiteral(".png"));
    }

    void SaveMenu() const {
        if (QWidget* const menu = QApplication::activePopupWidget()) {
            Save(*menu, "menu");
            menu->close();
        }
    }

    QString folder_;
    QTimer clock_;
    std::vector<std::function<void()>> steps_;
    std::size_t next_ = 0;
};

}  // namespace

int main(int count, char** words) {
    if (count != 3) {
        std::fputs("Usage: take_pictures DEVICE FOLDER\n", stderr);
        return 64;
    }
    platform::DeviceDirectory device;
    std::string reason = platform::OpenDeviceDirectory(words[1], device);
    if (!reason.empty()) {
        std::fprintf(stderr, "take_pictures: %s\n", reason.c_str());
        return 66;
    }
    auto registry = platform::Registry::Open(device.directory.get(), reason);
    platform::DirectoryStore store(std::move(device.files),
                                   u"\\Program Files\\Fennelbright\\Fennelbright.exe",
                                   std::move(registry));
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const platform::DisplayNeeds needs = platform::NeedsFor(words[1], 2);
    const std::unique_ptr<platform::DisplayWindows> windows(FennelbrightMakeWindows(&needs));
    const platform::StoreInUse storeInUse(store);
    const platform::WindowsInUse windowsInUse(*windows);
    const Photographer photographer(QString::fromUtf8(words[2]));
    std::u16string line;
    return WinMain(nullptr, nullptr, line.data(), 0);
}
