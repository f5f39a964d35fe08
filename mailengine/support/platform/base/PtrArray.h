// CPtrArray: a growing array of untyped pointers that owns none of what they point to. One thread at a time.
#pragma once

#include <cstddef>
#include <vector>

// An index or size is never negative.
class CPtrArray {
public:
    int GetSize() const { return static_cast<int>(m_items.size()); }
    // The pointer at index, which must be below the size.
    void* GetAt(int index) const { return m_items[static_cast<std::size_t>(index)]; }
    // Stores pointer at index; an index behind the end grows the array, with null pointers in between.
    void SetAtGrow(int index, void* pointer) {
        if (index >= GetSize()) m_items.resize(static_cast<std::size_t>(index) + 1);
        m_items[static_cast<std::size_t>(index)] = pointer;
    }
    // Cuts or grows the array to size entries; the second number, a hint how to grow, is not used.
    void SetSize(int size, int /*growBy*/ = -1) { m_items.resize(static_cast<std::size_t>(size)); }

private:
    std::vector<void*> m_items;
};
