#!/usr/bin/python3
"""The gateway, by mails that Python's email makes and reads. Arguments: the command, the folder of messages."""
import base64
import email
import email.message
import email.policy
import json
import os
import pathlib
import quopri
import re
import subprocess
import sys
import tempfile
import unittest
from email.mime.application import MIMEApplication
from email.mime.message import MIMEMessage
from email.mime.multipart import MIMEMultipart
from email.mime.text import MIMEText

COMMAND = os.path.abspath(sys.argv.pop(1))
DATA = pathlib.Path(sys.argv.pop(1))
PNG = base64.b64decode("iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg==")
JAPANESE = "会議のお知らせ\n①番の議題は髙橋さんです。\nよろしくお願いします。\n"


def read(*messages, folder=None):
    """What mailengine read tells of each message; attachments stand in folder/0, folder/1 and so on, if one is given."""
    with tempfile.TemporaryDirectory() as inputs:
        paths = [pathlib.Path(inputs, f"{number:04}.eml") for number in range(len(messages))]
        for path, message in zip(paths, messages):
            path.write_bytes(message)
        runs = [["--extract", f"{folder}/{i}", str(path)] for i, path in enumerate(paths)] if folder else [[inputs]]
        results = [subprocess.run([COMMAND, "read", "--json", *run], capture_output=True, timeout=300) for run in runs]
    assert all(result.returncode in (0, 1, 65) for result in results)
    return [json.loads(line) for result in results for line in result.stdout.splitlines()]


def squeezed(text):
    return re.sub(r"\s+", " ", text).strip()


# Mails made by hand around a body, for what Python would not write by itself.

def raw(body, kind, encoding="8bit", subject=b"kind", fields=b""):
    return (b"From: =?utf-8?B?5bGx55Sw?= <yamada@example.jp>\nTo: t@example.jp\nSubject: " + subject + b"\n" + fields +
            b"Content-Type: " + kind.encode() + b"\nContent-Transfer-Encoding: " + encoding.encode() +
            b"\nMIME-Version: 1.0\n\n" + body)


def charset_kinds():
    texts = {"utf-8": JAPANESE + "😀 𠮷野家 naïve 한글\n", "cp932": JAPANESE, "euc-jp": "会議のお知らせ\n", "utf-16": JAPANESE,
             "iso-8859-1": "Grüße, déjà vu\n", "windows-1252": "“naïve” – 5 €\n", "koi8-r": "Привет, мир\n",
             "iso-8859-2": "Příliš žluťoučký kůň\n", "windows-1253": "Καλημέρα\n", "gb2312": "会议通知\n", "big5": "會議通知\n",
             "euc-kr": "회의 안내\n", "iso-2022-kr": "회의 안내\n", "us-ascii": "plain =41 text\n", "utf-7": "日本語\n",
             "iso-2022-jp-2": "会議 ÄÖ\n"}
    for charset, text in texts.items():
        data = text.encode(charset)
        for encoding, encoded in (("base64", base64.encodebytes(data)), ("quoted-printable", quopri.encodestring(data)),
                                  ("8bit", data)):
            if charset != "utf-16" or encoding == "base64":
                yield f"{charset} as {encoding}", raw(encoded, f'text/plain; charset="{charset}"', encoding)


def made(build, policy=email.policy.default, text=JAPANESE):
    mail = email.message.EmailMessage(policy=policy)
    mail["Subject"] = "【重要】会議のお知らせ😀 " + "長い件名" * 12
    mail["From"] = '"株式会社A, 田中" <tanaka@example.jp>'
    mail["To"] = "山田 太郎 <yamada@example.jp>, \"Doe, John\" <john@example.com>, plain@example.com"
    mail["Cc"] = "Größe <g@example.de>"
    mail["Reply-To"] = "返信 <reply@example.jp>"
    mail["Message-ID"] = "<1@example.jp>"
    if text is not None:
        mail.set_content(text)
    build(mail)
    return mail


def file(name, data=b"\0\1\r\n\xff", kind=("application", "pdf")):
    return lambda mail: mail.add_attachment(data, *kind, filename=name)


def related(mail):
    mail.add_alternative("<p>会議 <img src=cid:a></p>", subtype="html")
    mail.get_payload()[1].add_related(PNG, "image", "png", cid="<a>", filename="図.png")


def inner(**fields):
    return made(file("内.pdf"), **fields)


def structure_kinds():
    def chain(*builds):
        return lambda mail: [build(mail) for build in builds]

    names = ["見積書.pdf", "①髙橋.xlsx", "a;b.txt", 'quo"te.txt', "a, b.txt", "😀.png", "あ" * 90 + ".txt", "ö" * 150 + ".doc"]
    for name in names:
        yield f"a file called {name[:12]}", made(file(name)).as_bytes()
    yield "two files of one name", made(chain(file("同じ.txt"), file("同じ.txt", b"other"))).as_bytes()
    yield "HTML beside text", made(lambda mail: mail.add_alternative("<p>x", subtype="html")).as_bytes()
    yield "HTML with its picture", made(related).as_bytes()
    yield "HTML with its picture, and a file", made(chain(related, file("a.pdf"))).as_bytes()
    yield "a calendar", made(lambda mail: mail.add_alternative("BEGIN:VCALENDAR", subtype="calendar")).as_bytes()
    yield "an attached mail", made(lambda mail: mail.add_attachment(inner())).as_bytes()
    yield "an attached mail in eight bits", made(
        lambda mail: mail.add_attachment(inner(policy=email.policy.SMTPUTF8))).as_bytes(policy=email.policy.SMTPUTF8)
    yield "nothing but a file", made(file("a.bin"), text=None).as_bytes()
    yield "an empty text and an empty file", made(file("leer.txt", b""), text="").as_bytes()
    for name, policy in (("SMTP", email.policy.SMTP), ("SMTPUTF8", email.policy.SMTPUTF8)):
        yield f"policy {name}", made(file("資料.pdf")).as_bytes(policy=policy)
    text = made(chain(file("a.txt", "日本".encode("cp932"), ("text", "plain")))).as_bytes()
    yield "a text file of another charset", text
    for kind in ("signed", "report", "mixed", "parallel", "x-unknown"):
        mail = MIMEMultipart(kind)
        mail["Subject"] = kind
        mail.attach(MIMEText("一つ目\n", "plain", "utf-8"))
        if kind in ("mixed", "parallel", "x-unknown"):
            mail.attach(MIMEText("二つ目\n", "plain", "iso-2022-jp"))
        mail.attach(MIMEApplication(b"sig", "pgp-signature", name="署名.asc"))
        yield f"multipart/{kind}", mail.as_bytes()
    digest = MIMEMultipart("digest")
    digest.attach(MIMEMessage(inner()))
    yield "a digest", digest.as_bytes()
    nested = MIMEMultipart("mixed")
    nested.attach(made(chain(related, file("a.pdf"))))
    nested.attach(MIMEText("foot\n"))
    yield "a mixed in a mixed", nested.as_bytes().replace(b"\n", b"\r\n")


def field_kinds():
    word = "=?utf-8?B?" + base64.b64encode("会議".encode()).decode() + "?="
    split = "会".encode()
    halves = b" ".join(b"=?utf-8?B?" + base64.b64encode(part) + b"?=" for part in (split[:2], split[2:]))
    text = b"text\n"
    for title, subject in {"raw UTF-8": "会議".encode(), "a word of Q": b"=?iso-8859-1?Q?Gr=FC=DFe_an_alle?=",
                           "words of two charsets": b"=?utf-8?B?5Lya?= =?iso-8859-1?Q?=FC?=", "a long fold":
                           b"one\n two\n\tthree", "a language": b"=?utf-8*ja?B?5Lya?="}.items():
        yield f"subject of {title}", raw(text, "text/plain", subject=subject)
    yield "a word that splits a character", raw(text, "text/plain", subject=halves), {"subject": "会"}
    yield "raw CP932", raw(text, "text/plain", subject="会議".encode("cp932")), {"subject": "会議"}
    yield "raw GB2312", raw("会议".encode("gb2312"), "text/plain; charset=gb2312", subject="邮件传送失败！".encode("gb2312")), {
        "subject": "邮件传送失败！"}
    yield "raw Latin-1", raw(text, "text/plain", subject="Grüße".encode("latin-1")), {"subject": "Grüße"}
    yield "a group, comments, several fields", raw(text, "text/plain", fields=(
        f"Cc: team: {word} <a@b.example>, c@d.example;, e@f.example (comment)\nTo: second@example.jp\n").encode()), {
        "to": ["t@example.jp", "second@example.jp"], "cc": ["a@b.example", "c@d.example", "e@f.example"]}
    flowed = b"> one \n> two\nthree \nfour\n -- \n-- \nfive\n"
    yield "flowed", raw(flowed, "text/plain; format=flowed"), {"body": "> one two three four -- -- five"}
    yield "flowed, DelSp", raw(b"one \ntwo\n", "text/plain; format=flowed; delsp=yes"), {"body": "onetwo"}
    names = b"; name*0*=iso-2022-jp'ja'%1B%24B%2D%21; name*1*=%1B%28B.pdf", b'; name="=?iso-2022-jp?B?GyRCLSEbKEI=?=.pdf"', (
        "; name*=shift_jis''%87%40.pdf").encode(), "; name=①.pdf".encode(), b'; name="' + "①".encode("cp932") + b'.pdf"'
    for form in names:
        mixed = b"--b\nContent-Type: application/pdf" + form + b"\n\nx\n--b--\n"
        yield f"a name as {form!r}", raw(mixed, "multipart/mixed; boundary=b"), {"names": ["①.pdf"]}
    for title, kind, data, body in (
            ("nothing declared", "text/plain", "会議".encode("cp932"), "会議"), ("EUC, nothing declared", "text/plain",
             "会議を開く".encode("euc-jp"), "会議を開く"), ("a wrong name", "text/plain; charset=us-ascii", JAPANESE.encode(), JAPANESE),
            ("kana of seven bits", "text/plain; charset=iso-2022-jp", b"\x1b(I6^\x1b(B ok", "ｶﾞ ok"),
            ("row 13", "text/plain; charset=iso-2022-jp", b"\x1b$B-!|b\x1b(B", "①髙"),
            ("an unknown name", "text/plain; charset=x-foo", "Grüße an alle Freunde".encode("cp1252"), "Grüße an alle Freunde")):
        yield title, raw(data, kind), {"body": squeezed(body)}


# What Python reads.

def is_text(part):
    return part.get_content_type() in ("text/plain", "text/html") and not part.is_attachment() and not part.get_filename()


def python_texts(part):
    kind, parts = part.get_content_type(), list(part.iter_parts()) if part.get_content_maintype() == "multipart" else []
    if not parts:
        return [part.get_content()] if is_text(part) else []
    if kind == "multipart/alternative":
        body = part.get_body(("plain", "html"))
        return python_texts(body)
    chosen = parts[:1] if kind in ("multipart/related", "multipart/signed", "multipart/report") else parts
    return [text for child in chosen for text in python_texts(child)]


def python_files(part, is_form=False):
    kind = part.get_content_type()
    if part.get_content_maintype() == "multipart":
        return [f for child in part.iter_parts() for f in python_files(child, kind == "multipart/alternative")]
    if is_text(part) or (is_form and kind != "message/rfc822"):
        return []
    if kind == "message/rfc822":
        return [(plain(part.get_content()["Subject"]) + ".eml", None)]
    return [(plain(part.get_filename()), part.get_payload(decode=True))]


def plain(text):
    """Python keeps raw bytes of a header as lone surrogates."""
    return text.encode("utf-8", "surrogateescape").decode("utf-8", "replace")


def addresses(field):
    return [(plain(a.display_name), plain(a.addr_spec)) for a in field.addresses] if field is not None else []


class GatewayTest(unittest.TestCase):
    maxDiff = None

    def test_reads_what_python_reads(self):
        kinds = [(kind + ({},))[:3] for make in (charset_kinds, structure_kinds, field_kinds) for kind in make()]
        self.assertGreaterEqual(len(kinds), 40)
        with tempfile.TemporaryDirectory() as folder:
            results = read(*(message for _, message, _ in kinds), folder=folder)
            for (title, message, known), result in zip(kinds, results):
                with self.subTest(title):
                    self.compare(message, result, known)

    def compare(self, message, result, known):
        if "names" in known:  # Python fails on row 13
            return self.assertEqual([file["original"] for file in result["files"]], known["names"])
        mail = email.message_from_bytes(message, policy=email.policy.default)
        self.assertEqual(squeezed(result["subject"]), known.get("subject") or squeezed(plain(str(mail["subject"] or ""))))
        for field in ("from", "to", "cc", "reply-to"):
            got = [(a["name"], a["address"]) for a in result["replyTo" if field == "reply-to" else field]]
            if field in known:
                self.assertEqual([address for _, address in got], known[field])
            else:
                self.assertEqual(got, addresses(mail[field]), field)
        body = known["body"] if "body" in known else squeezed(" ".join(python_texts(mail)))
        self.assertEqual(squeezed(result["body"]), body)
        files = python_files(mail)
        self.assertEqual(len(result["files"]), len(files))
        for got, (name, data) in zip(result["files"], files):
            bytes_got = pathlib.Path(got["path"]).read_bytes()
            self.assertEqual(got["original"] or got["name"], name)
            self.assertEqual(got["size"], len(bytes_got))
            if data is None:
                self.assertIn(bytes_got, message)
                self.assertEqual(read(bytes_got)[0]["subject"] + ".eml", name)
            else:
                self.assertEqual(bytes_got, data)
        names = [got["name"] for got in result["files"]]
        self.assertEqual(len({name.casefold() for name in names}), len(names))

    def test_hostile_names_stay_in_the_folder(self):
        names = ["../../x", "..", ".bashrc", "-rf", "a/b\\c", "a\tb", "\u202etxt.exe", "", "A.txt", "a.TXT", "か" * 200 + ".jpeg"]
        mail = made(lambda mail: [file(name)(mail) for name in names])
        for part, name in zip(mail.iter_attachments(), names):
            part.replace_header("Content-Disposition", "attachment")
            part.set_param("filename", name, header="Content-Disposition", charset="utf-8")
        with tempfile.TemporaryDirectory() as folder:
            (result,) = read(mail.as_bytes(), folder=folder)
            inside = os.listdir(os.path.join(folder, "0"))
            self.assertEqual((len(inside), os.listdir(folder)), (len(names), ["0"]))
        self.assertEqual([f["name"] for f in result["files"]][:10], [
            "_.._x", "_", "bashrc", "rf", "a_b_c", "a_b", "_txt.exe", "attachment1.pdf", "A.txt", "a (1).TXT"])
        self.assertLessEqual(len(result["files"][10]["name"].encode()), 255)

    def test_only_what_the_engine_reads_rightly_goes_through(self):
        word = "=?iso-2022-jp?B?GyRCJCIbKEI=?="
        plain = (f"From: {word} <a@b>\r\nTo: \"P, \\\"Q\" <c@d>,\r\n\te@f\r\nSubject: {word}\r\n\t{word}\r\nMIME-Version: 1.0\r\n"
                 "Content-Type: text/plain; charset=iso-2022-jp\r\nContent-Transfer-Encoding: 7bit\r\n\r\n\x1b$B$\"\x1b(B\r\n")
        mixed = ("From: a@b\r\nSubject: s\r\nMIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\n"
                 "Content-Type: text/plain\r\n\r\ntext\r\n--b\r\nContent-Type: application/pdf; name=\"a.pdf\"\r\n"
                 "Content-Transfer-Encoding: base64\r\n\r\nAAAA\r\n--b--\r\n")
        changes = {plain: [
            ("MIME-Version: 1.0\r\n", ""), ("1.0\r\n", "1.0 (x)\r\n"), ("Subject", "subject: x\r\nSubject"), ("a@b", "a@b (c)"),
            (word + "\r\n\t", word + " "), ("P, ", "P, \\\\"), ("e@f", "g: e@f;"), ("\r\n\te@f", "e@f,"), ("iso-2022-jp?B?", "utf-8?B?"),
            ("charset=iso-2022-jp", "charset=utf-8"), ("7bit", "x-foo"), ("\x1b(B", ""), ("\x1b$B", "\x1b(I"), ("$\"", "$\"$"),
            ("text/plain;", "text/html;"), ("text/plain;", "text/plain; format=flowed;"), ("charset=", "charset ="),
            ("7bit", "7bit\r\nContent-Disposition: attachment"), ("Content-Type: text/plain; charset=iso-2022-jp\r\n", ""),
            ("\r\n\r\n\x1b", "\r\n\r\nDate: \x1b"), ("\x1b$B$\"", "\u3042")],
            mixed: [
            ("--b--\r\n", ""), ("; name=\"a.pdf\"", ""), ("name=\"a.pdf\"", "name=\"a;.pdf\""), ("AAAA", "AAA"), ("AAAA", "AA AA"),
            ("base64", "base64\r\nContent-Disposition: attachment; filename=other.pdf"), ("AAAA", "AAAA\nAAAA"), ("--b--", "--bb\r\n--b--"),
            ("text/plain\r\n", "text/plain\r\nContent-Disposition: inline; filename=a.txt\r\n"), ("multipart/mixed", "multipart/related"),
            ("application/pdf; name=\"a.pdf\"", "text/plain"), ("application/pdf; name=\"a.pdf\"", "message/rfc822"),
            ("boundary=b\r\n\r\n", "boundary=b\r\n\r\nTo: x\r\n")]}
        for whole, replacements in changes.items():
            messages = [whole] + [whole.replace(old, new, 1) for old, new in replacements]
            results = read(*(message.encode() for message in messages))
            self.assertEqual(results[0]["gateway"], False, whole)
            for (old, new), message, result in zip(replacements, messages[1:], results[1:]):
                self.assertNotEqual(message, whole)
                self.assertEqual(result.get("gateway"), True, (old, new))

    def test_reads_every_message_of_the_corpus(self):
        paths = sorted(map(str, DATA.glob("*/*.eml")))
        lines = [subprocess.run([COMMAND, "read", "--json", "--headers", *flags, *paths], capture_output=True).stdout.splitlines()
                 for flags in ([], ["--strict"])]
        results, strict = ([json.loads(line) for line in one] for one in lines)
        self.assertEqual([result["file"] for result in results if not result["ok"]], [])
        through = [i for i, result in enumerate(results) if not result["gateway"]]
        self.assertGreater(len(through), 25)
        for i in through:  # names of files may be better ones
            plain, exact = ({k: v for k, v in one[i].items() if k not in ("files", "summary")} for one in (results, strict))
            self.assertEqual(plain, exact)

    def test_html_is_laid_out(self):
        html = ("<head><title>t</title><style>p{}</style></head><body><script>alert(1)</script><h1>題</h1><p>One <b>two</b>\n three "
                "<a href='https://example.jp/a?b&amp;c'>link</a><ul><li>eins<li>zwei<ol><li>x</ol></ul><table><tr><td>a<td>b<tr><td>c</table>"
                "<blockquote>q<br>r</blockquote><pre>  k\n  l</pre><div style='display:none'>no</div><p>end &#x1F600;&hearts;")
        (result,) = read(raw(html.encode("euc-jp"), "text/html; charset=euc-jp"))
        self.assertEqual(result["body"].replace("\r\n", "\n"), (
            "題\n\nOne two three link <https://example.jp/a?b&c>\n\n- eins\n- zwei\n  1. x\n\na | b\nc\n\n> q\n> r\n\n  k\n  l\n\nend 😀♥\n"))
        self.assertEqual([f["name"] for f in result["files"]], ["text.html"])

    def test_gives_what_is_left_of_harmed_mails(self):
        cases = {
            b"": "refused", b"\r\n\r\n": "refused", b"no header at all": "refused",
            b"Subject: cut\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nletter": "letter",
            b"\xef\xbb\xbfFrom x Thu\rSubject: cr\rFrom: a@b\r\rbody": "body",
            b"Subject: x\nContent-Type: multipart/mixed\n\nloose": "loose",
            b"Subject: x\nContent-Type: multipart/encrypted; boundary=b\n\n--b\nContent-Type: application/octet-stream\n\nx\n--b--": "(This mail is encrypted",
            b"Subject: x\nContent-Type: text/plain\nContent-Transfer-Encoding: x-what\n\nstill here": "still here"}
        for (message, wanted), result in zip(cases.items(), read(*cases)):
            self.assertTrue(not result["ok"] if wanted == "refused" else result["body"].startswith(wanted), (message, result))

    def test_counts_what_finds_no_place(self):
        text = "".join(chr(0x20000 + i) for i in range(2000))
        (result,) = read(raw(text.encode(), "text/plain; charset=utf-8"))
        self.assertEqual((squeezed(result["body"]), result["replaced"]), (text[:1880] + "〓" * 120, 120))
        for count, warnings in (10000, []), (10001, ["addresses in Cc are left out; it has more than 10000"]):
            (result,) = read(b"Cc: " + b"a@b," * (count - 1) + b"a@b\n\n")
            self.assertEqual((len(result["cc"]), result["warnings"]), (10000, warnings))

    def test_a_long_text_comes_whole(self):
        texts = [lead + text * 300000 for lead in ("", "x", "xy") for text in ("あ", "😀あ", "あ\r\n")]
        for text, result in zip(texts, read(*[raw(text.encode(), "text/plain; charset=utf-8") for text in texts])):
            self.assertEqual(result["body"].strip(), text.strip())

    def test_costs_no_more_than_the_message_is_long(self):
        deep = b"".join(b"Content-Type: multipart/mixed; boundary=b%d\n\n--b%d\n" % (i, i) for i in range(3000))
        boundaries = b"".join(b"Content-Type: multipart/mixed; boundary=b%d\n\n--b%d\n" % (i, i) for i in range(99))
        shapes = [
            b"Subject: deep\n" + deep, b"Subject: lines\n" + boundaries + b"\n" + b"--x\n" * 500000,
            b"Subject: parts\nContent-Type: multipart/mixed; boundary=b\n\n" + b"--b\n\nx\n" * 30000,
            b"To: " + b"g:" * 80000 + b"\n\n", b"To: " + b"a@b, " * 20000 + b"\n\n", b"To: " + b"<g:\"" * 80000 + b"\n\n",
            b"Subject: " + b"=?utf-8?Q?" * 80000 + b"\n\n", b"Subject: " + b"=?utf-8?Q?a?= " * 40000 + b"\n\n",
            b"To: " + b"(" * 80000 + b"\n\n", b"Content-Type: a/b" + b"; x*0*=a" * 40000 + b"\n\n", b"To: c@d\n" + b"X: y\n" * 200000 + b"\n",
            b"Content-Type: text/html\n\n" + b"<div>" * 100000, b"Content-Type: text/html\n\n" + b"<blockquote><p>x" * 50000,
            b"Content-Type: text/html\n\n<a href=\"" + b"x" * 200000, b"Content-Type: text/html\n\n" + b"&#x41;&lt;" * 100000,
            b"Content-Type: text/html\n\n" + b"<a href='http://x'>" * 50000, b"Content-Type: text/html\n\n" + b"<!-- " * 100000]
        for number, shape in enumerate(shapes):
            with self.subTest(number):
                result = subprocess.run([COMMAND, "read"], input=shape, capture_output=True, timeout=20)
                self.assertEqual(result.returncode, 0, result.stderr[-2000:])


unittest.main()
