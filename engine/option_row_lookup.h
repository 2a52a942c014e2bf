#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

// The row of a task's table that belongs to `option`. Each row has a field `option`, and there is
// one for each option that the table's task is given.
template <typename Row, std::size_t Count>
const Row& RowOf(const Row (&rows)[Count], std::uint32_t option) {
    return *std::find_if(std::begin(rows), std::end(rows),
                         [option](const Row& row) { return row.option == option; });
}
