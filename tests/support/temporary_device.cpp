#include "tests/support/temporary_device.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace fs = std::filesystem;

TemporaryDevice::TemporaryDevice(const Entries& entries, const std::string& parent) {
    path_ = (parent.empty() ? fs::temp_directory_path().string() : parent) + "/device-XXXXXX";
    EXPECT_NE(mkdtemp(path_.data()), nullptr);
    fs::create_directory(files());
    directory_ = platform::Descriptor(open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    Make(entries);
}

TemporaryDevice::~TemporaryDevice() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

platform::Descriptor TemporaryDevice::OpenFiles() const {
    return platform::Descriptor(open(files().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

std::unique_ptr<platform::Registry> TemporaryDevice::OpenRegistry(platform::AccessTime time) const {
    auto registry = platform::Registry::Open(directory_.get(), platform::kRegistryName, time);
    EXPECT_TRUE(registry.has_value()) << platform::Describe(registry.error());
    return std::move(*registry);
}

void TemporaryDevice::Make(const Entries& entries) const {
    for (const std::string& entry : entries) {
        const std::size_t mark = entry.find_first_of("=>|");
        const std::string path = files() + '/' + entry.substr(0, mark);
        fs::create_directories(path.ends_with('/') ? path : fs::path(path).parent_path().string());
        if (mark == std::string::npos) {
            continue;
        }
        const std::string rest = entry.substr(mark + 1);
        if (entry[mark] == '=') {
            WriteFile(path, rest);
        } else if (entry[mark] == '>') {
            fs::create_symlink(rest, path);
        } else {
            EXPECT_EQ(mkfifo(path.c_str(), 0666), 0);
        }
    }
}

Entries ListingOf(const std::string& directory) {
    Entries listing;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
        const std::string name = entry.path().string().substr(directory.size() + 1);
        if (entry.is_symlink()) {
            listing.push_back(name + '>' + fs::read_symlink(entry.path()).string());
        } else if (entry.is_directory()) {
            listing.push_back(name + '/');
        } else if (entry.is_fifo()) {
            listing.push_back(name + '|');
        } else {
            listing.push_back(name + '=' + ReadFile(entry.path()));
        }
    }
    std::sort(listing.begin(), listing.end());
    return listing;
}

Entries Words(const std::string& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& path, std::string_view content) {
    std::ofstream file(path, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    EXPECT_TRUE(file.flush()) << path;
}
