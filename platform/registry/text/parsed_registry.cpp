#include "platform/registry/text/parsed_registry.h"

#include <utility>

#include "platform/registry/text/registry_roots.h"

namespace platform {

ParsedRegistry::ParsedRegistry(std::string fileBytes, const FileEncoding& encoding)
    : bytes(std::make_unique<const std::string>(std::move(fileBytes))),
      textBegin(encoding.markSize),
      keys(encoding.encoding),
      values(1),
      sections(1) {
    form.encoding = encoding.encoding;
}

SectionIndex ParsedRegistry::AddSection(const Section& section) {
    const auto added = static_cast<SectionIndex>(sections.size());
    sections.push_back(section);
    sections.back().previous = std::exchange(keys[section.key].lastSection, added);
    return added;
}

ValueIndex ParsedRegistry::AddValue(KeyIndex key, const Value& value) {
    const auto added = static_cast<ValueIndex>(values.size());
    values.push_back(value);
    values.back().previous = std::exchange(keys[key].lastValue, added);
    return added;
}

void ParsedRegistry::AddRoots() {
    for (std::size_t index = 0; index < kRegistryRoots.size(); ++index) {
        KeyIndex& root = roots[index];
        if (root == 0 || keys[root].removed) {
            root = keys.FindOrAddChild(0, kRegistryRoots[index].name,
                                       Own(Spell(kRegistryRoots[index].name)));
        }
    }
}

std::string_view ParsedRegistry::Own(std::string text) {
    return owned.emplace_back(std::move(text));
}

std::string ParsedRegistry::Spell(std::u16string_view text) const {
    std::string spelt;
    EncodeText(form.encoding, text, spelt);
    return spelt;
}

ParsedRegistry::Offset ParsedRegistry::BeginOf(std::string_view part) const {
    return static_cast<Offset>(part.data() - bytes->data());
}

ParsedRegistry::Offset ParsedRegistry::EndOf(std::string_view part) const {
    return static_cast<Offset>(part.data() + part.size() - bytes->data());
}

}  // namespace platform
