// Runs the program on a sample device without a display and takes pictures: of every page, of every
// menu, of the lists and the folder browser, and of what "Apply", "Power" and "Help" show. SCALE is
// the number of their pixels for a pixel of the handheld, 2 if none is given.
//
//     take_pictures FOLDER [SCALE]

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <cstdio>
#include <functional>
#include <initializer_list>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/win_main.h"
#include "platform/device/assembled_device.h"
#include "platform/device/device_directory.h"
#include "platform/display/window_module_loader.h"
#include "platform/host/make_sample_device.h"
#include "platform/qt/desktop/help_window.h"
#include "platform/sample/sample_files.h"
#include "platform/seam/forwarding_store.h"
#include "shell/help_page.h"

extern "C" platform::DisplayWindowSystem* FennelbrightMakeWindows(
    const platform::WindowModuleParams* params);

namespace {

constexpr int kUsualScale = 2;
constexpr QSize kScreenSize{240, 320};
constexpr int kDisplaySide = 400;

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

// A simulated user: takes a step whenever the program waits, and a picture of each box.
class Photographer {
  public:
    explicit Photographer(QString folder) : folder_(std::move(folder)) {
        steps_.emplace_back([] { Select("50047", 1); });
        steps_.emplace_back([] { Tap("50046"); });
        for (const char* const page : {"clean-temp-files", "pocket-ie", "registry",
                                       "system-folders", "shortcuts", "performance"}) {
            steps_.emplace_back([this, page] { SaveScreen(page); });
            steps_.emplace_back([] { QTest::keyClick(&Host(), Qt::Key_Tab, Qt::ControlModifier); });
        }
        AddLists();
        AddBrowser();
        steps_.emplace_back([] { PressInMenu(Qt::Key_F10); });
        for (const char* const menu : {"menu-fennelbright", "menu-apply", "menu-power"}) {
            steps_.emplace_back([this, menu] { SaveScreen(menu); });
            steps_.emplace_back([] { PressInMenu(Qt::Key_Right); });
        }
        steps_.emplace_back([this] { SaveScreen("menu-help"); });
        // Back to "Apply", and there to "Defer Restart".
        AddMenu({Qt::Key_Left, Qt::Key_Left, Qt::Key_Up, Qt::Key_Return});
        // "Hard Reset", "About" and "Off".
        AddMenu({Qt::Key_F10, Qt::Key_Right, Qt::Key_Right, Qt::Key_Up, Qt::Key_Return});
        AddMenu({Qt::Key_F10, Qt::Key_Left, Qt::Key_Up, Qt::Key_Return});
        steps_.emplace_back([this] { SaveScreen("about"); });
        steps_.emplace_back([] { Tap("captionOk"); });
        AddMenu({Qt::Key_F10, Qt::Key_Right, Qt::Key_Right, Qt::Key_Return});
        steps_.emplace_back([this] { SaveScreen("off"); });
        steps_.emplace_back([] { Tap("screenOff"); });
        steps_.emplace_back([this] { SaveHelp(); });
        steps_.emplace_back([] { Host().close(); });
        QObject::connect(&clock_, &QTimer::timeout, &clock_, [this] { Step(); });
        clock_.start(50);
    }

    // Whether every picture was taken, in its size.
    bool complete() const {
        return complete_ && searching_ && next_ == steps_.size() && !boxes_.empty();
    }

    // Called while the program is at work: takes a picture of the search indicator if it is up.
    void LookAtSearch() {
        for (const QLabel* const label : Host().findChildren<QLabel*>()) {
            if (label->text() == QStringLiteral("SEARCHING...") && label->isVisible()) {
                searching_ = true;
                SaveScreen("searching");
            }
        }
    }

  private:
    template <typename Widget = QWidget>
    static Widget* Named(const char* name) {
        return Host().findChild<Widget*>(QString::fromLatin1(name));
    }

    static void Tap(const char* name) { QTest::mouseClick(Named(name), Qt::LeftButton); }

    static void Select(const char* list, int row) {
        const auto* const view = Named<QListView>(list);
        view->selectionModel()->select(view->model()->index(row, 0), QItemSelectionModel::Select);
    }

    // The keyboard brings the second list into view, and most of the first.
    void AddLists() {
        for (const char* const tapped : {"50015", "50016", "50011", "50014"}) {
            steps_.emplace_back([tapped] { Tap(tapped); });
        }
        steps_.emplace_back([] {
            Select("50012", 1);
            Select("50020", 0);
            Named("50020")->setFocus(Qt::TabFocusReason);
        });
        steps_.emplace_back([this] { SaveScreen("search-lists"); });
    }

    void AddBrowser() {
        steps_.emplace_back([] { Tap("50003"); });
        for (const char* const folder : {"Storage Card", "Downloads"}) {
            steps_.emplace_back([folder] {
                auto& tree = *Host().findChild<QTreeWidget*>();
                auto* const item = tree.findItems(QString::fromLatin1(folder),
                                                  Qt::MatchExactly | Qt::MatchRecursive)[0];
                tree.setCurrentItem(item);
                item->setExpanded(true);
            });
        }
        steps_.emplace_back([this] { SaveScreen("browse"); });
        steps_.emplace_back([] { Tap("60002"); });
    }

    void AddMenu(std::initializer_list<Qt::Key> keys) {
        for (const Qt::Key key : keys) {
            steps_.emplace_back([key] { PressInMenu(key); });
        }
    }

    void SaveHelp() {
        platform::qt::HelpWindow help(
            platform::qt::PageText(
                QByteArrayView(kHelpPage.data(), static_cast<qsizetype>(kHelpPage.size()))),
            QStringLiteral("Main_Contents"));
        help.show();
        Save(help.grab(), "help");
    }

    // The second question is not answered with Yes: the device is still needed.
    void Step() {
        if (auto* const box = dynamic_cast<QDialog*>(QApplication::activeModalWidget())) {
            const QString name = "box-" + box->windowTitle().toLower().replace(' ', '-');
            const bool again = !boxes_.insert(name).second;
            Save(box->grab(), again ? name + "-again" : name);
            again ? box->reject() : box->findChild<QAbstractButton*>()->click();
        } else if (next_ < steps_.size()) {
            steps_[next_++]();
        }
    }

    // The screen, with the menu that is open on it.
    void SaveScreen(const QString& name) {
        QPixmap screen = Host().grab();
        complete_ = complete_ && screen.size() == kScreenSize * screen.devicePixelRatio();
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
    std::set<QString> boxes_;
    bool complete_ = true;
    bool searching_ = false;
};

// Calls a function before each search on the device.
class WatchedStore : public platform::ForwardingStore {
  public:
    WatchedStore(platform::DeviceStore& store, std::function<void()> beforeSearch)
        : ForwardingStore(store), beforeSearch_(std::move(beforeSearch)) {}

    HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) override {
        beforeSearch_();
        return ForwardingStore::FindFirstFileW(pattern, data);
    }

  private:
    std::function<void()> beforeSearch_;
};

// Describes a display that has room for the boxes and menus, in a file whose name is returned.
QByteArray DisplayFile(const QTemporaryDir& scratch, int scale) {
    QFile file(scratch.filePath(QStringLiteral("display.json")));
    if (file.open(QFile::WriteOnly)) {
        const QByteArray side = QByteArray::number(kDisplaySide * scale);
        file.write(R"({"screens": [{"name": "one", "x": 0, "y": 0, "width": )" + side +
                   R"(, "height": )" + side +
                   R"(, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    }
    return file.fileName().toUtf8();
}

}  // namespace

int main(int count, char** words) {
    const int scale = count == 3 ? QByteArray(words[2]).toInt() : kUsualScale;
    if (count < 2 || count > 3 || scale < 1) {
        std::fputs("Usage: take_pictures FOLDER [SCALE]\n", stderr);
        return 64;
    }
    const QTemporaryDir scratch;
    platform::CommandLine sample;
    sample.device = scratch.path().toStdString() + "/device";
    sample.modulePath = platform::kDefaultModulePath;
    if (platform::RunMakeSampleDevice(sample) != 0) {
        return 73;
    }
    auto device = platform::OpenDeviceDirectory(sample.device.c_str()).value();
    platform::AssembledDevice store(std::move(device.files), sample.modulePath,
                                    platform::Registry::Open(device.directory.get()).value());
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + DisplayFile(scratch, scale));
    const platform::WindowModuleParams params = platform::WindowParamsFor("A device", scale);
    const std::unique_ptr<platform::DisplayWindowSystem> windows(FennelbrightMakeWindows(&params));
    Photographer photographer(QString::fromUtf8(words[1]));
    WatchedStore watched(store, [&photographer] { photographer.LookAtSearch(); });
    const platform::StoreInUse storeInUse(watched);
    const platform::WindowsInUse windowsInUse(*windows);
    std::u16string line;
    WinMain(nullptr, nullptr, line.data(), 0);
    if (!photographer.complete()) {
        std::fputs("take_pictures: not every picture could be taken\n", stderr);
        return 1;
    }
    return 0;
}
