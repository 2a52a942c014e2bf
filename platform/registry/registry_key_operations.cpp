#include "platform/registry/registry_key_operations.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "platform/diagnostics/run_log.h"
#include "platform/registry/text/registry_roots.h"

namespace platform {
namespace {

constexpr std::size_t kValueNameLimit = 255;

std::uintptr_t Number(HKEY key) {
    return reinterpret_cast<std::uintptr_t>(key);
}

HKEY Handle(std::uintptr_t number) {
    return reinterpret_cast<HKEY>(number);  // NOLINT(performance-no-int-to-ptr)
}

bool IsRoot(HKEY key) {
    return std::any_of(kRegistryRoots.begin(), kRegistryRoots.end(),
                       [key](const RegistryRoot& root) { return root.handle == key; });
}

std::u16string_view Text(const WCHAR* text) {
    return text == nullptr ? std::u16string_view() : std::u16string_view(text);
}

// `path` with the names of `subkey` below it, folded; `path` itself when there are none.
std::u16string Join(std::u16string path, std::u16string_view subkey) {
    const std::u16string folded = FoldText(subkey);
    for (std::size_t begin = 0; begin < folded.size();) {
        const std::size_t end = std::min(folded.find(u'\\', begin), folded.size());
        if (end > begin) {
            path.append(u"\\").append(folded, begin, end - begin);
        }
        begin = end + 1;
    }
    return path;
}

bool IsAtOrBelow(std::u16string_view path, std::u16string_view top) {
    return path.starts_with(top) && (path.size() == top.size() || path[top.size()] == u'\\');
}

// Where a value is remembered. The two are terminated texts, so that a terminator can stand
// between.
std::u16string ValuePath(const std::u16string& path, std::u16string_view name) {
    return path + u'\0' + FoldText(name);
}

LONG CopyOut(const RegistryData& value, DWORD* type, BYTE* data, DWORD* size) {
    if (type != nullptr) {
        *type = value.type;
    }
    if (size == nullptr) {
        return data == nullptr ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
    }
    const DWORD room = std::exchange(*size, static_cast<DWORD>(value.bytes.size()));
    if (data == nullptr || value.bytes.empty()) {
        return ERROR_SUCCESS;
    }
    if (room < value.bytes.size()) {
        return ERROR_MORE_DATA;
    }
    std::memcpy(data, value.bytes.data(), value.bytes.size());
    return ERROR_SUCCESS;
}

}  // namespace

Registry::Registry(RegistryFileOnDisk file, EditedRegistryText text, const FileVersion& version)
    : file_(std::move(file)), text_(std::move(text)), version_(version) {
    for (const RegistryRoot& root : kRegistryRoots) {
        open_[Number(root.handle)].path = FoldText(root.name);
    }
}

Result<std::unique_ptr<Registry>> Registry::Open(int directory, std::string name, AccessTime time) {
    RegistryFileOnDisk file(directory, std::move(name), time);
    Result<ReadText> read = Read(file);
    if (!read) {
        return tl::unexpected<Failure>(read.error());
    }
    return std::unique_ptr<Registry>(
        new Registry(std::move(file), std::move(read->text), read->version));
}

Result<Registry::ReadText> Registry::Read(const RegistryFileOnDisk& file) {
    Result<RegistryFileOnDisk::Content> content = file.Read();
    if (!content) {
        return tl::unexpected<Failure>(content.error());
    }
    Result<EditedRegistryText> text = EditedRegistryText::Parse(std::move(content->bytes));
    if (!text) {
        text.error().object = file.name() + ", " + text.error().object;
        return tl::unexpected<Failure>(text.error());
    }
    return ReadText{std::move(*text), content->version};
}

Registry::OpenKey* Registry::FindOpen(HKEY key) {
    const auto found = open_.find(Number(key));
    return found == open_.end() ? nullptr : &found->second;
}

// The open key of a handle and its number in the text, or the code for why there is none.
LONG Registry::FindKey(HKEY handle, OpenKey*& open, KeyIndex& key) {
    open = FindOpen(handle);
    if (open == nullptr) {
        return ERROR_INVALID_HANDLE;
    }
    // By its path each time: a file that is read anew gives its keys other numbers.
    key = open->deleted ? 0 : text_.FindKey(open->path);
    return key == 0 ? ERROR_KEY_DELETED : ERROR_SUCCESS;
}

LONG Registry::RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD /*options*/, DWORD /*access*/,
                             HKEY* result) {
    if (result == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    *result = nullptr;
    OpenKey* open = nullptr;
    KeyIndex parent = 0;
    if (const LONG code = FindKey(key, open, parent); code != ERROR_SUCCESS) {
        return code;
    }
    const std::u16string path = Join(open->path, Text(subkey));
    if (text_.FindKey(path) == 0) {
        return ERROR_FILE_NOT_FOUND;
    }
    open_[++lastHandle_].path = path;
    *result = Handle(lastHandle_);
    return ERROR_SUCCESS;
}

LONG Registry::RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* /*reserved*/, DWORD* type,
                                BYTE* data, DWORD* size) {
    OpenKey* open = nullptr;
    KeyIndex found = 0;
    if (const LONG code = FindKey(key, open, found); code != ERROR_SUCCESS) {
        return code;
    }
    const std::optional<RegistryData> value = Value(*open, found, Text(name));
    return value ? CopyOut(*value, type, data, size) : ERROR_FILE_NOT_FOUND;
}

std::optional<RegistryData> Registry::Value(const OpenKey& open, KeyIndex key,
                                            std::u16string_view name) const {
    std::optional<RegistryData> value = text_.Value(key, name);
    if (value && value->type == REG_SZ && !openTexts_.empty()) {
        const auto text = openTexts_.find(ValuePath(open.path, name));
        if (text != openTexts_.end() && text->second.stored == *value) {
            return text->second.set;
        }
    }
    return value;
}

// Remembers the value as it was set, if the file will give it otherwise.
void Registry::NoteText(const std::u16string& path, std::u16string_view name,
                        const RegistryData& data) {
    const std::optional<RegistryData> stored = text_.Value(text_.FindKey(path), name);
    const std::u16string place = ValuePath(path, name);
    if (stored && *stored != data) {
        openTexts_[place] = {*stored, data};
    } else {
        openTexts_.erase(place);
    }
}

LONG Registry::RegSetValueExW(HKEY key, const WCHAR* name, DWORD /*reserved*/, DWORD type,
                              const BYTE* data, DWORD size) {
    OpenKey* open = nullptr;
    KeyIndex found = 0;
    if (const LONG code = FindKey(key, open, found); code != ERROR_SUCCESS) {
        return code;
    }
    const std::u16string_view valueName = Text(name);
    if ((data == nullptr && size > 0) || valueName.size() > kValueNameLimit) {
        return ERROR_INVALID_PARAMETER;
    }
    RegistryData value{type, {}};
    if (size > 0) {
        value.bytes.assign(data, data + size);
    }
    const SetResult result = text_.SetValue(found, valueName, type, value.bytes);
    if (result == SetResult::kUnfit) {
        return ERROR_INVALID_PARAMETER;
    }
    NoteText(open->path, valueName, value);
    if (result == SetResult::kChanged) {
        AddChange({open->path, false, std::u16string(valueName), std::move(value)});
    }
    return ERROR_SUCCESS;
}

// A value that is set over and over while nothing can be stored is one change all the same.
void Registry::AddChange(Change change) {
    if (!change.deletion) {
        std::erase_if(pending_, [&](const Change& old) {
            return !old.deletion && old.path == change.path &&
                   FoldText(old.name) == FoldText(change.name);
        });
    }
    change.number = ++made_;
    pending_.push_back(std::move(change));
    if (onChange_) {
        onChange_();
    }
}

LONG Registry::RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* /*reserved*/,
                             WCHAR* /*className*/, DWORD* /*classSize*/, void* /*lastWriteTime*/) {
    OpenKey* open = nullptr;
    KeyIndex found = 0;
    if (const LONG code = FindKey(key, open, found); code != ERROR_SUCCESS) {
        return code;
    }
    if (name == nullptr || size == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    const std::optional<std::u16string> child = text_.ChildName(found, index);
    if (!child) {
        return ERROR_NO_MORE_ITEMS;
    }
    if (child->size() >= *size) {
        return ERROR_MORE_DATA;
    }
    *size = static_cast<DWORD>(child->size());
    std::copy_n(child->c_str(), child->size() + 1, name);
    return ERROR_SUCCESS;
}

LONG Registry::RegDeleteKeyW(HKEY key, const WCHAR* subkey) {
    OpenKey* open = nullptr;
    KeyIndex parent = 0;
    if (const LONG code = FindKey(key, open, parent); code != ERROR_SUCCESS) {
        return code;
    }
    const std::u16string path = Join(open->path, Text(subkey));
    if (path == open->path) {
        return ERROR_INVALID_PARAMETER;
    }
    const KeyIndex gone = text_.FindKey(path);
    if (gone == 0) {
        return ERROR_FILE_NOT_FOUND;
    }
    text_.DeleteKey(gone);
    for (auto& [number, other] : open_) {
        other.deleted = other.deleted || IsAtOrBelow(other.path, path);
    }
    AddChange({path, true, {}, {}});
    return ERROR_SUCCESS;
}

LONG Registry::RegCloseKey(HKEY key) {
    if (FindOpen(key) == nullptr) {
        return ERROR_INVALID_HANDLE;
    }
    if (!IsRoot(key)) {
        open_.erase(Number(key));
    }
    return ERROR_SUCCESS;
}

// A key that is to be deleted and is gone already is no loss.
bool Registry::Apply(const Change& change, EditedRegistryText& text) {
    const KeyIndex key = text.FindKey(change.path);
    if (key != 0 && change.deletion) {
        text.DeleteKey(key);
    } else if (key != 0) {
        return text.SetValue(key, change.name, change.data.type, change.data.bytes) !=
               SetResult::kUnfit;
    }
    return key != 0 || change.deletion;
}

Status Registry::StoreRegistry() {
    tried_ = made_;
    Status stored = Store();
    while (!stored && !pending_.empty() && tryAgain_ && tryAgain_(stored.error())) {
        stored = Store();
    }
    if (!stored) {
        RunLog& log = LogInUse::Current();
        log.NoteNotStored();
        log.SayUndone("changes to the registry are not stored: " + Describe(stored.error()));
    }
    return stored;
}

Status Registry::Store() {
    // Another program can store something else again and again, but hardly so often.
    constexpr int kTries = 8;
    for (int tries = 0; !pending_.empty(); ++tries) {
        if (Status refreshed = Refresh(); !refreshed) {
            return refreshed;
        }
        // Written from the file as it was read last, so that no other program's change is undone.
        const Result<std::optional<FileVersion>> replaced =
            file_.Replace(text_.Serialize(), version_);
        if (!replaced) {
            return tl::unexpected<Failure>(replaced.error());
        }
        if (*replaced) {
            version_ = **replaced;
            pending_.clear();
            stored_ = made_;
        } else if (tries == kTries) {
            return FailOf({"store it", {}, EBUSY, "another program stores it over and over"},
                          file_.name());
        }
    }
    return lost_.empty() ? Status() : SayLost();
}

// Once for each storing in which changes were lost.
Status Registry::SayLost() {
    if (lost_.size() == lostSaid_) {
        return {};
    }
    lostSaid_ = lost_.size();
    return FailOf({"store every change", {}, 0, "another program has deleted the keys of some"},
                  file_.name());
}

// Takes over what other programs have stored, if there is anything.
Status Registry::Refresh() {
    if (isRehearsed()) {
        return {};  // what is rehearsed is in no file
    }
    const Result<FileVersion> current = file_.Look();
    if (!current) {
        return tl::unexpected<Failure>(current.error());
    }
    if (*current == version_) {
        return {};
    }
    Result<ReadText> read = Read(file_);
    if (!read) {
        return tl::unexpected<Failure>(read.error());
    }
    for (const Change& change : pending_) {
        if (!Apply(change, read->text)) {
            lost_.insert(change.number);
        }
    }
    text_ = std::move(read->text);
    version_ = read->version;
    return {};
}

Status Registry::ReserveRoom() {
    // Beside the file as it is now: the longest text that a step writes, and its name.
    constexpr std::size_t kGrowth = 8192;
    if (!version_.exists()) {
        return {};
    }
    if (!pending_.empty()) {
        return FailOf({"keep room for it", {}, 0, "its changes could not be stored"}, file_.name());
    }
    return file_.ReserveRoom(version_.size() + kGrowth);
}

}  // namespace platform
