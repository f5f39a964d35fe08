// CFileStatus: what CFile::GetStatus tells of a path.
#pragma once

#include <cstdint>

struct CFileStatus {
    std::int64_t m_size = 0;        // bytes of a regular file; 0 for anything else, a directory too
    std::uint32_t m_attribute = 0;  // FILE_ATTRIBUTE_... of FileSystem.h
};
