#include "tests/random/random_device.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/support/settings_bytes.h"

namespace fs = std::filesystem;

namespace {

// Where options work, and where they move to; some of them are made on each device.
constexpr const char* kDirectories[] = {"Temp",
                                        "Windows/Temp",
                                        "My Documents/Temp",
                                        "My Documents",
                                        "Cache",
                                        "History",
                                        "Favorites",
                                        "Fonts",
                                        "New",
                                        "Cache/New",
                                        "Windows/StartUp",
                                        "Windows/Start Menu/Programs",
                                        "Storage Card/Old",
                                        "Storage Card/New"};
constexpr const char* kNames[] = {"a",       "b",        "B",        "c.tmp", "C.TMP",
                                  "d e.log", "\xC3\xA9", "\xC3\x89", "x:y"};
constexpr const char* kSubdirectories[] = {"sub", "SUB", "deep", "Cache"};
constexpr const char* kOddPaths[] = {"",           "Temp",          "\\None\\x",     "\\Temp\\..",
                                     "\\",         "\\Link\\sub\\", "\\Link\\x.exe", "\\Link\\",
                                     "\\a\\b\\c\\"};
constexpr const char* kTextValues[] = {"Cache", "History"};
constexpr const char* kFolderValues[] = {"Favorites", "Fonts", "My Documents"};
constexpr std::uint32_t kTextOptions[] = {0x1,    0x2,     0x1000000, 0x400,
                                          0x4000, 0x10000, 0x20000,   0x40000};
constexpr std::uint32_t kPositionOptions[] = {0x800, 0x1000, 0x2000, 0x100000};

void SetImmutable(const std::string& path, bool isSet) {
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW);
    int flags = 0;
    if (file >= 0 && ioctl(file, FS_IOC_GETFLAGS, &flags) == 0) {
        flags = isSet ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
        ioctl(file, FS_IOC_SETFLAGS, &flags);
    }
    close(file);
}

std::u16string Widened(const std::string& text) {
    return {text.begin(), text.end()};
}

}  // namespace

RandomDevice::RandomDevice(std::uint64_t seed, const std::string& parent, bool isFull)
    : random_(seed),
      device_(parent),
      user_(Chance(40) ? kOrdinaryUser : 0),
      allowsRestart_(Chance(40)),
      isErased_(Chance(15)),
      isTight_(isFull) {
    MakeTree();
    MakeShortcuts();
    WriteFile(device_.registry(), Registry());
    device_.Make({"App/settings.dat=" + Settings()});
    if (isFull) {
        LeaveRoom(Below(Chance(80) ? 9000 : 30000));
    }
    HandOver();
    MakeHazards();
}

RandomDevice::~RandomDevice() {
    std::error_code ignored;
    for (const auto& entry : fs::recursive_directory_iterator(device_.path(), ignored)) {
        SetImmutable(entry.path(), false);
    }
}

void RandomDevice::MakeEntry(const std::string& path, int depth) {
    const std::uint32_t kind = Below(20);
    if (kind < 5 && depth < 3) {
        Fill(fs::path(path).parent_path().string() + '/' + Pick(kSubdirectories), depth + 1);
    } else if (kind < 7) {
        device_.Make({path + ">" + Pick(kNames)});
    } else if (kind == 7) {
        device_.Make({path + '|'});
    } else if (kind == 8 && !lastFile_.empty() && !isForFewFiles_) {  // names can count as files
        std::error_code ignored;
        fs::create_hard_link(lastFile_, device_.HostPath(path), ignored);
    } else {
        // As much as there is room for.
        const std::size_t size = std::size_t{Below(4)} * Below(6000);
        std::ofstream(device_.HostPath(path)) << std::string(size, 'x');
        if (kind < 11) {
            chmod(device_.HostPath(path).c_str(), 0444);
        }
        lastFile_ = device_.HostPath(path);
        if (Chance(30)) {
            fs::last_write_time(lastFile_, fs::file_time_type());
        }
    }
}

void RandomDevice::Fill(const std::string& directory, int depth) {
    device_.Make({directory + '/'});
    for (std::uint32_t count = Below(6); count > 0; --count) {
        const std::string path = directory + '/' + Pick(kNames);
        if (!fs::exists(fs::symlink_status(device_.HostPath(path)))) {
            MakeEntry(path, depth);
        }
    }
}

void RandomDevice::MakeCard() {
    constexpr const char* kCards[] = {"size=28k", "size=28k", "size=1m", "size=1m"};
    const std::uint32_t card = Below(5);
    isTight_ = isTight_ || card < 3;
    isForFewFiles_ = card == 2;
    if (card < 4) {
        device_.Mount("Storage Card", kCards[card]);
        return;
    }
    const std::string own = device_.path() + "/card";  // of the device's own volume
    device_.Make({"Storage Card/"});
    fs::create_directory(own);
    const std::string place = device_.HostPath("Storage Card");
    EXPECT_EQ(mount(own.c_str(), place.c_str(), nullptr, MS_BIND, nullptr), 0);
    device_.IsMounted("Storage Card");
}

void RandomDevice::MakeTree() {
    if (Chance(70)) {
        MakeCard();
    }
    device_.Make({"Link>Cache"});
    for (const char* const directory : kDirectories) {
        if (Chance(65)) {
            Fill(directory, 0);
        }
    }
    for (const char* const place : {"Temp/mount", "Cache/mount", "Favorites/mount"}) {
        if (Chance(45)) {
            device_.Mount(place, "size=64k");
        }
    }
}

void RandomDevice::MakeShortcuts() {
    for (const char* const folder : {"Windows/StartUp", "Windows/Start Menu/Programs"}) {
        for (std::uint32_t count = Below(4); count > 0 && Chance(80); --count) {
            const std::string target = '"' + DevicePath() + '"';
            device_.Make({std::string(folder) + '/' + Pick(kNames) + std::to_string(count) +
                          ".lnk=" + std::to_string(target.size()) + '#' + target});
        }
    }
    if (Chance(20)) {
        device_.Make({"Windows/StartUp/Fennelbright.lnk=1#x"});
    }
}

// On its main volume.
void RandomDevice::LeaveRoom(std::uint64_t bytes) const {
    struct statvfs volume {};
    statvfs(device_.files().c_str(), &volume);
    const std::uint64_t free = volume.f_bavail * volume.f_frsize;
    const platform::Descriptor filler(
        open(device_.HostPath("filler").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    if (free > bytes) {
        posix_fallocate(filler.get(), 0, static_cast<off_t>(free - bytes));
    }
}

// A directory that is there, or may be.
std::string RandomDevice::Directory() {
    std::string path = Pick(kDirectories);
    return Chance(30) ? path + '/' + Pick(kSubdirectories) : path;
}

// Mostly a directory in one of the spellings that lead to it, sometimes none.
std::string RandomDevice::DevicePath() {
    if (Chance(10)) {
        return Pick(kOddPaths);
    }
    std::string path = '\\' + Directory();
    for (char& letter : path) {
        letter = letter == '/' ? '\\' : letter;
    }
    if (Chance(15)) {
        for (char& letter : path) {
            letter = static_cast<char>(std::tolower(letter));
        }
    }
    return Chance(40) ? path + '\\' : path;
}

std::string RandomDevice::Value() {
    if (Chance(6)) {
        return "dword:00000007";
    }
    std::string text = "\"";
    for (const char letter : DevicePath()) {
        text += letter == '\\' ? "\\\\" : std::string(1, letter);
    }
    return text + '"';
}

std::string RandomDevice::Registry() {
    std::string text =
        "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\AvantGo]\n\"DatabaseLocation\"=" + Value() +
        "\n[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\"
        "Explorer\\Shell Folders]\n";
    for (const char* const name : kTextValues) {
        text += Chance(95) ? '"' + std::string(name) + "\"=" + Value() + '\n' : "";
    }
    text += "[HKEY_LOCAL_MACHINE\\Explorer\\Shell Folders]\n";
    for (const char* const name : kFolderValues) {
        text += Chance(95) ? '"' + std::string(name) + "\"=" + Value() + '\n' : "";
    }
    for (const char* const name : {"Content", "Cookies", "History"}) {
        text +=
            "[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\"
            "Internet Settings\\5.0\\Cache\\" +
            std::string(name) + "]\n\"CacheLimit\"=dword:00000009\n";
    }
    for (std::uint32_t count = Below(4); count > 0; --count) {
        text += "[HKEY_LOCAL_MACHINE\\Software\\Apps\\" + std::to_string(count) +
                "]\n\"InstallDir\"=" + Value() + '\n';
    }
    return text +
           "[HKEY_LOCAL_MACHINE\\System\\GDI\\GLYPHCACHE]\n\"limit\"=dword:00000009\n"
           "[HKEY_LOCAL_MACHINE\\System\\GWE]\n\"Animate\"=dword:0000000" +
           std::to_string(Below(2)) +
           "\n[HKEY_LOCAL_MACHINE\\System\\GWE\\Menu]\n\"AniType\"=dword:0000000" +
           std::to_string(Below(2) * 6) + '\n';
}

std::string RandomDevice::Settings() {
    constexpr std::uint32_t kMoves[] = {0x4000, 0x10000, 0x20000, 0x40000};
    constexpr std::uint32_t kAllMoves = 0x74000;
    auto mask = static_cast<std::uint32_t>(random_()) & kAllOptions;
    if (isTight_) {
        mask = (Chance(40) ? 0x200000 : mask & ~kAllMoves) | kMoves[Below(4)];
    } else if (Chance(60)) {
        mask |= kAllMoves;
    }
    std::string bytes = Number(mask);
    for (const std::uint32_t option : kTextOptions) {
        const std::string path = Chance(isTight_ ? 70 : 30) ? "\\Storage Card\\" : DevicePath();
        bytes += (mask & option) != 0 ? Record(Widened(path)) : "";
    }
    for (const std::uint32_t option : kPositionOptions) {
        bytes += (mask & option) != 0 ? Number(Below(4)) : "";
    }
    return Chance(3) ? bytes.substr(0, Below(static_cast<std::uint32_t>(bytes.size()))) : bytes;
}

// The user owns the device, but for some directories, in which nothing is theirs to change.
void RandomDevice::HandOver() {
    if (user_ == 0) {
        return;
    }
    EXPECT_EQ(lchown(device_.path().c_str(), Chance(5) ? 0 : user_, user_), 0);
    EXPECT_EQ(chmod(device_.path().c_str(), 0755), 0);
    for (const auto& entry : fs::recursive_directory_iterator(device_.path())) {
        EXPECT_EQ(lchown(entry.path().c_str(), user_, user_), 0);
    }
}

void RandomDevice::MakeHazards() {
    for (const auto& entry : fs::recursive_directory_iterator(device_.files())) {
        const std::string path = entry.path();
        if (path.find("/App") != std::string::npos) {
            continue;
        }
        const fs::file_type type = entry.symlink_status().type();
        if (type == fs::file_type::directory) {
            constexpr mode_t kModes[] = {01777, 0555, 0000, 0700};
            if (user_ != 0 && Chance(15)) {
                std::ofstream(path + "/kept") << 'x';  // or it could go unread
                EXPECT_EQ(chmod(path.c_str(), kModes[Below(4)]), 0);
            }
            if (user_ != 0 && Chance(15)) {
                EXPECT_EQ(chown(path.c_str(), 0, 0), 0);
            }
            if (Chance(5)) {
                SetImmutable(path, true);
            } else if (Chance(4) &&
                       !isForFewFiles_) {  // an attribute can count as a part of a file
                setxattr(path.c_str(), "user.DOSATTRIB", "0x6", 3, 0);
            }
        } else if (type == fs::file_type::regular && Chance(3)) {
            SetImmutable(path, true);
        } else if (user_ != 0 && Chance(6)) {
            [[maybe_unused]] const int failed = lchown(path.c_str(), 0, 0);  // of an immutable one
        }
    }
    const std::string card = device_.HostPath("Storage Card");
    if (isForFewFiles_) {
        struct statvfs volume {};
        statvfs(card.c_str(), &volume);
        const std::uint64_t files = volume.f_files - volume.f_ffree + Below(6);
        const std::string limit = "size=1m,nr_inodes=" + std::to_string(files);
        EXPECT_EQ(mount(nullptr, card.c_str(), nullptr, MS_REMOUNT, limit.c_str()), 0);
    }
    if (Chance(10)) {  // with its lock closed
        mount(nullptr, card.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr);
    }
}
