#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/io/descriptor.h"
#include "platform/registry/registry_key_operations.h"

using Entries = std::vector<std::string>;

// What is in a directory, however deep, in the notation of TemporaryDevice::Make, sorted.
Entries ListingOf(const std::string& directory);

// A device directory of a test's own, removed with the object.
class TemporaryDevice {
  public:
    // A file tree of these entries in a new directory below `parent`, by default the system's
    // temporary one.
    explicit TemporaryDevice(const Entries& entries = {}, const std::string& parent = "");
    ~TemporaryDevice();
    TemporaryDevice(const TemporaryDevice&) = delete;
    TemporaryDevice& operator=(const TemporaryDevice&) = delete;

    const std::string& path() const { return path_; }       // of the device directory
    std::string files() const { return path_ + "/files"; }  // of its file tree
    std::string registry() const { return path_ + "/registry.reg"; }
    platform::Descriptor OpenFiles() const;
    // Of registry.reg in path().
    std::unique_ptr<platform::Registry> OpenRegistry(
        platform::AccessTime time = platform::AccessTime::Shown) const;

    // Makes what `entries` list, host paths from files() on: "a/b/" a directory, "a/b=text" a file,
    // "a/b>target" a symbolic link, "a/b|" a pipe. Parents are made as needed.
    void Make(const Entries& entries) const;

    // The file tree in the same notation, sorted.
    Entries Listing() const { return ListingOf(files()); }

  private:
    std::string path_;
    platform::Descriptor directory_;
};

// The parts of a text between its spaces.
Entries Words(const std::string& text);

// The whole content of a file; empty when it cannot be read.
std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, std::string_view content);
