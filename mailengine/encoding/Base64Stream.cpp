#include <algorithm>

#include <mailengine/encoding/Base64Groups.h>
#include <mailengine/encoding/Base64Stream.h>

std::size_t CBase64Stream::Decode(std::string_view piece, unsigned char* buffer) {
    m_nTextLength += piece.size();
    const std::size_t head = m_nWaiting > 0 ? CompleteGroup(piece, buffer) : 0;
    if (m_nWaiting > 0) return head;
    // Every group has its 3 bytes of room, so only a head of a group can be left over.
    const base64::Progress done = base64::DecodeGroups(piece, buffer + head, MaxBytes(piece.size()));
    m_nWaiting = piece.copy(m_waiting, 3, done.taken);
    return head + done.made;
}

std::size_t CBase64Stream::CompleteGroup(std::string_view& piece, unsigned char* buffer) {
    const std::size_t taken = piece.copy(m_waiting + m_nWaiting, 4 - m_nWaiting);
    piece.remove_prefix(taken);
    m_nWaiting += taken;
    if (m_nWaiting < 4) return 0;
    m_nWaiting = 0;
    return base64::DecodeOddGroup(m_waiting, 4, buffer);
}

int CBase64Stream::Finish(unsigned char* buffer, std::size_t& written) {
    written = 0;
    if (Refuses(m_nTextLength)) return 0;
    if (m_nWaiting > 0) written = base64::DecodeOddGroup(m_waiting, m_nWaiting, buffer);
    m_nWaiting = 0;
    return 1;
}
