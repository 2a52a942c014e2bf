#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace platform {

// A set of names that differ in more than case, kept as hashes: a name that is in it may be there,
// a name that is not is not.
class NameHashSet {
  public:
    void Add(std::u16string_view name);
    bool MayHold(std::u16string_view name) const;
    std::size_t size() const { return count_; }

  private:
    void Put(std::uint32_t hash);

    std::vector<std::uint32_t> slots_;  // a power of two of them, 0 where free
    std::size_t count_ = 0;
};

}  // namespace platform
