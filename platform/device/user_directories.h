#pragma once

#include <string>
#include <vector>

#include "platform/diagnostics/failure.h"
#include "platform/io/descriptor.h"
#include "platform/io/file_identity.h"

namespace platform {

// A directory that nobody means to have cleaned, and what is to be said of one that is it, or that
// has it somewhere below.
struct PreciousDirectory {
    std::string path;
    const char* isIt;
    const char* containsIt;
};

// Whose home directory: the one that the environment names, or else the one that this machine
// knows; or both, and that of whoever has become root by sudo, which takes the machine's list of
// users.
enum class Homes { Usual, All };

// The root of this machine, and the home directories.
std::vector<PreciousDirectory> PreciousDirectories(Homes homes);

// Opens a directory, to be looked at and to start from. None where there is no such directory.
Descriptor OpenDirectoryPath(const std::string& path);

// The directory, below the user's own for what programs keep, that belongs to the files at this
// absolute path, and to those of no other path. Empty where the user has no home.
std::string StateDirectoryFor(const std::string& path);

// Whether the directory `path`, as far as it is there by now, is `tree` or lies in it.
Result<bool> LeadsInto(const std::string& path, const FileIdentity& tree);

// Opens the directory `path`, and makes what is missing of it, for its user alone. Nothing is made
// or opened in `tree`: a failure.
Result<Descriptor> OpenStateDirectory(const std::string& path, const FileIdentity& tree);

}  // namespace platform
