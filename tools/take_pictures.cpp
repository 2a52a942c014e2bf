// Runs the program on a sample device without a display and takes pictures at twice the handheld's
// size: of every page, of every menu and of the boxes behind "Apply".
//
//     take_pictures FOLDER

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/win_main.h"
#include "platform/device_directory.h"
#include "platform/device_run.h"
#include "platform/directory_store.h"
#include "platform/display.h"
#include "platform/sample_device.h"

extern "C" platform::DisplayWindows* FennelbrightMakeWindows(const platform::DisplayNeeds* needs);

namespace {

constexpr double kScale = 2;
constexpr QSize kPictureSize{480, 640};

QWidget& Host() {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window->findChild<QWidget*>(QStringLiteral("captionOk")) != nullptr) {
            return *window;
        }
    }
    std::fputs("take_pictures: no window\n", stderr);
    std::exit(1);
}

void PressInMenu(Qt::Key key) {
    QWidget* const popup = QApplication::activePopupWidget();
    QTest::keyClick(popup != nullptr ? popup : &Host(), key);
}

// The program's user, who takes a step whenever the program waits, and a picture of each box.
class Photographer {
  public:
    explicit Photographer(QString folder) : folder_(std::move(folder)) {
        for (const char* const page : {"clean-temp-files", "pocket-ie", "registry",
                                       "system-folders", "shortcuts", "performance"}) {
            steps_.emplace_back([this, page] { SaveScreen(page); });
            steps_.emplace_back([] { QTest::keyClick(&Host(), Qt::Key_Tab, Qt::ControlModifier); });
        }
        steps_.emplace_back([] { PressInMenu(Qt::Key_F10); });
        for (const char* const menu : {"menu-fennelbright", "menu-apply", "menu-power"}) {
            steps_.emplace_back([this, menu] { SaveScreen(menu); });
            steps_.emplace_back([] { PressInMenu(Qt::Key_Right); });
        }
        steps_.emplace_back([this] { SaveScreen("menu-help"); });
        // Back to "Apply", and there to "Defer Restart".
        for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Left, Qt::Key_Up, Qt::Key_Return}) {
            steps_.emplace_back([key] { PressInMenu(key); });
        }
        steps_.emplace_back([] { Host().close(); });
        QObject::connect(&clock_, &QTimer::timeout, &clock_, [this] { Step(); });
        clock_.start(50);
    }

    // Whether every picture was taken, in its size.
    bool complete() const { return complete_ && next_ == steps_.size() && boxes_ > 0; }

  private:
    void Step() {
        if (auto* const box = dynamic_cast<QDialog*>(QApplication::activeModalWidget())) {
            Save(box->grab(), "box-" + box->windowTitle().toLower().replace(' ', '-'));
            ++boxes_;
            box->findChild<QAbstractButton*>()->click();
        } else if (next_ < steps_.size()) {
            steps_[next_++]();
        }
    }

    // The screen, with the menu that is open on it.
    void SaveScreen(const QString& name) {
        QPixmap screen = Host().grab();
        complete_ = complete_ && screen.size() == kPictureSize;
        if (QWidget* const menu = QApplication::activePopupWidget()) {
            QPainter(&screen).drawPixmap(Host().mapFromGlobal(menu->pos()), menu->grab());
        }
        Save(screen, name);
    }

    void Save(const QPixmap& picture, const QString& name) {
        complete_ = picture.save(folder_ + '/' + name + ".png") && complete_;
    }

    QString folder_;
    QTimer clock_;
    std::vector<std::function<void()>> steps_;
    std::size_t next_ = 0;
    int boxes_ = 0;
    bool complete_ = true;
};

}  // namespace

int main(int count, char** words) {
    if (count != 2) {
        std::fputs("Usage: take_pictures FOLDER\n", stderr);
        return 64;
    }
    const QTemporaryDir scratch;
    platform::CommandLine sample;
    sample.device = scratch.path().toStdString() + "/device";
    sample.modulePath = platform::kDefaultModulePath;
    if (platform::MakeSample(sample) != 0) {
        return 73;
    }
    auto device = platform::OpenDeviceDirectory(sample.device.c_str()).value();
    platform::DirectoryStore store(std::move(device.files), sample.modulePath,
                                   platform::Registry::Open(device.directory.get()).value());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const platform::DisplayNeeds needs = platform::NeedsFor("A device", kScale);
    const std::unique_ptr<platform::DisplayWindows> windows(FennelbrightMakeWindows(&needs));
    const platform::StoreInUse storeInUse(store);
    const platform::WindowsInUse windowsInUse(*windows);
    const Photographer photographer(QString::fromUtf8(words[1]));
    std::u16string line;
    WinMain(nullptr, nullptr, line.data(), 0);
    if (!photographer.complete()) {
        std::fputs("take_pictures: not every picture could be taken\n", stderr);
        return 1;
    }
    return 0;
}
