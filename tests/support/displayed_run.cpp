#include "tests/support/displayed_run.h"

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include "core/win_main.h"
#include "platform/device/assembled_device.h"
#include "platform/seam/forwarding_store.h"
#include "platform/text/readable_text.h"
#include "tests/support/display_fixture.h"

namespace {

class User {
  public:
    User(Steps steps, std::deque<int> answers)
        : steps_(std::move(steps)), answers_(std::move(answers)) {
        QObject::connect(&clock_, &QTimer::timeout, &clock_, [this] { Act(); });
        clock_.start(1);  // with 0 it may strike twice before the program looks at what was done
    }

    const Entries& boxes() const { return boxes_; }

  private:
    void Act() {
        if (auto* const box = dynamic_cast<QDialog*>(QApplication::activeModalWidget())) {
            Answer(*box);
        } else if (next_ < steps_.size()) {
            steps_[next_++]();
        } else {
            Click(*Host().findChild<QWidget*>(QStringLiteral("captionOk")));
        }
    }

    void Answer(QDialog& box) {
        const auto* const text = box.findChild<QLabel*>(QStringLiteral("boxText"));
        boxes_.push_back(('[' + box.windowTitle() + "] " + text->text()).toStdString());
        if (answers_.empty()) {
            return box.reject();
        }
        auto* const button = box.findChild<QPushButton*>("answer" + QString::number(answers_[0]));
        answers_.pop_front();
        Click(*button);
    }

    Steps steps_;
    std::deque<int> answers_;
    QTimer clock_;
    std::size_t next_ = 0;
    Entries boxes_;
};

// Keeps what would end the process or start another one.
class NotingStore : public platform::ForwardingStore {
  public:
    NotingStore(platform::DeviceStore& store, Entries& calls)
        : ForwardingStore(store), calls_(calls) {}

    void SetCleanRebootFlag() override { calls_.emplace_back("erase"); }
    BOOL KernelIoControl(DWORD code, void*, DWORD, void*, DWORD, DWORD*) override {
        calls_.emplace_back(code == IOCTL_HAL_REBOOT ? "restart" : "control");
        return 0;
    }
    BOOL CreateProcessW(const WCHAR* image, const WCHAR* commandLine, void*, void*, BOOL, DWORD,
                        void*, WCHAR*, void*, void*) override {
        calls_.push_back("start " + platform::ReadableText(image) + ' ' +
                         platform::ReadableText(commandLine));
        return 0;
    }

  private:
    Entries& calls_;
};

}  // namespace

std::function<void()> Tap(int id) {
    return [id] { Click(Control(id)); };
}

void NextTab() {
    QTest::keyClick(&Host(), Qt::Key_Tab, Qt::ControlModifier);
}

void PressKey(Qt::Key key) {
    QWidget* const popup = QApplication::activePopupWidget();
    QTest::keyClick(popup != nullptr ? popup : &Host(), key);
}

void AddMenu(Steps& steps, std::initializer_list<Qt::Key> keys) {
    for (const Qt::Key key : keys) {
        steps.emplace_back([key] { PressKey(key); });
    }
}

Entries RunDisplayed(const TemporaryDevice& device, const Steps& steps, std::deque<int> answers,
                     Entries* calls) {
    platform::AssembledDevice store(device.OpenFiles(), u"\\App\\Fennelbright.exe",
                                    device.OpenRegistry());
    Entries unseen;
    NotingStore noting(store, calls == nullptr ? unseen : *calls);
    const std::unique_ptr<platform::DisplayWindowSystem> windows = OpenUnseen();
    const platform::StoreInUse storeInUse(noting);
    const platform::WindowsInUse windowsInUse(*windows);
    const User user(steps, std::move(answers));
    std::u16string noWords;
    EXPECT_EQ(WinMain(nullptr, nullptr, noWords.data(), 0), 0);
    EXPECT_TRUE(store.StoreRegistry().has_value());
    return user.boxes();
}
