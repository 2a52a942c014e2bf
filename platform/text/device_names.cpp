#include "platform/text/device_names.h"

#include <sys/random.h>
#include <utf8proc.h>

#include <algorithm>

#include "platform/text/unicode.h"

namespace platform {

namespace {

constexpr std::string_view kReservedPrefix = ".fennelbright-";
constexpr std::size_t kReservedDigits = 16;
constexpr std::string_view kHexDigits = "0123456789abcdef";

struct Purpose {
    ReservedFor purpose;
    std::string_view word;
};

constexpr Purpose kPurposes[] = {
    {ReservedFor::NewContent, "new-"},
    {ReservedFor::SetAside, "aside-"},
    {ReservedFor::WayBack, "back-"},
};

void AppendText(HostName& name, std::string_view text) {
    for (const char character : text) {
        name.Append(character);
    }
}

HostName ReservedPrefix(ReservedFor purpose) {
    HostName name;
    AppendText(name, kReservedPrefix);
    AppendText(name, kPurposes[static_cast<std::size_t>(purpose)].word);
    return name;
}

bool IsAllowed(utf8proc_int32_t character) {
    constexpr std::string_view forbidden = "\\/:*?\"<>|";
    return character >= 0x20 &&
           (character >= 0x80 ||
            forbidden.find(static_cast<char>(character)) == std::string_view::npos);
}

bool IsEscape(utf8proc_int32_t character) {
    return character >= kEscapeBase && character <= kEscapeBase + 0xFF;
}

// Maps what `rest` begins with and returns how many bytes that was; 0 when it does not fit.
std::size_t MapFirst(std::string_view rest, DeviceName& device) {
    utf8proc_int32_t character = -1;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(rest.data()),
                                         static_cast<utf8proc_ssize_t>(rest.size()), &character);
    if (length > 0 && IsAllowed(character) && !IsEscape(character)) {
        bool fits = true;
        AppendUtf16(character, [&](WCHAR unit) { fits = device.Append(unit) && fits; });
        return fits ? static_cast<std::size_t>(length) : 0;
    }
    const auto byte = static_cast<unsigned char>(rest.front());
    return device.Append(static_cast<WCHAR>(kEscapeBase + byte)) ? 1 : 0;
}

bool AppendBytes(HostName& host, utf8proc_int32_t character) {
    if (IsEscape(character)) {
        return host.Append(static_cast<char>(character - kEscapeBase));
    }
    bool fits = true;
    AppendUtf8(character, [&](char byte) { fits = host.Append(byte) && fits; });
    return fits;
}

}  // namespace

DeviceName DeviceNameOf(std::string_view host) {
    DeviceName device;
    while (!host.empty()) {
        const std::size_t mapped = MapFirst(host, device);
        if (mapped == 0) {
            return {};
        }
        host.remove_prefix(mapped);
    }
    return device;
}

bool HostNameOf(std::u16string_view device, HostName& host) {
    host = HostName();
    for (std::size_t index = 0; index < device.size();) {
        if (!AppendBytes(host, NextCharacter(device, index))) {
            return false;
        }
    }
    const std::string_view bytes = host.view();
    const bool canExist = !bytes.empty() && bytes != "." && bytes != ".." &&
                          bytes.find('/') == std::string_view::npos &&
                          bytes.find('\0') == std::string_view::npos && !IsReservedName(bytes);
    return canExist && DeviceNameOf(bytes).view() == device;
}

WCHAR FoldUnit(WCHAR unit) {
    if (unit < 0x80) {
        return unit >= u'a' && unit <= u'z' ? static_cast<WCHAR>(unit - u'a' + u'A') : unit;
    }
    const utf8proc_int32_t upper = utf8proc_toupper(unit);
    return upper < 0x80 || upper > 0xFFFF ? unit : static_cast<WCHAR>(upper);
}

bool SameName(std::u16string_view left, std::u16string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](WCHAR a, WCHAR b) { return FoldUnit(a) == FoldUnit(b); });
}

std::uint32_t NameHash(std::u16string_view name) {
    std::uint32_t hash = 2166136261U;
    for (const WCHAR unit : name) {
        hash = (hash ^ FoldUnit(unit)) * 16777619U;
    }
    return hash ^ hash >> 15;
}

bool MatchesPattern(std::u16string_view pattern, std::u16string_view name) {
    if (pattern == u"*.*") {
        return true;
    }
    std::size_t at = 0;
    std::size_t place = 0;
    std::size_t star = std::u16string_view::npos;
    std::size_t starPlace = 0;
    while (place < name.size()) {
        if (at < pattern.size() && pattern[at] == u'*') {
            star = at++;
            starPlace = place;
        } else if (at < pattern.size() &&
                   (pattern[at] == u'?' || FoldUnit(pattern[at]) == FoldUnit(name[place]))) {
            ++at;
            ++place;
        } else if (star != std::u16string_view::npos) {
            at = star + 1;
            place = ++starPlace;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(u'*', at) == std::u16string_view::npos;
}

std::optional<ReservedFor> PurposeOf(std::string_view host) {
    if (!host.starts_with(kReservedPrefix)) {
        return std::nullopt;
    }
    for (const Purpose& purpose : kPurposes) {
        const std::size_t length = kReservedPrefix.size() + purpose.word.size();
        if (host.size() == length + kReservedDigits &&
            host.substr(kReservedPrefix.size()).starts_with(purpose.word) &&
            host.find_first_not_of(kHexDigits, length) == std::string_view::npos) {
            return purpose.purpose;
        }
    }
    return std::nullopt;
}

bool IsReservedName(std::string_view host) {
    return PurposeOf(host).has_value();
}

HostName NewReservedName(ReservedFor purpose) {
    std::array<unsigned char, kReservedDigits / 2> random{};
    // Cannot fail for so few bytes once the machine has started; equal names are noticed by the
    // making.
    [[maybe_unused]] const ssize_t got = getrandom(random.data(), random.size(), 0);
    HostName name = ReservedPrefix(purpose);
    for (const unsigned char byte : random) {
        name.Append(kHexDigits[byte >> 4]);
        name.Append(kHexDigits[byte & 0xF]);
    }
    return name;
}

HostName ReservedCounterpart(std::string_view reserved, ReservedFor purpose) {
    HostName name = ReservedPrefix(purpose);
    AppendText(name, reserved.substr(reserved.size() - kReservedDigits));
    return name;
}

}  // namespace platform
