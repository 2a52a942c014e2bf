#include "platform/registry/text/registry_model.h"

#include <utility>

#include "platform/registry/text/registry_roots.h"

namespace platform {

RegistryModel::RegistryModel(std::string fileBytes, const FileEncoding& encoding)
    : bytes(std::make_unique<const std::string>(std::move(fileBytes))),
      textBegin(encoding.markSize),
      keys(encoding.encoding),
      values(1),
      sections(1) {
    form.encoding = encoding.encoding;
}

SectionIndex RegistryModel::AddSection(const Section& section) {
    const auto added = static_cast<SectionIndex>(sections.size());
    sections.push_back(section);
    sections.back().previous = std::exchange(keys[section.key].lastSection, added);
    return added;
}

ValueIndex RegistryModel::AddValue(KeyIndex key, const Value& value) {
    const auto added = static_cast<ValueIndex>(values.size());
    values.push_back(value);
    values.back().previous = std::exchange(keys[key].lastValue, added);
    return added;
}

void RegistryModel::AddRoots() {
    for (std::size_t index = 0; index < kRegistryRoots.size(); ++index) {
        KeyIndex& root = roots[index];
        if (root == 0 || keys[root].removed) {
            root = keys.FindOrAddChild(0, kRegistryRoots[index].name,
                                       Own(Spell(kRegistryRoots[index].name)));
        }
    }
}

std::string_view RegistryModel::Own(std::string text) {
    return owned.emplace_back(std::move(text));
}

std::string RegistryModel::Spell(std::u16string_view text) const {
    std::string spelt;
    EncodeText(form.encoding, text, spelt);
    return spelt;
}

RegistryModel::Offset RegistryModel::BeginOf(std::string_view part) const {
    return static_cast<Offset>(part.data() - bytes->data());
}

RegistryModel::Offset RegistryModel::EndOf(std::string_view part) const {
    return static_cast<Offset>(part.data() + part.size() - bytes->data());
}

}  // namespace platform
