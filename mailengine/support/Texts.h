// Texts: all that the library says to a user, as code page 932 bytes. TextList.inc has them beside what they read, and
// a test holds the two against each other.
#pragma once

namespace texts {

#define TEXT(name, reads, bytes) inline constexpr char name[] = bytes;
#include <mailengine/support/TextList.inc>
#undef TEXT

}  // namespace texts
