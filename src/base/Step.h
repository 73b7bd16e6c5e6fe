// The step that may fail: a conversion, an index outside a table, a library that is missing.
//
// A failing step is left out and its procedure goes on with the next one. Step() makes such places
// visible; it is used around nothing else, so that it never hides a programming error.
#pragma once

#include <utility>

namespace quarnel {

/// Runs `action` on what `value` (an optional or a pointer) holds; does nothing when it holds nothing.
template <class Maybe, class Action>
void Step(Maybe&& value, Action&& action) {
    if (value) std::forward<Action>(action)(*std::forward<Maybe>(value));
}

/// The element of `table` at `index`, or null outside the table.
template <class Table, class Index>
auto* ElementAt(Table& table, Index index) {
    const bool inside = index >= 0 && static_cast<decltype(table.size())>(index) < table.size();
    return inside ? &table[static_cast<decltype(table.size())>(index)] : nullptr;
}

} // namespace quarnel
