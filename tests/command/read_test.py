#!/usr/bin/python3
"""mailengine read, reply and subject as a user starts them. First argument: the command."""
import base64
import json
import os
import pathlib
import resource
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
sys.dont_write_bytecode = True
from message_reader import Message  # noqa: E402

COMMAND = os.path.abspath(sys.argv.pop(1))


def word(text, charset="iso-2022-jp"):
    data = text if isinstance(text, bytes) else text.encode(charset)
    return "=?%s?B?%s?=" % (charset, base64.b64encode(data).decode())


def mail(body=b"text\r\n", subject="trait", fields="", sender="A <a@b>", to="c@d", kind="text/plain"):
    head = (f"From: {sender}\r\nTo: {to}\r\nSubject: {subject}\r\n{fields}MIME-Version: 1.0\r\n"
            f"Content-Type: {kind}\r\n\r\n")
    return head.encode() + body


def mixed(*parts, closing="\r\n--b--\r\n"):
    body = "".join("\r\n--b\r\n" + part for part in parts) + closing
    return mail(body.encode(), kind="multipart/mixed; boundary=b")


def file(name, data="x"):
    return f'Content-Type: application/octet-stream; name="{name}"\r\n\r\n{data}'


class ReadTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.temporary = self.folder / "tmp"
        self.temporary.mkdir()

    def tearDown(self):
        self.assertEqual(os.listdir(self.temporary), [], "a temporary folder stays")

    def run_it(self, *arguments, data=b"", status=0, complaints=(), **options):
        result = subprocess.run([COMMAND, *arguments], input=data, capture_output=True, cwd=self.folder,
                                env=os.environ | {"TMPDIR": str(self.temporary)}, **options)
        lines = result.stderr.decode().splitlines()
        complaints = lines if complaints is None else complaints
        self.assertEqual((result.returncode, len(lines)), (status, len(complaints)), result.stderr)
        for line, words in zip(lines, complaints):
            self.assertTrue(line.startswith("mailengine: "), line)
            self.assertIn(words, line)
        return result.stdout

    def opened(self, data, *arguments, **expected):
        lines = self.run_it("read", "--json", *arguments, data=data, **expected).splitlines()
        return json.loads(lines[0])

    def reply(self, data, *arguments, complaints=()):
        return self.run_it("reply", "-", "--from", "me@x", *arguments, "-o", "-", data=data, complaints=complaints)

    def test_shows_text_of_every_charset_and_line_end(self):
        jis = mail("日本\r\nB".encode("iso-2022-jp"), word("件名"), kind="text/plain; charset=iso-2022-jp")
        utf8 = mail("日本\r\nB".encode(), "件名")
        cp932 = utf8.decode().encode("cp932")
        for name, data in ("jis", jis), ("utf8", utf8), ("cp932", cp932), ("lf", jis.replace(b"\r\n", b"\n")):
            with self.subTest(name):
                shown = self.run_it("read", data=data).decode()
                self.assertIn(" Subject: 件名\n", shown)
                self.assertTrue(shown.endswith("\n\n日本\nB\n"), shown)
        mixed_ends = mail(b"a\nb\r\nc\r\n")
        self.assertEqual(self.opened(mixed_ends, "--strict")["body"], "a\nb\r\nc\r\n")
        self.assertEqual(self.opened(mail(b"\xff\x31"), "--strict")["body"], "\ufffd1")

    def test_nothing_reaches_the_terminal_that_it_would_obey(self):
        evil = word(b"a\r\n\x1b[2J\x07" + "\u009b\u202e".encode(), "utf-8")
        data = mail("x\x1b]0;t\x07\r\n\ty\x9b\r".encode(), evil, sender=f'"{evil}" <a@b>')
        for arguments in [], ["--headers"], ["--json"], ["--strict"], ["--strict", "--json", "--headers"]:
            with self.subTest(arguments):
                shown = self.run_it("read", *arguments, data=data).decode()
                self.assertFalse([ch for ch in shown if ch not in "\n\t" and not ch.isprintable()], shown)
        shown = self.run_it("read", "--strict", data=data).decode()
        self.assertIn(" Subject: a\\x0D\\x0A\\x1B[2J", shown)
        self.assertIn("x\\x1B]0;t\\x07\n\ty\\x9B\\x0D\n", shown)
        self.assertEqual(self.run_it("subject", "--strict", data=data), b"a\\x0D\\x0A\\x1B[2J\\x07\\x9B\\u202E\n")

    def test_json_holds_the_document(self):
        data = mail(subject=word("件"), to=f"{word('山田')} <c@d>, e@f", fields="Cc: g@h\r\nMessage-ID: <1@x>\r\n"
                    "References: <0@x>\r\nDate: Thu, 19 Nov 2026 10:30:49 +0900\r\n")
        read = self.opened(data, "--headers")
        self.assertIn("To:      山田 <c@d>;e@f\r\n", read.pop("summary"))
        self.assertTrue(read.pop("headers").startswith("From: A <a@b>\r\n"))
        self.assertEqual(read, {
            "file": "-", "message": 1, "ok": True, "subject": "件", "from": [{"name": "A", "address": "a@b"}],
            "to": [{"name": "山田", "address": "c@d"}, {"name": "", "address": "e@f"}],
            "cc": [{"name": "", "address": "g@h"}], "replyTo": [], "date": "Thu, 19 Nov 2026 10:30:49 +0900",
            "messageId": "<1@x>", "references": "<0@x>", "body": "text\r\n", "files": [],
            "gateway": False, "replaced": 0, "alternatives": [], "warnings": []})

    def test_attachments_stay_inside_the_folder(self):
        names = "a.txt", "a.txt", "../up", "/etc/x", word("表.txt"), word(b"\x1b[2J.txt", "utf-8"), "c\\d"
        (self.folder / "out").mkdir()
        (self.folder / "out" / "a.txt").write_text("mine")
        data = mixed(*(file(name, str(i)) for i, name in enumerate(names)))
        files = self.opened(data, "--extract", "out")["files"]
        self.assertEqual([f["size"] for f in files], [1] * len(names))
        self.assertEqual([(self.folder / f["path"]).read_text() for f in files], list("0123456"))
        self.assertEqual({str(pathlib.Path(f["path"]).parent) for f in files}, {"out"})
        self.assertEqual((self.folder / "out" / "a.txt").read_text(), "mine")
        self.assertEqual(sorted(os.listdir(self.folder)), ["out", "tmp"])
        self.assertIn("\n  1. a.txt, 1 byte, text/plain\n", self.run_it("read", data=data).decode())
        self.assertEqual(sorted(os.listdir(self.folder)), ["out", "tmp"])
        self.opened(data, "--extract", "new/deep/")
        self.assertEqual(len(os.listdir(self.folder / "new/deep")), len(names))
        self.opened(mixed(file(".."), file(".")), "--extract", "odd")
        long = mixed(file("x" * 300))
        self.run_it("read", "--strict", "--extract", "odd", data=long, status=65, complaints=["name that no file can have"])
        self.assertEqual(self.opened(long, "--extract", "odd")["files"][0]["name"], "x" * 255)
        self.assertEqual(len(os.listdir(self.folder / "odd")), 3)
        (self.folder / "odd").chmod(0o500)
        if os.geteuid() != 0:
            self.run_it("read", "--extract", "odd", data=data, status=73, complaints=["written into odd"])
        self.assertEqual(sorted(os.listdir(self.folder)), ["new", "odd", "out", "tmp"])

    def test_one_attachment_goes_to_standard_output(self):
        data = bytes(range(256)) * 8
        mails = [mixed(file("a"), file("b.PDF", base64.b64encode(data).decode()).replace(
            "\r\n", "\r\nContent-Transfer-Encoding: base64\r\n", 1), closing="\r\n--b--\r\n")] * 2
        box = b"".join(b"From x\n" + m.replace(b"\r\n", b"\n") + b"\n" for m in mails)
        self.assertIn("\n  2. b.PDF, 2.0 KB, application/pdf\n", self.run_it("read", data=mails[0]).decode())
        self.assertEqual(self.run_it("read", "--show", "2", data=mails[0]), data)
        self.assertEqual(self.run_it("read", "--show", "2", "--message", "2", data=box), data)
        for arguments, given, status, words in (
                (["3"], mails[0], 65, "has 2 attachments"), (["0"], b"", 64, "no number"), (["1"], box, 64, "--message"),
                (["1"], b"x", 65, "is no message"), (["1", "--json"], b"", 64, "--json"), (["1", "a", "b"], b"", 64, "one FILE")):
            self.assertEqual(self.run_it("read", "--show", *arguments, data=given, status=status, complaints=[words]), b"")
        main, terminal = os.openpty()
        for given in mails[0], mails[0].replace(base64.b64encode(data), base64.b64encode("\u009b2J".encode())):
            done = subprocess.run([COMMAND, "read", "--show", "2"], input=given, stdout=terminal, stderr=subprocess.PIPE)
            self.assertIn(b"terminal", done.stderr)
        os.close(main), os.close(terminal)

    def test_extracted_names_are_clean_and_unique(self):
        names = ("a\x1bb.txt", "a_b.txt", ".bashrc", "-rf", "A.TXT", "a.txt", word("同じ.txt"), word("同じ.txt"), "x" * 250)
        mails = ["Content-Type: message/rfc822\r\n\r\n" + mail(subject=s).decode() for s in ("same", "same", "")]
        files = self.opened(mixed(*(file(name) for name in names), *mails), "--extract", "😀")["files"]
        self.assertEqual([pathlib.Path(f["path"]).name for f in files], [
            "a_b.txt", "a_b (1).txt", "bashrc", "rf", "A.TXT", "a (1).txt", "同じ.txt", "同じ (1).txt", "x" * 250,
            "same.eml", "same (1).eml", "attachment1.eml"])
        self.assertEqual({f["path"] for f in files}, {f"😀/{name}" for name in os.listdir(self.folder / "😀")})

    def test_all_attachments_are_extracted_or_none(self):
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (100_000, 100_000))
        data = mixed(file("small"), file("big", "x" * 200_000))
        full = ["'big' cannot be written into out: File too large"]
        (self.folder / "here").mkdir()
        self.run_it("read", "--extract", "out", data=data, status=65, complaints=full, preexec_fn=limit)
        self.run_it("read", "--strict", "--extract", "out", data=mixed(file("a"), closing=""), status=65, complaints=["closing"])
        self.run_it("read", "--extract", "out", data=mail())
        self.assertEqual(sorted(os.listdir(self.folder)), ["here", "tmp"])
        self.run_it("read", "--extract", "here", data=data, status=65, complaints=["File too large"], preexec_fn=limit)
        self.assertEqual(os.listdir(self.folder / "here"), [])

    def test_names_the_fault_and_shows_what_could_be_read(self):
        attached = "Content-Type: message/rfc822\r\n\r\nSubject: in\r\n\r\nx\r\n"
        for data, words in (
            (b"", "is empty"),
            (mail().replace(b"MIME-Version: 1.0\r\n", b""), "no MIME-Version 1.0"),
            (mail().replace(b"1.0", b"1.0 (x)"), "MIME-Version is '1.0 (x)'"),
            (mail(kind="multipart/related; boundary=b"), "no delimiter of its boundary 'b'"),
            (mixed(file("a"), file("b", "\0")), "NUL"),
            (mixed(file("a"), "Content-Type: text/html\r\n\r\nx"), "2: a part of type 'text/html'"),
            (mixed(file("a", "")[:-2] + "\r\n", closing="--b--\r\n"), "last attachment is empty"),
            (mixed(attached), "1: the attached mail cannot be read: it has no MIME-Version 1.0"),
        ):
            with self.subTest(words):
                shown = self.run_it("read", "--strict", data=data, status=65, complaints=[words]).decode()
                self.assertEqual("Subject: trait" in shown, data != b"")
                (self.folder / "mail").write_bytes(data)
                read = self.opened(b"", "--strict", "mail", status=65, complaints=["mail: "])
                self.assertIn(words, read["error"])
        (self.folder / "full").touch()
        self.run_it("read", "--extract", "full", data=mail(), status=73, complaints=["--extract full"])

    def test_what_is_no_message_is_not_shown_as_one(self):
        for data, words in (b"", "is empty"), (b"\n\n", "is empty"), (bytes.fromhex("ffd8ffe0") + b"\0\nTo: x\n\n", "is no message"), (b"hello\n", "is no message"), (b"milk: 2\nrice: 1\n", "is no message"):
            for arguments in [], ["--headers"]:
                with self.subTest(words=words, arguments=arguments):
                    self.assertEqual(self.run_it("read", *arguments, data=data, status=65, complaints=[words]), b"")

    def test_a_failing_file_does_not_stop_the_others(self):
        (self.folder / "good").write_bytes(mail(subject="one"))
        (self.folder / "bad").write_bytes(b"Subject: two\n\nx\n")
        complaints = ["none: ", "bad: cannot be read as a mail"]
        files = "good", "none", "bad", "good"
        shown = self.run_it("read", "--strict", *files, status=65, complaints=complaints).decode()
        self.assertEqual([line for line in shown.splitlines() if "Subject" in line],
                         [" Subject: one", " Subject: two", " Subject: one"])
        lines = self.run_it("subject", "--strict", *files, status=65, complaints=complaints)
        self.assertEqual(lines, b"good\tone\nbad\ttwo\ngood\tone\n")

    def test_a_file_is_named_as_it_stands(self):
        for name in "[a]", "[a,b]", "[]", "{}", "a":
            (self.folder / name).write_bytes(mail(subject=f"s {name}"))
            self.assertEqual(self.run_it("subject", name).decode(), f"s {name}\n")
            self.assertEqual(self.opened(b"", name)["file"], name)
        for arguments in (["read", ""], ["read", "a", "--extract", ""], ["subject", "a", ""], ["reply", "", "-o", "-"],
                          ["reply", "a", "-o", "-", "--subject", ""], ["reply", "a", "-o", "-", "--body-file", ""],
                          ["send", "--server", "h", "--answer", ""], ["send", "--server", ""], ["write", "-o", ""]):
            self.run_it(*arguments, status=64, complaints=["is empty"])

    def test_a_file_that_gives_no_message_is_refused_once(self):
        for arguments, words in (["/dev/zero"], "is a device"), (["/dev/stdin"], "cannot be read"):
            result = subprocess.run(["sh", "-c", '"$0" read "$@" <&-', COMMAND, *arguments], capture_output=True, timeout=20)
            self.assertEqual((result.returncode, result.stderr.decode().count(words)), (66, 1), result.stderr[:500])
        name = "caf\xe9 %".encode("latin-1")
        (self.folder / os.fsdecode(name)).write_bytes(mail())
        self.assertEqual(self.opened(b"", name)["fileEscaped"], "caf%E9%20%25")

    def test_memory_that_ends_at_one_message_ends_that_alone(self):
        limited = ["prlimit", "--as=60000000", COMMAND]
        if subprocess.run([*limited, "--help"], capture_output=True).returncode != 0:
            self.skipTest("a sanitizer takes more address space")
        (self.folder / "big").write_bytes(mail(b"x" * 78 * 800000))
        (self.folder / "small").write_bytes(mail(subject="s"))
        for command, shown in ("read", b" Subject: s\n"), ("subject", b"small\ts\n"):
            out = subprocess.run([*limited, command, "small", "big", "small"], cwd=self.folder, capture_output=True)
            self.assertEqual((out.returncode, out.stdout.count(shown)), (71, 2))
            self.assertEqual(out.stderr, b"mailengine: big: there is not enough memory to read it\n")

    def test_nothing_of_the_answered_mail_adds_a_field(self):
        evil = word(b"x\r\nBcc: evil@x\0\x1by", "utf-8")
        data = mail(subject=evil, sender=f'"{evil}\\\\" <a@b>', to=f'{evil} <c{evil}@d>, e@f> SIZE=1, "g" <g@h>',
                    fields=f"Message-ID: <1{evil}@x>\r\nReferences: <0@x>\r\n\t<{evil}\r\n")
        self.assertNotIn(b"\r\nBcc", self.reply(data, complaints=None).split(b"\r\n\r\n")[0])
        out = self.reply(data, "--strict", "--all", complaints=["left out"] * 2)
        names = [line.split(b":")[0] for line in out.split(b"\r\n\r\n")[0].split(b"\r\n") if line[:1] not in b" \t"]
        self.assertEqual(len(names), len(set(names)))
        self.assertNotIn(b"Bcc", names)
        self.assertFalse(set(out.split(b"\r\n\r\n")[0]) - set(range(32, 127)) - set(b"\r\n\t"))
        read = Message(out)
        self.assertEqual([address for _, address in read.addresses("To") + read.addresses("Cc")], ["a@b", "g@h"])

    def test_no_value_of_a_mail_makes_a_line_of_an_answer_or_a_summary(self):
        ends = "\r\n|\n|\r|\x0b|\x0c|\x1b$B|\x85|\u2028|\u2029|\u202e|\u2066|\U000e0041|\x9b2J|\u061c".split("|")
        evil = "\r\n ".join(word(f"x{end}I agree{end}".encode(), "utf-8") for end in ends + ["\0"])
        labels = {"From", "To", "Cc", "Date", "Subject", "File"}
        text = "Content-Type: text/plain\r\n\r\n" + "I agree".join(ends)
        for field in labels | {"Message-ID", "References", "In-Reply-To", "X\rSubject"}:
            with self.subTest(field):
                value = f'"{evil}" <a@b>, <c{evil}@d>' if field in ("From", "To", "Cc") else evil
                parts = mixed(text, file(evil.replace("\r\n ", "") if field == "File" else "a.txt"))
                data = f"{field}: {value}\r\n".encode() + parts.replace(b"Subject: trait\r\n", b"")
                (self.folder / "in").write_bytes(data)
                out = subprocess.run([COMMAND, "reply", "--strict", "in", "--from", "me@x", "-o", "-"], cwd=self.folder,
                                     input=b"", capture_output=True, check=True).stdout
                summary, body = Message(out).body().split("\r\n\r\n")
                self.assertEqual({line[:2] for line in body.splitlines()}, {"> "})
                for lines in summary.split("\r\n"), self.opened(data, "--strict")["summary"].split("\r\n")[:-1]:
                    self.assertEqual({line[1:].split(":")[0] for line in lines} - {"Cc"}, labels - {"Cc"})
                    self.assertEqual(len(lines), 5 + (field == "Cc"))
                    self.assertTrue("".join(lines).isprintable(), lines)
                self.assertFalse(set(out) - set(range(32, 127)) - set(b"\r\n\t\x1b"))

    def test_reply_refers_back_and_quotes(self):
        data = mail("日本😀\r\n\r\nB\r\n\r\n".encode(), "件名", "Message-ID: <2@x>\r\nReferences: <0@x>\r\n <1@x>\r\n")
        summary = " From:    A <a@b>\r\n To:      c@d\r\n Date:    \r\n Subject: 件名\r\n"
        quoted = summary + "\r\n> 日本〓\r\n> \r\n> B\r\n"
        out = self.reply(data, "--all", "--body", "はい", "--closing", "敬具", "--to", "z@z", complaints=["1 character "])
        read = Message(out)
        self.assertEqual(read.subject(), "Re: 件名")
        self.assertEqual(read.body(), quoted + "\r\nはい\r\n\r\n敬具")
        self.assertEqual(read.addresses("To"), [("A", "a@b"), ("", "z@z")])
        self.assertEqual(read.addresses("Cc"), [("", "c@d")])
        self.assertIn(b"InReplyTo: <2@x>\r\nReferences: <0@x>\r\n\t<1@x>\r\n\t<2@x>\r\n", out)
        upper = Message(self.reply(data, "--upper-reply", "--body", "はい", "--closing", "敬具", "--subject", "別",
                                   complaints=["1 character "]))
        self.assertEqual(upper.subject(), "別")
        self.assertEqual(upper.body(), "はい\r\n\r\n敬具\r\n\r\n\r\n----- Original Message -----\r\n" + quoted)
        for subject, expected in ("RE: a", "RE: a"), ("Rea", "Re: Rea"), ("", "Re: "):
            self.assertEqual(Message(self.reply(mail(subject=subject))).subject().strip(), expected.strip())

    def test_reply_never_loses_a_file(self):
        (self.folder / "in").write_bytes(mail())
        self.run_it("reply", "in", "-o", "in", status=64, complaints=["in: is also the file to write"])
        self.run_it("reply", "-", "--body-file", "-", "-o", "-", status=64, complaints=["standard input"])
        self.run_it("reply", "-", "-o", "out", data=b"\n", status=65, complaints=["is empty"])
        self.assertEqual(sorted(os.listdir(self.folder)), ["in", "tmp"])

    def test_what_write_makes_read_gives_back_or_write_warns(self):
        (self.folder / "bare.eml").write_bytes(b"Subject: x\r\n\r\nx")
        (self.folder / "a;b.txt").write_text("x")
        (self.folder / "empty").touch()
        for names in ["empty"], ["a;b.txt", "bare.eml", "empty"]:
            options = [option for name in names for option in ("--attach", name)]
            out = self.run_it("write", "--from", "株式会社A, 田中 <t@e.jp>", *options, "-o", "-")
            read = self.opened(out, "--extract", "out")
            self.assertEqual([f["original"] for f in read["files"]], names)
            for name, f in zip(names, read["files"]):
                self.assertEqual((self.folder / f["path"]).read_bytes().rstrip(), (self.folder / name).read_bytes())
            self.assertEqual(read["from"], [{"name": "株式会社A, 田中", "address": "t@e.jp"}])
        self.run_it("write", "--subject", "x" * 2000, "-o", "-", complaints=["line of 2009 bytes"])

    def test_many_messages_come_one_by_one(self):
        one, two, three = (mail(f"{n} ä\r\n".encode(), subject=n) for n in ("one", "two", "three"))
        for name, data in ("dir/new/2", one), ("dir/cur/1", two), ("dir/tmp/0", three), ("flat/b", three), ("flat/a", one):
            (self.folder / name).parent.mkdir(parents=True, exist_ok=True)
            (self.folder / name).write_bytes(data)
        (self.folder / "flat" / "c").mkdir()
        box = b"".join(b"From x Thu Jan  1 00:00:00 1970\n" + m.replace(b"\r\n", b"\n") + b">From x\n\n" for m in (one, two, three))
        (self.folder / "box").write_bytes(box)
        numbered = [f"box, message {number}\t{n}" for number, n in enumerate(("one", "two", "three"), 1)]
        for source, lines in ("dir", ["dir/new/2\tone", "dir/cur/1\ttwo"]), ("flat", ["flat/a\tone", "flat/b\tthree"]), ("box", numbered):
            self.assertEqual(self.run_it("subject", source).decode().splitlines(), lines)
        read = [json.loads(line) for line in self.run_it("read", "--json", data=box).splitlines()]
        self.assertEqual([(m["file"], m["message"], m["subject"]) for m in read], [("-", 1, "one"), ("-", 2, "two"), ("-", 3, "three")])
        self.assertEqual(read[0]["body"], "one ä\r\n>From x\r\n")
        self.assertEqual(Message(self.reply(box, "--message", "2", complaints=["1 character "])).subject(), "Re: two")
        for arguments, words in (["box"], "name one with --message"), (["box", "--message", "4"], "holds 3 messages"):
            self.run_it("reply", *arguments, "-o", "-", status=64 if "name" in words else 65, complaints=[words])
        with subprocess.Popen([COMMAND, "read", "--json"], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
            process.stdin.write(box)
            process.stdin.flush()  # the third may go on
            self.assertEqual([json.loads(process.stdout.readline())["message"] for _ in range(2)], [1, 2])
            process.communicate()

    def test_answers_go_where_the_mail_says(self):
        fields = "Cc: list@x, z@z\r\nReply-To: =?utf-8?B?8J+YgOi/lOS/oQ==?= <list@x>\r\n"
        data = mail("ö\r\n".encode(), word("会😀", "utf-8"), fields, kind="text/plain; charset=utf-8")
        read = Message(self.reply(data, "--all", complaints=["2 characters"]))
        self.assertEqual([read.addresses("To"), read.addresses("Cc")], [[("〓返信", "list@x")], [("", "c@d"), ("", "z@z")]])
        self.assertEqual(read.subject(), "Re: 会〓")
        me, cc = ["--own", "私 <ME@Y>"], "Cc: e@f\r\n"
        for sender, to, fields, more, expected in (
                ("a@b", "me@x, c@d", cc, [], "a@b|"), ("a@b", "ME@X, c@d, me@y", cc, ["--all", *me], "a@b|c@d e@f"),
                ("a@b", "c@d, C@d, c@D, A@b", "Cc: c@D, a@B\r\n", ["--all"], "a@b|c@d C@d A@b"),
                ("a@b", "c@d", "Reply-To: me@x\r\n", ["--all"], "a@b|c@d"),
                ("a@b", "c@d", "Reply-To: l@m, c@d\r\n", ["--all", "--cc", "L@M", "--to", "l@M"], "l@m c@d|L@M"),
                ("me@y", "c@d, me@x", cc + "Reply-To: l@m\r\n", me, "c@d|"), ("me@x", "c@d", cc, ["--all"], "c@d|e@f"),
                ("me@x", "ME@x", cc, ["--all"], "e@f|"), ("me@x", "me@x", "", ["--all"], "me@x|"), ("me@x", "", "", [], "me@x|")):
            for strict in [], ["--strict"]:
                with self.subTest(sender=sender, to=to, more=more, strict=strict):
                    read = Message(self.reply(mail(sender=sender, to=to, fields=fields), *more, *strict))
                    self.assertEqual("|".join(" ".join(a for _, a in read.addresses(f)) for f in ("To", "Cc")), expected)
        for strict in [], ["--strict"]:
            out = self.reply(mail(fields="Message-ID: <2@x>\r\nIn-Reply-To: <1@x>\r\n"), *strict)
            self.assertIn(b"\r\nReferences: <1@x>\r\n\t<2@x>\r\n", out)


if __name__ == "__main__":
    unittest.main()
