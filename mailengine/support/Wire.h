// The constants of the message format that writer and parser share.
#pragma once

namespace wire {

inline constexpr char kCrLf[] = "\r\n";
inline constexpr char kDelimiterHyphens[] = "--";  // in front of a boundary, and behind it in a closing delimiter
inline constexpr char kIso2022Jp[] = "iso-2022-jp";
inline constexpr char kBase64[] = "base64";

// 54 bytes make 72 characters a line; RFC 2045 6.8 allows 76.
inline constexpr unsigned int kBase64LineBytes = 54;
inline constexpr unsigned int kBase64LineCharacters = 72;
static_assert(kBase64LineBytes / 3 * 4 == kBase64LineCharacters);

}  // namespace wire
