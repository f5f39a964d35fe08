#!/usr/bin/python3
"""Writes the golden messages beside this file with Python's codecs alone, independent of the library.

Run it when a golden message is added; the tests compare with what is committed. All stand at 2026-11-19 10:30:49
+0900, process 4660, machine pc.example.test.
"""
import base64
import pathlib

HERE = pathlib.Path(__file__).parent
KANA = str.maketrans({"ｶ": "カ", "ﾅ": "ナ"})


def jis(text):
    """ISO-2022-JP with half-width kana made full-width; the texts here hold no others than these."""
    text = text.replace("ｶﾞ", "ガ").translate(KANA).replace("ﾞ", "゛")
    return text.encode("iso2022_jp")


def word(text):
    return b"=?iso-2022-jp?B?" + base64.b64encode(jis(text)) + b"?="


def words(*pieces):
    return b"\r\n\t".join(word(piece) for piece in pieces)


def lines(data):
    text = base64.b64encode(data)
    return b"".join(text[i:i + 72] + b"\r\n" for i in range(0, len(text), 72))


def message(sender=b"", middle=b"", mailer=b"", references=b"", subject=b"", rest=b"Content-Type: text/plain\r\n\r\n"):
    return (b"From: " + sender + b"\r\n" + middle
            + b"Date: Thu, 19 Nov 2026 10:30:49 +0900\r\n"
            + b"Message-ID: <20261119103049.4660@pc.example.test>\r\n"
            + b"X-Mailer: " + mailer + b"\r\n" + references
            + b"Subject: " + subject + b"\r\nMIME-Version: 1.0\r\n" + rest)


def japanese(text):
    return (b"Content-Type: text/plain;\r\n\tcharset=iso-2022-jp\r\nContent-Transfer-Encoding: base64\r\n\r\n"
            + lines(jis(text)))


BOUNDARY = b"BOUNDARY_6AFE5149_00001234"


def attached(kind, encoding, name, content):
    return (b"\r\n--" + BOUNDARY + b"\r\nContent-Type: " + kind + b";\r\n\tname=\"" + name
            + b"\"\r\nContent-Transfer-Encoding: " + encoding + b"\r\nContent-Disposition: attachment;\r\n\tfilename=\""
            + name + b"\"\r\n\r\n" + content)


def mixed(text, *parts):
    return (b"Content-Type: multipart/mixed;\r\n\tboundary=" + BOUNDARY + b"\r\n\r\n--" + BOUNDARY + b"\r\n"
            + text + b"".join(parts) + b"--" + BOUNDARY + b"--\r\n")


def counted(size):
    return bytes(i % 251 for i in range(size))


golden = {
    "empty-document": message(),
    "plain-letter": message(
        b'"Sender" <s@example.test>',
        b'Reply-To: reply@example.test\r\n'
        b'To: a@example.test,\r\n\t"B \\"b\\"" <b@example.test>,\r\n\tc@example.test\r\n'
        b'Cc: d@example.test\r\n'
        b'Bcc: e@example.test,\r\n\t"Sender" <s@example.test>\r\n',
        b"mailer 1.0", b"InReplyTo: <1@x>\r\nReferences: <0@x>\r\n\t<1@x>\r\n", b"s" * 500,
        b"Content-Type: text/plain\r\n\r\nDear\r\n\r\nHello\r\n\r\n.\r\nlast\r\n\r\nBye\r\n\r\n-- \r\nS"),
    "japanese-letter": message(
        word("山田太郎") + b" <s@example.test>",
        b"To: " + words("とても長い名前の", "人です") + b" <a@example.test>,\r\n\tb@example.test\r\n",
        b"", b"", words("日本語の件名を", "入力します"),
        japanese("こんにちは\r\n半角ｶﾞとｶとﾅﾞ\r\nabc")),
    "half-width-kana-subject": message(
        subject=words("ｶﾅ" * 7, "ｶﾅ" * 8 + "ｶ", "ﾞ"), rest=b"Content-Type: text/plain\r\n\r\n"),
    "attachments-at-line-borders": message(
        b"s@example.test", subject=b"files",
        rest=mixed(b"Content-Type: text/plain\r\n\r\ntext\r\n",
                   *(attached(b"application", b"base64", b"%d.bin" % size, lines(counted(size)))
                     for size in (0, 1, 53, 54, 540, 541)),
                   attached(b"application", b"base64", words("添付ファイルの", "名前.EML"), b""))),
    "attached-mail-with-nul": message(
        b"s@example.test", subject=b"mail",
        rest=mixed(japanese("本文"),
                   attached(b"message/rfc822", b"7bit", b"m.eml", b"a" * 1000 + b"e" * 20 + b"\r\n"),
                   attached(b"message/rfc822", b"7bit", b"empty.eml", b"\r\n"))),
}
for name, data in golden.items():
    (HERE / (name + ".eml")).write_bytes(data)
