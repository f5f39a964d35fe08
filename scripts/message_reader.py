"""Reads messages as a stranger would: Python's email package, and ISO-2022-JP (RFC 1468) undone here.

Python's own iso2022_jp knows JIS X 0208 alone. The rows that NEC added (13, and 89 to 92 with names such as U+9AD9)
are what every Japanese mailer reads: double-byte runs become Shift-JIS by the published arithmetic, and Python's cp932
reads that. Where Python's own codec can read a text, both have to agree.
"""
import email
import email.header
import email.policy
import email.utils
import re
import unicodedata

RUN = re.compile(rb"\x1b(\$[@B]|\([BJ])")


def _shift_jis(pair):
    row, cell = pair[0] - 0x21, pair[1] - 0x21
    assert 0 <= row < 94 and 0 <= cell < 94, f"not a double-byte character: {pair.hex()}"
    lead = row // 2 + (0x81 if row < 62 else 0xC1)
    trail = cell + 0x9F if row % 2 else cell + 0x40 + (cell >= 63)
    return bytes([lead, trail])


def _runs(data):
    pieces = RUN.split(data)
    yield b"(B", pieces[0]
    yield from zip(pieces[1::2], pieces[2::2])


def iso_2022_jp(data):
    """The text of ISO-2022-JP bytes; an error for what does not end in single-byte mode."""
    text, escape = "", b"(B"
    for escape, run in _runs(data):
        if escape[:1] == b"$":
            run = b"".join(_shift_jis(run[i:i + 2]) for i in range(0, len(run), 2))
            text += run.decode("cp932")
        else:
            text += run.decode("ascii")
    assert escape[:1] == b"(", "the text ends in double-byte mode"
    try:
        assert data.decode("iso2022_jp") == text
    except UnicodeDecodeError:
        pass  # a row that Python's codec lacks
    return text


def header_text(value):
    """A field body with its encoded words (RFC 2047) decoded."""
    text = ""
    for piece, charset in email.header.decode_header(value):
        if charset is None:
            text += piece if isinstance(piece, str) else piece.decode("ascii")
        else:
            assert charset == "iso-2022-jp", charset
            text += iso_2022_jp(piece)
    return text


def full_width(text):
    """Half-width kana as a mail carries them: ISO-2022-JP has the full-width ones alone."""
    kana = re.compile("[\uff61-\uff9f]+")
    return kana.sub(lambda run: unicodedata.normalize("NFKC", run.group()), text)


class Message:
    def __init__(self, data):
        self.mail = email.message_from_bytes(data, policy=email.policy.compat32)
        self.parts = self.mail.get_payload() if self.mail.is_multipart() else []

    def subject(self):
        return header_text(self.mail["Subject"])

    def addresses(self, field):
        """[(name, address)] of every field of that name."""
        values = [re.sub(r"\r?\n\t", " ", value) for value in self.mail.get_all(field, [])]
        return [(header_text(name), address) for name, address in email.utils.getaddresses(values)]

    def body(self):
        part = self.parts[0] if self.parts else self.mail
        data = part.get_payload(decode=True)
        return iso_2022_jp(data) if part.get_param("charset") == "iso-2022-jp" else data.decode("ascii")

    def attachments(self):
        """[(name, bytes)]; an attached mail is given back as the lines that it came in."""
        return [(header_text(part.get_filename()), self._content(part)) for part in self.parts[1:]]

    @staticmethod
    def _content(part):
        if part.get_content_type() != "message/rfc822":
            return part.get_payload(decode=True)
        unfolded = email.policy.compat32.clone(linesep="\r\n", max_line_length=None)
        return part.get_payload(0).as_bytes(policy=unfolded)
