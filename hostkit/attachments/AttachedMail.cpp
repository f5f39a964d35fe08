#include <array>
#include <cerrno>
#include <hostkit/attachments/AttachedMail.h>
#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>

namespace hostkit {

void MessageForm::Take(std::string_view piece) {
    for (const char c : piece)
        TakeByte(static_cast<unsigned char>(c));
}

void MessageForm::TakeByte(unsigned char byte) {
    if (byte == '\n') {
        m_bBareEnds |= !m_bCr;
        if (!m_bCr) EndLine();
    } else {
        m_bBareEnds |= m_bCr;
        if (byte == '\r')
            EndLine();
        else if (++m_nLineBytes == kMaxLineBytes + 1)
            Note(Uncarriable::What::LongLine);
        if (byte == 0) Note(Uncarriable::What::Nul);
        if (byte > 0x7F) Note(Uncarriable::What::EightBit);
    }
    m_bCr = byte == '\r';
    ++m_nOffset;
}

void MessageForm::EndLine() {
    ++m_nLine;
    m_nLineBytes = 0;
}

void MessageForm::Note(Uncarriable::What what) {
    if (m_fault.what == Uncarriable::What::Nothing) m_fault = {what, m_nLine, m_nOffset};
}

MessageForm FormOf(const std::filesystem::path& path) {
    const auto refuse = [&] {
        throw Failure(FailureKind::Input, {Field::Attachment, path.native()},
                      Words("cannot be read: {1}", SystemWords(errno)));
    };
    const Descriptor file = OpenToRead(path);
    if (!file) refuse();
    MessageForm form;
    std::array<char, 64 * 1024> piece;
    for (ssize_t count = 1; count > 0;) {
        count = ReadSome(file.Number(), piece.data(), piece.size());
        if (count < 0) refuse();
        form.Take({piece.data(), static_cast<std::size_t>(count)});
    }
    return form;
}

std::string WordsFor(const Uncarriable& fault) {
    switch (fault.what) {
        case Uncarriable::What::Nothing:
            break;
        case Uncarriable::What::Nul:
            return Words("a NUL in line {1}, at byte {2}", fault.line, fault.offset);
        case Uncarriable::What::EightBit:
            return Words("a byte above 7F in line {1}, at byte {2}", fault.line, fault.offset);
        case Uncarriable::What::LongLine:
            return Words("more than 998 bytes in line {1}, at byte {2}", fault.line, fault.offset);
    }
    return "";
}

std::string LineEnds::Next(std::string_view piece) {
    std::string text;
    text.reserve(piece.size() + piece.size() / 16);
    for (const char c : piece) {
        if (c == '\r' || (c == '\n' && !m_bCr))
            text += "\r\n";
        else if (c != '\n')
            text += c;
        m_bCr = c == '\r';
    }
    return text;
}

}  // namespace hostkit
