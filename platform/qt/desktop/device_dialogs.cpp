#include "platform/qt/desktop/device_dialogs.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QScreen>
#include <QSettings>

namespace platform::qt {

namespace {

constexpr QSize kDialogSize(400, 280);
const QString kNowhere = QStringLiteral("/dev/null");
const QString kCaption = QStringLiteral("Fennelbright");

// Takes a folder that is not there as well: a device can be made of it.
class FolderDialog : public QFileDialog {
  public:
    explicit FolderDialog(const QString& first)
        : QFileDialog(nullptr,
                      QStringLiteral("Choose the handheld's folder (with files/ and registry.reg)"),
                      first) {
        setFileMode(QFileDialog::Directory);
        setOption(QFileDialog::ShowDirsOnly);
        setViewMode(QFileDialog::List);  // of folders, only the names say anything
        resize(kDialogSize.boundedTo(screen()->availableSize()));
    }

    void accept() override {
        const QStringList chosen = selectedFiles();
        if (chosen.size() == 1 && !QFileInfo::exists(chosen.front())) {
            QDialog::accept();  // NOLINT(bugprone-parent-virtual-call): it would insist on one
        } else {
            QFileDialog::accept();
        }
    }
};

}  // namespace

ToolkitDialogs::ToolkitDialogs(std::unique_ptr<QApplication> application)
    : application_(std::move(application)) {
    // The toolkit would note in the user's home directory which folders were looked at.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, kNowhere);
}

std::string ToolkitDialogs::ChooseFolder() {
    FolderDialog dialog(folder_);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return {};
    }
    const QString chosen = dialog.selectedFiles().front();
    folder_ = QFileInfo(chosen).path();
    return QFile::encodeName(chosen).toStdString();
}

void ToolkitDialogs::ShowText(const std::string& text) {
    boxes_.Show(nullptr, QString::fromStdString(text), kCaption, MB_OK);
}

bool ToolkitDialogs::Confirm(const std::string& question) {
    return boxes_.Show(nullptr, QString::fromStdString(question), kCaption, MB_YESNO) == IDYES;
}

}  // namespace platform::qt
