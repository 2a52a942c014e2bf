#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/registry/registry_file_on_disk.h"
#include "platform/registry/text/edited_registry_text.h"
#include "platform/seam/device_store.h"

namespace platform {

// The registry of a device: the operations of core/registry_operations.h on its file. The functions
// that bear the platform's names keep the contracts there.
//
// Changes are seen at once and stored by StoreRegistry(). What other programs have changed in the
// file by then is kept: the file is read anew, and the changes of this process alone are applied to
// it. A change to a key that another program has deleted is dropped with the key.
class Registry : public DeviceRegistry {
  public:
    // Reads the registry from a file as that of RegistryFileOnDisk; one without keys when there is
    // none, which is then made with the first change.
    static Result<std::unique_ptr<Registry>> Open(int directory, std::string name = kRegistryName,
                                                  AccessTime time = AccessTime::Shown);

    LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                       HKEY* result) override;
    LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                          DWORD* size) override;
    LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                        DWORD size) override;
    LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                       WCHAR* className, DWORD* classSize, void* lastWriteTime) override;
    LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey) override;
    LONG RegCloseKey(HKEY key) override;

    // Where its file is, which stays its owner's.
    int directory() const { return file_.directory(); }

    RegistryChanges ChangesOfRegistry() const override { return {made_, stored_}; }
    bool IsChangeLost(std::uint64_t change) const override { return lost_.contains(change); }

    // From now on `tryAgain` is asked after a storing that has failed, with why, before changes are
    // given up.
    void OfferRetry(std::function<bool(const Failure& failure)> tryAgain) {
        tryAgain_ = std::move(tryAgain);
    }

    // A change that is lost counts as stored, and the storing in which it was lost as failed.
    Status StoreRegistry() override;

    // Whether there are changes that StoreRegistry has not tried to store yet.
    bool HasUntriedChanges() const { return made_ > tried_; }

    // From now on changes are seen, and storing them only finds out whether it could be done.
    void Rehearse(RegistryFileOnDisk::RehearsedRoom room) { file_.Rehearse(std::move(room)); }
    bool isRehearsed() const { return file_.isRehearsed(); }

    // `action` is called with each change, which is in memory alone by then.
    void OnChange(std::function<void()> action) { onChange_ = std::move(action); }

    // Whether changes could be stored, but for the room. A device without a registry has none.
    Status CheckStorable() const { return file_.CheckReplaceable(); }

    // Keeps the room that the next storing takes. A registry that could not be stored the last time
    // counts as one without room.
    Status ReserveRoom();

  private:
    // An open key, or a root. Paths are folded and have one backslash between names.
    struct OpenKey {
        std::u16string path;
        bool deleted = false;
    };

    // What was done to the registry since it was stored.
    struct Change {
        std::u16string path;
        bool deletion = false;
        std::u16string name;
        RegistryData data;
        std::uint64_t number = 0;  // counted from 1
    };

    // A text that was set without a terminator, which its form in the file does not show.
    struct OpenText {
        RegistryData stored;  // as the file gives it
        RegistryData set;
    };

    Registry(RegistryFileOnDisk file, EditedRegistryText text, const FileVersion& version);

    struct ReadText {
        EditedRegistryText text;
        FileVersion version;
    };
    static Result<ReadText> Read(const RegistryFileOnDisk& file);
    OpenKey* FindOpen(HKEY key);
    LONG FindKey(HKEY handle, OpenKey*& open, KeyIndex& key);
    std::optional<RegistryData> Value(const OpenKey& open, KeyIndex key,
                                      std::u16string_view name) const;
    void NoteText(const std::u16string& path, std::u16string_view name, const RegistryData& data);
    void AddChange(Change change);
    Status Store();
    static bool Apply(const Change& change, EditedRegistryText& text);
    Status SayLost();
    Status Refresh();

    RegistryFileOnDisk file_;
    EditedRegistryText text_;
    FileVersion version_;
    std::unordered_map<std::uintptr_t, OpenKey> open_;
    std::uintptr_t lastHandle_ = 0;
    std::vector<Change> pending_;
    std::unordered_map<std::u16string, OpenText> openTexts_;  // by path and name
    std::function<void()> onChange_;
    std::function<bool(const Failure& failure)> tryAgain_;
    std::uint64_t made_ = 0;
    std::uint64_t stored_ = 0;
    std::uint64_t tried_ = 0;
    std::set<std::uint64_t> lost_;  // numbers of changes
    std::size_t lostSaid_ = 0;
};

}  // namespace platform
