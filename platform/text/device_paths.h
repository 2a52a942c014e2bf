#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

// A path taken apart at its last backslash. Both views are parts of the path.
struct SplitPath {
    std::u16string_view directory;  // backslash included; empty for a bare name
    std::u16string_view name;       // without backslashes after it; empty for the root
    bool directoryOnly = false;     // there were backslashes after the name
};
SplitPath SplitAtName(std::u16string_view path);

// The components of a path, without the empty ones that doubled backslashes make.
std::vector<std::u16string_view> ComponentsOf(std::u16string_view path);

// The one spelling of a path among those that lead to the same place: a backslash before each
// component and nowhere else; a single one for the root. An empty path stays empty.
std::u16string CanonicalPath(std::u16string_view path);

}  // namespace platform
