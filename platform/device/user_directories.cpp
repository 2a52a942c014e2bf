#include "platform/device/user_directories.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <sstream>
#include <utility>

#include "platform/io/directory_reader.h"

namespace platform {

namespace {

constexpr const char* kKeep = "keep anything of the run there";

std::string Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::string HomeOf(uid_t user) {
    const passwd* const entry = getpwuid(user);
    return entry != nullptr && entry->pw_dir != nullptr ? entry->pw_dir : "";
}

std::vector<std::string> HomeDirectories(Homes wanted) {
    if (wanted == Homes::Usual && !Variable("HOME").empty()) {
        return {Variable("HOME")};
    }
    std::vector<std::string> homes = {Variable("HOME"), HomeOf(getuid())};
    if (const std::string user = Variable("SUDO_UID"); !user.empty()) {
        homes.push_back(HomeOf(static_cast<uid_t>(std::strtoul(user.c_str(), nullptr, 10))));
    }
    return homes;
}

// A path as one name, which is that of no other path: "/a b/c+d" is "a b+c%2Bd".
std::string NameOfPath(const std::string& path) {
    std::string name;
    for (const char byte : path.substr(1)) {
        name += byte == '/'   ? "+"
                : byte == '+' ? "%2B"
                : byte == '%' ? "%25"
                              : std::string(1, byte);
    }
    return name;
}

// The name as folders, since a name can be too long. One that goes on is longer than any last one,
// so that none is both, and what follows begins with a mark, so that it is never "..".
std::string AsFolders(std::string name) {
    constexpr std::size_t kLongest = 200;
    std::string folders = "/";
    while (name.size() > kLongest) {
        folders += name.substr(0, kLongest) + "%/%";
        name.erase(0, kLongest);
    }
    return folders + name;
}

Status CheckOutside(const Descriptor& directory, const FileIdentity& tree) {
    const Result<bool> isInside = IsWithin(directory.get(), {&tree, 1});
    if (!isInside) {
        return tl::unexpected<Failure>(isInside.error());
    }
    return *isInside ? FailBecause(kKeep, "it is in the device's files") : Status();
}

Status Make(const Descriptor& parent, const std::string& name, const FileIdentity& tree) {
    if (Status outside = CheckOutside(parent, tree); !outside) {
        return outside;
    }
    const bool isThere = mkdirat(parent.get(), name.c_str(), 0700) == 0 || errno == EEXIST;
    return isThere ? Status() : Fail(kKeep, errno);
}

Descriptor OpenIn(const Descriptor& parent, const std::string& name) {
    return Descriptor(openat(parent.get(), name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

// Where a path begins.
Descriptor OpenStart(const std::string& path) {
    return OpenDirectoryPath(path.starts_with('/') ? "/" : ".");
}

std::vector<std::string> NamesIn(const std::string& path) {
    std::vector<std::string> names;
    std::istringstream parts(path);
    for (std::string name; std::getline(parts, name, '/');) {
        if (!name.empty()) {
            names.push_back(name);
        }
    }
    return names;
}

}  // namespace

std::vector<PreciousDirectory> PreciousDirectories(Homes homes) {
    std::vector<PreciousDirectory> places = {{"/", "it is the root of this machine's file system",
                                              "the root of this machine's file system is in it"}};
    for (const std::string& home : HomeDirectories(homes)) {
        if (!home.empty()) {
            places.push_back({home, "it is your home directory", "your home directory is in it"});
        }
    }
    return places;
}

Descriptor OpenDirectoryPath(const std::string& path) {
    return Descriptor(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

// A relative path in these variables counts as none, as their convention has it.
std::string StateDirectoryFor(const std::string& path) {
    std::string state = Variable("XDG_STATE_HOME");
    for (const std::string& home : HomeDirectories(Homes::All)) {
        if (!state.starts_with('/') && home.starts_with('/')) {
            state = home + "/.local/state";
        }
    }
    return state.starts_with('/') ? state + "/fennelbright" + AsFolders(NameOfPath(path)) : "";
}

Result<bool> LeadsInto(const std::string& path, const FileIdentity& tree) {
    Descriptor last = OpenStart(path);
    for (const std::string& name : NamesIn(path)) {
        Descriptor next = OpenIn(last, name);
        if (!next) {
            break;
        }
        last = std::move(next);
    }
    return IsWithin(last.get(), {&tree, 1});
}

Result<Descriptor> OpenStateDirectory(const std::string& path, const FileIdentity& tree) {
    Descriptor last = OpenStart(path);
    for (const std::string& name : NamesIn(path)) {
        Descriptor next = OpenIn(last, name);
        if (!next && errno == ENOENT) {
            if (const Status made = Make(last, name, tree); !made) {
                return tl::unexpected<Failure>(made.error());
            }
            next = OpenIn(last, name);
        }
        if (!next) {
            return Fail(kKeep, errno);
        }
        last = std::move(next);
    }
    if (const Status outside = CheckOutside(last, tree); !outside) {
        return tl::unexpected<Failure>(outside.error());
    }
    return OpenToRead(last.get());
}

}  // namespace platform
