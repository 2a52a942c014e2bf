#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/registry_operations.h"
#include "platform/registry/text/edited_registry_text.h"

// Any bytes at all are either no registry file, or one that is written as it was read, takes a
// change and a deletion, and is read with both of them and with everything else afterwards.
namespace {

using platform::EditedRegistryText;
using platform::KeyIndex;
using platform::RegistryData;
using platform::SetResult;

constexpr std::u16string_view kRoot = u"HKEY_LOCAL_MACHINE";
constexpr std::u16string_view kKept = u"HKEY_USERS";

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

std::vector<std::u16string> Children(const EditedRegistryText& text, std::u16string_view path) {
    std::vector<std::u16string> names;
    const KeyIndex key = text.FindKey(path);
    for (std::size_t index = 0; auto name = text.ChildName(key, index); ++index) {
        names.push_back(*name);
    }
    return names;
}

// The first path of keys below the root, one level after the other.
std::u16string DeepestPath(const EditedRegistryText& text) {
    std::u16string path(kRoot);
    for (auto name = text.ChildName(text.FindKey(path), 0); name;
         name = text.ChildName(text.FindKey(path), 0)) {
        path += u'\\' + *name;
    }
    return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    platform::Result<EditedRegistryText> text = EditedRegistryText::Parse(bytes);
    if (!text) {
        return 0;
    }
    Require(bytes.empty() || text->Serialize() == bytes);

    const std::u16string path = DeepestPath(*text);
    const RegistryData value{REG_SZ, {data, data + size / 2}};
    const SetResult result = text->SetValue(text->FindKey(path), u"v", value.type, value.bytes);
    const std::optional<RegistryData> stored = text->Value(text->FindKey(path), u"v");
    Require(result == SetResult::kUnfit || stored.has_value());
    platform::Result<EditedRegistryText> changed = EditedRegistryText::Parse(text->Serialize());
    Require(changed.has_value());
    Require(changed->Value(changed->FindKey(path), u"v") == stored);
    Require(Children(*changed, kRoot) == Children(*text, kRoot));

    const std::u16string top = path.substr(0, path.find(u'\\', kRoot.size() + 1));
    if (top != kRoot) {
        text->DeleteKey(text->FindKey(top));
        changed = EditedRegistryText::Parse(text->Serialize());
        Require(changed.has_value());
        Require(changed->FindKey(top) == 0);
        Require(Children(*changed, kRoot) == Children(*text, kRoot));
        Require(Children(*changed, kKept) == Children(*text, kKept));
    }
    return 0;
}
