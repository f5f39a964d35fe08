// The constants of the message format that writer, encoding and parser share. The names of fields and media types are
// compared ignoring case (RFC 2045 5.1, 5322 1.2.2).
#pragma once

namespace wire {

inline constexpr char kCrLf[] = "\r\n";
inline constexpr char kDelimiterHyphens[] = "--";  // in front of a boundary, and behind it in a closing delimiter
inline constexpr char kIso2022Jp[] = "iso-2022-jp";
inline constexpr char kBase64[] = "base64";
inline constexpr char kContentType[] = "Content-Type";
inline constexpr char kContentTransferEncoding[] = "Content-Transfer-Encoding";
inline constexpr char kTextPlain[] = "text/plain";
inline constexpr char kMultipartMixed[] = "multipart/mixed";
inline constexpr char kAttachedMail[] = "message/rfc822";

// 54 bytes make 72 characters a line; RFC 2045 6.8 allows 76.
inline constexpr unsigned int kBase64LineBytes = 54;
inline constexpr unsigned int kBase64LineCharacters = 72;
inline constexpr unsigned int kBase64LineWithEnd = kBase64LineCharacters + sizeof kCrLf - 1;
static_assert(kBase64LineBytes / 3 * 4 == kBase64LineCharacters);

}  // namespace wire
