// CStringArray: a growing array of CString, held by value. One thread at a time.
#pragma once

#include <cstddef>
#include <vector>

#include <mailengine/support/platform/text/String.h>

// An index or size is never negative.
class CStringArray {
public:
    int GetSize() const { return static_cast<int>(m_items.size()); }
    // A copy of the text at index, which must be below the size.
    CString GetAt(int index) const { return m_items[static_cast<std::size_t>(index)]; }
    // Stores text at index; an index behind the end grows the array, with empty texts in between.
    void SetAtGrow(int index, const CString& text) {
        if (index >= GetSize()) m_items.resize(static_cast<std::size_t>(index) + 1);
        m_items[static_cast<std::size_t>(index)] = text;
    }
    // Cuts or grows the array to size entries; the second number, a hint how to grow, is not used.
    void SetSize(int size, int /*growBy*/ = -1) { m_items.resize(static_cast<std::size_t>(size)); }

private:
    std::vector<CString> m_items;
};
