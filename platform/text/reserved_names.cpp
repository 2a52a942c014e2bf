#include "platform/text/reserved_names.h"

#include <sys/random.h>

#include <array>

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

}  // namespace

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
