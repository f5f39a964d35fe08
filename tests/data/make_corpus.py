#!/usr/bin/python3
"""Writes the messages of the corpus that Python's email package makes: python-*.eml beside the ones written by hand.

Run it when one is added; the expected documents are written by hand. Python's order of fields is kept where that is
the trait; elsewhere MIME-Version is set first, since the engine reads what stands below it.
"""
import email.charset
import email.mime.image
import email.mime.message
import email.mime.multipart
import email.mime.text
import email.policy
import pathlib
from email.message import EmailMessage

HERE = pathlib.Path(__file__).parent
JAPANESE = "日本語の本文です。\n表示と能力\n"


def fill(message, subject="trait", version_first=True):
    message["From"] = "Sender <sender@example.test>"
    message["To"] = "rcpt@example.test"
    message["Subject"] = subject
    message["Date"] = "Thu, 19 Nov 2026 10:30:49 +0900"
    message["Message-ID"] = "<1@example.test>"
    if version_first:
        message["MIME-Version"] = "1.0"
    return message


def save(name, message):
    for number, part in enumerate(part for part in message.walk() if part.get_content_maintype() == "multipart"):
        part.set_boundary(f"=_{number}_=")
    (HERE / (name + ".eml")).write_bytes(message.as_bytes(policy=message.policy.clone(linesep="\r\n")))


def made(**k):
    return fill(EmailMessage(policy=email.policy.SMTP), **k)


message = made(version_first=False)
message.set_content("x\n")
save("rfc/python-mime-version-behind-content-type", message)

message = made()
message.set_content("plain\n")
message.add_alternative("<p>html</p>\n", subtype="html")
message.get_payload()[1].add_related(b"GIF87a", "image", "gif", cid="<1>", params={"name": "dot.gif"})
message.add_attachment(bytes(range(256)), "application", "octet-stream", filename="a.bin", params={"name": "a.bin"})
save("rfc/python-mixed-alternative-related", message)

message = made()
message.set_content("text\n")
message.add_attachment(b"%PDF", "application", "pdf", filename="a.pdf")
save("rfc/python-name-in-disposition-only", message)

message = made()
message.set_content("text\n")
message.add_attachment(b"%PDF", "application", "pdf", params={"name": "長い名前の添付ファイル.pdf"})
save("japanese/python-name-in-utf8-extended-value", message)

message = made()
message.set_content("text\n")
inner = made(subject="Re: inner")
inner.set_content("inner\n")
message.add_attachment(inner)
save("rfc/python-attached-mail", message)

message = made(subject="日本語のとても長い件名、二行になるはずの件名です。それでも足りないなら、もっと長くします。")
message.set_content(JAPANESE)
save("japanese/python-utf8-mail", message)

# Mail as it was written before UTF-8: body in ISO-2022-JP as it is, header in B words.
jis = email.charset.Charset("iso-2022-jp")
message = fill(email.mime.text.MIMEText(JAPANESE.encode("iso-2022-jp").decode("ascii"), "plain", "us-ascii"),
               subject=email.header.Header("日本語のとても長い件名、二行になるはずの件名です。", jis, header_name="Subject"),
               version_first=False)
del message["Content-Type"]
message["Content-Type"] = 'text/plain; charset="iso-2022-jp"'
save("japanese/python-iso-2022-jp", message)

message = email.mime.multipart.MIMEMultipart("related", type="text/html")
content_type = message["Content-Type"]
del message["Content-Type"]
fill(message, version_first=False)
message["Content-Type"] = content_type
message.attach(email.mime.text.MIMEText("<img src=cid:1>\n", "html"))
image = email.mime.image.MIMEImage(b"GIF87a", "gif", name="点.gif".encode("iso-2022-jp").decode("ascii"))
message.attach(image)
save("japanese/python-raw-iso-2022-jp-name", message)
