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

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/text/json_object.h"
#include "platform/text/text_encoding.h"
#include "tests/support/settings_bytes.h"

namespace fs = std::filesystem;
using namespace std::literals;

namespace {

// The parts between bars.
Entries Split(const std::string& text) {
    Entries parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, '|');) {
        parts.push_back(part);
    }
    return parts;
}

// Where options work, and where they move to; some of them are made on each device.
const Entries kDirectories = Split(
    "Temp|Windows/Temp|My Documents/Temp|My Documents|Cache|History|Favorites|Fonts|New|Cache/New|"
    "Windows/StartUp|Windows/Start Menu/Programs|Storage Card/Old|Storage Card/New|"
    "Program Files/Reader");
constexpr const char* kSubdirectories = "sub|deep|Cache|aux";
const std::string kNames =
    "a|b|c.tmp|d e.log|\u00E9|Reader.exe|.dots.|%s|x y.z w|CON|nul.txt|\U0001F33F|\u0130i|\u00DF|"
    "b |[1];=+,.bak|longna~1.tmp|Temp|a.|a page.txt|" +
    std::string(200, 'l');
// The second platform has no names that differ in case, and none with colons.
constexpr const char* kSubdirectoriesHere = "sub|SUB|Deep|deep|Cache|cache";
const std::string kNamesHere = kNames + "|a|b|B|B|C.TMP|C.TMP|c.tmp|\u00C9|\u00C9|x:y|x:y";
const Entries kOddPaths = Split(
    "|Temp|\\None\\x|\\None\\x\\|\\None\\y\\z\\|\\a\\b\\c\\|\\a\\c\\|\\b\\c\\|\\Link|\\Link\\|"
    "\\Link\\sub|"
    "\\Link\\sub\\|\\Link\\x.exe|\\Temp\\..|\\Temp\\.|\\|\\\\|\\Te*|\\Temp\\*.*|/Temp/|\\Temp/|"
    "X:\\Temp\\| \\Temp\\|\\Temp:x\\|\\Temp\\a\\|\\.|\\?|\\..\\0\\|\\Temp\0\\x\\|\\"s +
    std::string(1100, 'p'));
const Entries kTargets = Split(
    "\\Program Files\\Reader\\Reader.exe|\\Temp\\a|\\Temp\\d e.log|\\Windows\\gone.exe|\\Temp\\a.|"
    "\\Program Files\\Fennelbright\\\u00E9");
// With a count at the sign, and the path at the dollar.
const Entries kShortcuts = Split(
    "%#\"$\"|%#\"$\"|%#$|%#\"$\" silent\"|%#$ -home|;a note\r\n\r\n%#$|%#\"$\"\r\n|%#$\r\n|"
    "%#\"$\"?icon.dll,-1|%#$?icon.dll,-1|%#$\0|% $|#$|%#  $  |%#\"$.exe\" "
    "\\Temp\\x|%#:MSPIMG$|%#$*|%#\"$\\\"|"
    "%#\\None \"$\""s);
// Keys that the program reads, in any case, and the names of their values; "#" is before a number.
constexpr const char* kKeys[] = {
    "HKEY_CURRENT_USER\\Software\\avantgo|databaseLocation",
    "HKEY_CURRENT_USER\\Software\\Microsoft\\*\\Explorer\\Shell Folders|Cache|History",
    "HKEY_LOCAL_MACHINE\\Explorer\\Shell Folders|Favorites|Fonts|My Documents",
    "HKEY_CURRENT_USER\\Software\\Microsoft\\*\\Internet Settings\\5.0\\Cache\\Content|#CacheLimit",
    "HKEY_CURRENT_USER\\Software\\Microsoft\\*\\Internet Settings\\5.0\\Cache\\Cookies|#cachelimit",
    "HKEY_CURRENT_USER\\Software\\Microsoft\\*\\Internet Settings\\5.0\\Cache\\History|#CacheLimit",
    "HKEY_LOCAL_MACHINE\\System\\gdi\\GlyphCache|#Limit",
    "HKEY_LOCAL_MACHINE\\System\\GWE|#Animate",
    "HKEY_LOCAL_MACHINE\\System\\GWE\\Menu|#AniType",
    "HKEY_LOCAL_MACHINE\\Software\\Apps|@"};
// Forms of a value with a path, and what follows the path in it.
constexpr std::pair<const char*, std::string_view> kPathForms[] = {
    {"hex(1):", ""},       {"hex(1):", "\0x\0"sv}, {"hex(2):", "\0"sv},
    {"hex(7):", "\0\0"sv}, {"hex(0):", "\0"sv},    {"hex:", ""}};
const Entries kNumbers = Split(
    "dword:0|dword:0|dword:1|dword:1|dword:2|dword:6|dword:6|dword:ffffffff|hex:01|"
    "hex:01,00,00,00,00|\"1\"|hex(4):06,00,00,00");
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
    return platform::WideText(text).value();
}

// In CP1252; what that has not is a question mark.
std::string Narrowed(const std::string& text) {
    std::string bytes;
    for (const char16_t unit : Widened(text)) {
        bytes += unit < 0x100 ? static_cast<char>(unit) : '?';
    }
    return bytes;
}

std::string Replaced(std::string text, std::string_view part, const std::string& by) {
    for (std::size_t place = 0; (place = text.find(part, place)) != text.npos; place += by.size()) {
        text.replace(place, part.size(), by);
    }
    return text;
}

// In the form of registry files.
std::string Quoted(const std::string& text) {
    return '"' + Replaced(Replaced(text, "\\", "\\\\"), "\"", "\\\"") + '"';
}

std::string HexList(const std::string& bytes) {
    std::string list;
    for (const char& byte : bytes) {
        list += list.empty() ? "" : ",";
        list += platform::HexOf({&byte, 1});
    }
    return list;
}

}  // namespace

RandomDevice::RandomDevice(std::uint64_t seed, const std::string& parent, Kind kind)
    : random_(seed),
      device_(parent),
      isOfTwoPlatforms_(kind == Kind::OfTwoPlatforms),
      names_(Split(isOfTwoPlatforms_ ? kNames : kNamesHere)),
      subdirectories_(Split(isOfTwoPlatforms_ ? kSubdirectories : kSubdirectoriesHere)),
      user_(Chance(40) ? kOrdinaryUser : 0),
      allowsRestart_(Chance(40)),
      isErased_(Chance(15)),
      hasNarrowRegistry_(Chance(50)),
      isTight_(kind == Kind::AlmostFull) {
    device_.Make({"Program Files/Fennelbright/\u00E9=x"});
    MakeTree();
    MakeShortcuts();
    WriteFile(device_.registry(),
              hasNarrowRegistry_
                  ? Encoded("REGEDIT4\n\n" + Keys())
                  : "\xFF\xFE" + Encoded("Windows Registry Editor Version 5.00\n\n" + Keys()));
    if (Chance(98)) {
        device_.Make({"Program Files/Fennelbright/settings.dat=" + Settings()});
    }
    if (kind == Kind::AlmostFull) {
        LeaveRoom(Below(Chance(80) ? 5000 : 30000));
    }
    if (!isOfTwoPlatforms_) {
        HandOver();
        MakeHazards();
    }
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
        Fill(fs::path(path).parent_path().string() + '/' + Pick(subdirectories_), depth + 1);
    } else if (kind < 9 && !isOfTwoPlatforms_) {
        MakeLink(device_.HostPath(path), kind);
    } else {
        // As much as there is room for.
        MakeFile(path, std::string(std::size_t{Below(4)} * Below(6000), 'x'));
    }
}

// What this platform alone has.
void RandomDevice::MakeLink(const std::string& path, std::uint32_t kind) {
    std::error_code ignored;
    if (kind == 8) {
        mkfifo(path.c_str(), 0666);
    } else if (kind == 7 && !lastFile_.empty() && !isForFewFiles_) {  // names can count as files
        fs::create_hard_link(lastFile_, path, ignored);
    } else {
        fs::create_symlink(Pick(names_), path, ignored);
    }
}

void RandomDevice::MakeFile(const std::string& path, const std::string& content) {
    lastFile_ = device_.HostPath(path);
    std::ofstream(lastFile_, std::ios::binary) << content;
    if (Chance(15)) {
        chmod(lastFile_.c_str(), 0444);
    }
    if (Chance(30)) {
        fs::last_write_time(lastFile_, fs::file_time_type());
    }
}

void RandomDevice::Fill(const std::string& directory, int depth) {
    device_.Make({directory + '/'});
    for (std::uint32_t count = Below(6); count > 0; --count) {
        const std::string path = directory + '/' + Pick(names_);
        if (!fs::exists(fs::symlink_status(device_.HostPath(path)))) {
            MakeEntry(path, depth);
        }
    }
    if (depth == 0 && Chance(5)) {
        const std::string name = '/' + std::string(120, 'n');
        Fill(directory + name + name + name + name + name + name + name + name + name, 3);
    }
    if (Chance(4)) {
        chmod(device_.HostPath(directory).c_str(), 0555);
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
    if (!isOfTwoPlatforms_) {
        device_.Make({"Link>Cache"});
        if (Chance(70)) {
            MakeCard();
        }
    }
    for (const std::string& directory : kDirectories) {
        if (Chance(65)) {
            Fill(directory, 0);
        }
    }
    for (const char* const place : {"Temp/mount", "Cache/mount", "Favorites/mount"}) {
        if (!isOfTwoPlatforms_ && Chance(95)) {
            device_.Mount(place, "size=64k");
        }
    }
}

void RandomDevice::MakeShortcuts() {
    for (const char* const folder :
         {"Windows/StartUp/", "Windows/Start Menu/", "Windows/Start Menu/Programs/"}) {
        for (std::uint32_t count = Chance(60) ? Below(8) : 0; count > 0; --count) {
            device_.Make({folder});
            const std::string content = Shortcut();
            MakeFile(folder + Pick(names_) + std::to_string(count) + ".lnk", content);
        }
    }
    if (Chance(20)) {
        device_.Make(
            {std::string("Windows/StartUp/Fennelbright.lnk") + (Chance(50) ? "/" : "=1#x")});
    }
}

// With every kind of text that programs write, in the encodings that they choose.
std::string RandomDevice::Shortcut() {
    const std::string path = Chance(60) ? DevicePath() : Pick(kTargets);
    const std::string count = std::to_string(path.size() + Below(3));
    std::string text = Replaced(Replaced(Pick(kShortcuts), "%", count), "$", path);
    if (Chance(2)) {
        text += std::string(5000, ' ');
    }
    return Pick(Entries{text, text, Narrowed(text), "\xFF\xFE" + Wide(Widened(text)),
                        "\xEF\xBB\xBF" + text});
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

// Mostly a directory in one of the spellings that lead to it, sometimes none.
std::string RandomDevice::DevicePath() {
    if (Chance(15)) {
        return Pick(kOddPaths);
    }
    std::string path = Pick(kDirectories);
    if (Chance(40)) {
        path += '/' + Pick(Chance(50) ? subdirectories_ : names_);
    }
    path = '\\' + Replaced(path, "/", "\\");
    if (Chance(5)) {
        path = Replaced(path, "\\", "\\\\");
    } else if (Chance(10)) {
        const auto change = Chance(50) ? tolower : toupper;
        std::transform(path.begin(), path.end(), path.begin(),
                       [=](unsigned char letter) { return static_cast<char>(change(letter)); });
    }
    return Chance(40) ? path + '\\' : path;
}

// In the encoding of the registry.
std::string RandomDevice::Encoded(const std::string& text) const {
    return hasNarrowRegistry_ ? Narrowed(text) : Wide(Widened(text));
}

// The data of a value that should be a path.
std::string RandomDevice::Path() {
    const std::string path = Replaced(DevicePath(), "\0"s, "");
    if (Chance(75)) {
        return Quoted(path);
    }
    const auto& [form, end] = kPathForms[Below(std::size(kPathForms))];
    return Chance(20) ? "dword:7" : form + HexList(Encoded(path + std::string(end)));
}

// As a registry file has it, from its path and the names of its values.
std::string RandomDevice::Key(const std::string& key) {
    const Entries parts = Split(Replaced(key, "*", "Windows\\CurrentVersion"));
    std::string text = '[' + parts[0] + "]\n";
    for (std::size_t index = 1; index < parts.size(); ++index) {
        if (Chance(92)) {
            const bool isNumber = parts[index][0] == '#';
            const std::string name = Quoted(parts[index].substr(isNumber ? 1 : 0));
            text += (name == "\"@\"" ? "@" : name) + '=' + (isNumber ? Pick(kNumbers) : Path());
            text += '\n';
        }
    }
    return text;
}

// The second platform sorts keys, so applications come in the order of their names.
std::string RandomDevice::Keys() {
    std::string text;
    for (const char* const key : kKeys) {
        text += Chance(94) ? Key(key) : "";
    }
    for (const char* const name : {"Agenda", "B.1", "Calc [2]", "D", "E e", "Reader"}) {
        if (Chance(40)) {
            const std::string key = std::string("HKEY_LOCAL_MACHINE\\Software\\Apps\\") + name;
            text += Key(key + "|InstallDir|#Other");
            text += Chance(30) ? Key(key + "\\Sub\\Sub|x") : "";
        }
    }
    return text;
}

std::string RandomDevice::Settings() {
    constexpr std::uint32_t kMoves[] = {0x4000, 0x10000, 0x20000, 0x40000};
    constexpr std::uint32_t kAllMoves = 0x74000;
    auto mask = static_cast<std::uint32_t>(random_()) & (Chance(5) ? ~0U : kAllOptions);
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
        bytes += (mask & option) != 0 ? Number(Below(5) - 1) : "";
    }
    bytes += Chance(5) ? "more" : "";
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
        if (path.find("/Program Files") != std::string::npos) {
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
