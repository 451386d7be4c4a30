#pragma once

#include <list>
#include <new>
#include <span>
#include <vector>

/// Makes an all-zero record, owned by `owner`. Null when memory ran out.
template <typename Record>
Record* new_record(std::list<Record>& owner) {
    try {
        return &owner.emplace_back();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

/// Puts `record` at the end of the null-terminated `slots` and sets `list` to their first; the
/// first call starts from empty slots. False when memory ran out; the list is then as it was.
template <typename Record>
bool append(std::vector<Record*>& slots, Record**& list, Record* record) {
    try {
        slots.resize(slots.empty() ? 2 : slots.size() + 1);
    } catch (const std::bad_alloc&) {
        return false;
    }
    *(slots.end() - 2) = record;
    list = slots.data();
    return true;
}

/// The entries of a null-terminated list; none for a null list.
template <typename Record>
std::span<Record*> entries(Record** list) {
    std::size_t count = 0;
    while (list != nullptr && list[count] != nullptr) {
        ++count;
    }
    return {list, count};
}
