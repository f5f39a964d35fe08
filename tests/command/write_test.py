#!/usr/bin/python3
"""mailengine write as a user starts it. First argument: the command."""
import fcntl
import os
import pathlib
import re
import resource
import stat
import subprocess
import sys
import tempfile
import time
import unicodedata
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
sys.dont_write_bytecode = True
from message_reader import Message  # noqa: E402

COMMAND = os.path.abspath(sys.argv.pop(1))
LEADING_FIELDS = b"From: "


class WriteTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.out = self.folder / "out.eml"
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        os.chmod(temporary.name, 0o777)
        self.temporary = pathlib.Path(temporary.name)

    def run_it(self, *arguments, **options):
        options = {"stdin": subprocess.DEVNULL, "capture_output": True, "cwd": self.folder,
                   "env": os.environ | {"TMPDIR": str(self.temporary)}} | options
        return subprocess.run([COMMAND, *arguments], **options)

    def write(self, *arguments, **options):
        return self.run_it("write", *arguments, **options)

    def written(self, *arguments, **options):
        result = self.write(*arguments, "-o", "-", **options)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        return Message(result.stdout)

    def assert_fails(self, result, status, *words):
        lines = result.stderr.decode().splitlines()
        self.assertEqual((result.returncode, len(lines)), (status, 1), result.stderr)
        self.assertTrue(lines[0].startswith("mailengine: "), lines)
        for word in words:
            self.assertIn(word, lines[0])

    def assert_only(self, *names):
        self.assertEqual(sorted(os.listdir(self.folder)), sorted(names))

    def test_missing_standard_files_are_refused_and_no_file_takes_their_numbers(self):
        (self.folder / "mail.eml").write_bytes(b"Subject: s\r\nMIME-Version: 1.0\r\n\r\nx\r\n")
        (self.folder / "empty").touch()
        reply = "reply mail.eml --from c@d -o out.eml "
        for command, status in ((reply + "--body-file - <&-", 66), ("read <&-", 66), ("write -o - >&-", 73),
                                ("read mail.eml >&-", 73), (reply + "--attach empty <&- >&- 2>&-", 0)):
            with self.subTest(command):
                self.out.unlink(missing_ok=True)
                result = subprocess.run(f"{COMMAND} {command}", shell=True, cwd=self.folder, capture_output=True)
                self.assertEqual((result.returncode, self.out.exists()), (status, status == 0))
                self.assertEqual(b"standard" in result.stderr, status != 0, result.stderr)
        self.assertEqual(Message(self.out.read_bytes()).attachments(), [("empty", b"")])

    def test_an_attached_mail_is_one_or_else_a_file(self):
        top = b"Subject: s\nMIME-Version: 1.0\n\n"
        for data, fault in ((top + b"x\n", None), (top.replace(b"\n", b"\r\n") + b"x", None), (b"a\r\rb\n\r\nc" + b"\n" * 70000, None),
                            (top + b"x" * 998 + b"\n", None), (top + b"x" * 999, "998 bytes in line 4, at byte 1028"),
                            (b"x" * 70000 + b"\0", "998 bytes in line 1, at byte 998"), (top + b"\0", "a NUL in line 4, at byte 30"),
                            (top + "件".encode(), "a byte above 7F in line 4, at byte 30")):
            with self.subTest(data=data[:40], fault=fault):
                (self.folder / "in.eml").write_bytes(data)
                result = self.write("--attach", "in.eml", "-o", "-")
                if fault:
                    self.assert_fails(result, 0, "warning: in.eml is attached as the file in.EML", fault)
                    self.assertEqual(Message(result.stdout).attachments(), [("in.EML", data)])
                else:
                    self.assertEqual(result.stderr, b"")
                    self.assertIn(b"\r\n\r\n" + re.sub(b"\r\n|\r|\n", b"\r\n", data) + b"\r\n--", result.stdout)

    def test_names_that_code_page_932_lacks_are_carried(self):
        far = self.folder / "😀 𠮷" / "か\\"
        far.mkdir(parents=True)
        names = {"4月〜6月①.txt": "4月～6月①.txt", unicodedata.normalize("NFD", "ガイド.pdf"): "ガイド.pdf", "神﨑髙①.txt": "神﨑髙①.txt"}
        for i, name in enumerate(names):
            (far / name).write_bytes(b"%d" % i)
            (self.folder / name).write_bytes(b"top")
        mail = self.written(*(f"--attach={folder / name}" for folder in (far, self.folder) for name in names))
        self.assertEqual(mail.attachments(), [(name, b"%d" % i) for i, name in enumerate(names.values())] +
                         [(name, b"top") for name in names.values()])
        self.assertEqual(os.listdir(self.temporary), [])
        name = next(iter(names))
        with open(far / name) as file:
            fcntl.flock(file, fcntl.LOCK_EX)
            self.assert_fails(self.write("--attach", far / name, "-o", "-"), 66, f"--attach {far / name}: is locked")

    def test_help_on_every_level(self):
        for arguments, word in ((["--help"], b"write"), (["write", "--help"], b"--body-file"), (["help"], b"subject"),
                                (["help", "write"], b"--body-file"), (["write", "--form", "--help"], b"--body-file")):
            result = self.run_it(*arguments)
            self.assertEqual((result.returncode, result.stderr), (0, b""))
            self.assertIn(word, result.stdout)

    def test_a_wrong_command_line_is_told_first(self):
        for arguments, word in (
            ([], "a command is missing"), (["wirte", "--to", "x"], "wirte: there is no such command; did you mean write?"),
            (["xyz"], "command; see"), (["help", "raed"], "mean read?"), (["--versoin"], "--versoin: there is no such option"),
            (["write"], "--output is missing"), (["write", "-o"], "-o: its value is missing"),
            (["write", "--form", "x"], "--form: there is no such option; did you mean --from?"),
            (["write", "-o", "-", "--subjekt=a", "b"], "--subjekt: there is no such option; did you mean --subject?"),
            (["write", "a.eml", "-x", "-o"], "-x: there is no such option"),
            (["write", "-o", "-", "b", "c"], "b c: more than the command takes"), (["write", "send"], "send: more than"),
            (["write", "-o", "-", "-s", "a", "--subject", "b"], "--subject is given more than once"),
            (["write", "-o", "-", "--body", "a", "--body-file", "-"], "--body and --body-file cannot both be given"),
            (["write", "-o", "-", "--attach", ""], "--attach: is empty"), (["read", "--json=x"], "--json takes no value"),
            (["send", "--", "a", "--quiet"], "--quiet: more than the command takes"),
            (["send", "--server", "h", "--message", "1"], "--message needs FILE or --answer beside it"),
            (["reply", "x", "--message", "0x"], "--message: '0x' is no number from 1 up"), (["reply", "-o", "-"], "FILE is missing"),
        ):
            with self.subTest(arguments):
                self.assert_fails(self.run_it(*arguments), 64, word, "--help")

    def test_refuses_before_anything_is_written(self):
        (self.folder / "body").write_bytes("一\r\n二三𠮷".encode())
        (self.folder / "sjis").write_bytes(b"\x93\xfa")
        (self.folder / 'a".txt').touch()
        (self.folder / "a\n.txt").touch()
        (self.folder / "..\\a").touch()
        (self.folder / "😀.txt").touch()
        (self.folder / os.fsdecode(b"\xff")).touch()
        os.mkfifo(self.folder / "fifo")
        for arguments, words in (
            (["--subject", "件名😀"], ["--subject", "line 1, column 3", "😀", "--replace"]),
            (["--body-file", "body"], ["body: line 2, column 3", "𠮷 (U+20BB7)"]),
            (["--body-file", "sjis"], ["sjis", "byte 0x93"]),
            (["--body-file", "none"], ["none", "No such file"]),
            (["--subject", "a\r\nBcc: b@c"], ["--subject", "column 2", "one line"]),
            (["--to", "a\n <b@c>"], ["--to"]), (["--mailer", "日本"], ["--mailer", "ASCII"]),
            (["--to", ""], ["アドレスが入力されていません。"]),
            (["--to", "日本@a"], ["アドレスに日本語が混じっています。"]),
            (["--from", "山田 <a>"], ["--from", "山田 <a>", "アドレスの形式が不正です。"]),
            (["--cc", "a@b, c@d"], ["--cc"]), (["--bcc", "A <a@b>, B <c@d>"], ["--bcc"]),
            (["--reply-to", "a> <b@c>"], ["--reply-to"]), (["--to", "<a@b"], ["--to"]), (["--to", "A\\ <a@b>"], ["backslash"]),
            (["--to", "tanaka@@example.jp"], ["a second @ stands behind 'tanaka@'"]),
            (["--to", "tanaka@example..jp"], ["a second dot stands behind 'tanaka@example.'"]),
            (["--to", '"a@b"@e.jp.'], ["a last dot stands behind"]), (["--to", "t@.jp"], ["a dot stands behind 't@'"]),
            (["--to", "mailto:a@b?cc=c@d"], ["'?'"]), (["--to", "mailto:a%0Db@c"], ["one line"]),
            (["--attach", "none"], ["--attach none", "No such file"]),
            (["--attach", "."], ["--attach .: is a folder"]), (["--attach", "no/x"], ["the folder no cannot be reached"]),
            (["--attach", "fifo"], ["regular file"]),
            (["--attach", 'a".txt'], ["double quote"]), (["--attach", "..\\a"], ["backslash"]),
            (["--attach", "a\n.txt"], ["a\\x0A.txt", "control"]),
            (["--attach", "😀.txt"], ["--attach 😀.txt: its name: 😀 (U+1F600)", "another name"]),
            (["--attach", os.fsdecode(b"\xff")], ["its name is not UTF-8"]),
        ):
            with self.subTest(arguments):
                isRead = "--body-file" in arguments and "none" in arguments or arguments[1] in ("none", ".", "no/x", "fifo")
                self.assert_fails(self.write(*arguments, "-o", self.out), 66 if isRead else 65, *words)
                self.assertFalse(self.out.exists())
        result = self.write("--subject", "a😀\x1b", "--replace", "-o", "-")
        self.assert_fails(result, 65, "U+001B")

    def test_takes_values_as_they_are(self):
        mail = self.written("-s", "[a,b]", "--body", "--from", "--signature", "-- ", "-t", "a@b", "--to", "<c@d>")
        self.assertEqual(mail.subject(), "[a,b]")
        self.assertEqual(mail.body(), "--from\r\n\r\n-- ")
        self.assertEqual(mail.addresses("To"), [("", "a@b"), ("", "c@d")])

    def test_takes_addresses_as_people_type_them(self):
        cases = (("a..b@docomo.example", ("", "a..b@docomo.example")), ("x.@ezweb.example", ("", "x.@ezweb.example")),
                 ("山田　太郎　<MAILTO:t%2Bx@e.jp>", ("山田　太郎", "t+x@e.jp")),
                 ("　mailto:tanaka@example.jp　", ("", "tanaka@example.jp")))
        mail = self.written(*(word for typed, _ in cases for word in ("--to", typed)))
        self.assertEqual(mail.addresses("To"), [taken for _, taken in cases])

    def test_what_is_piped_in_is_the_body(self):
        (self.folder / "file").write_bytes("本文".encode())
        answered = self.folder / "answered.eml"
        answered.write_bytes(b"From: a@b.jp\r\nMIME-Version: 1.0\r\n\r\nquestion\r\n")
        for command, given, body in (("write", [], "本文"), ("write", ["--body", ""], ""), ("write", ["--body", "x"], "x"),
                                     ("write", ["--body-file", "/dev/null"], ""), ("reply", ["answered.eml"], "本文"),
                                     ("reply", ["-"], "")):
            with self.subTest(command=command, given=given):
                piped = open(answered if given == ["-"] else self.folder / "file", "rb")
                with piped:
                    mail = Message(self.run_it(command, *given, "-o", "-", stdin=piped).stdout)
                self.assertEqual(mail.body() if command == "write" else re.findall("本文", mail.body()),
                                 body if command == "write" else [body] * bool(body))

    def test_names_of_the_ibm_extension_reach_another_reader(self):
        name = "髙﨑①.txt"
        (self.folder / name).write_bytes(b"\0\xff\r\n")
        mail = self.written("--from", ' "髙橋 﨑子" <a@b> ', "--to", '"A \\"B\\"" <c@d>', "--subject", "髙😀", "--replace",
                            "--body-file", "-", "--attach", name, input="\ufeff髙\n〜\rｶﾞ".encode(), stdin=None)
        self.assertEqual(mail.addresses("From"), [("髙橋 﨑子", "a@b")])
        self.assertEqual(mail.addresses("To"), [('A "B"', "c@d")])
        self.assertEqual(mail.subject(), "髙〓")
        self.assertEqual(mail.body(), "髙\r\n～\r\nガ")
        self.assertEqual(mail.attachments(), [(name, b"\0\xff\r\n")])

    def test_an_old_file_stays_until_the_new_message_is_whole(self):
        self.out.write_text("old")
        self.out.chmod(0o640)
        link = self.folder / "link.eml"
        link.symlink_to("out.eml")
        big = self.folder / "big"
        big.touch()
        os.truncate(big, 200_000)

        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (100_000, 100_000))
        self.assert_fails(self.write("--attach", "big", "-o", "link.eml", preexec_fn=limit), 74, "link.eml", "too large")
        self.assertEqual(self.out.read_text(), "old")
        self.assert_only("big", "link.eml", "out.eml")
        self.assertEqual(self.write("--attach", "big", "-o", "link.eml").returncode, 0)
        self.assertTrue(link.is_symlink())
        self.assertTrue(self.out.read_bytes().startswith(LEADING_FIELDS))
        self.assertEqual(stat.S_IMODE(self.out.stat().st_mode), 0o640)
        self.assert_only("big", "link.eml", "out.eml")

    def test_a_new_file_obeys_the_umask(self):
        self.assertEqual(self.write("-o", "out.eml", umask=0o027).returncode, 0)
        self.assertEqual(stat.S_IMODE(self.out.stat().st_mode), 0o640)
        self.assert_only("out.eml")

    def test_refuses_targets_that_are_no_place_for_a_message(self):
        (self.folder / "dangling").symlink_to("nowhere")
        for target, status, word in (".", 73, "folder"), ("x/", 73, "no file"), ("dangling", 73, "link"), ("no/x", 74, "no/x"):
            with self.subTest(target):
                self.assert_fails(self.write("-o", target), status, word)
        self.assert_only("dangling")

    def test_never_writes_over_an_attachment(self):
        self.out.write_text("mine")
        os.link(self.out, self.folder / "hard")
        (self.folder / "soft").symlink_to("out.eml")
        for target in "out.eml", "./out.eml", "hard", "soft", "/dev/stdout", "-":
            with self.subTest(target), open(self.out, "ab") as stdout:
                out = stdout if target in ("/dev/stdout", "-") else subprocess.DEVNULL
                result = self.write("--attach", "out.eml", "-o", target, capture_output=False, stdout=out,
                                    stderr=subprocess.PIPE)
                self.assert_fails(result, 64, "--attach out.eml", "-o")
                self.assertEqual(self.out.read_text(), "mine")

    def test_a_descriptor_is_written_where_it_stands(self):
        for target in "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1", "link":
            with self.subTest(target):
                self.out.write_text("first\n")
                (self.folder / "link").unlink(missing_ok=True)
                (self.folder / "link").symlink_to("/dev/stdout")
                with open(self.out, "ab") as stdout:
                    result = self.write("-o", target, capture_output=False, stdout=stdout, stderr=subprocess.PIPE)
                    stdout.write(b"last\n")
                self.assertEqual((result.returncode, result.stderr), (0, b""))
                self.assertTrue(self.out.read_bytes().startswith(b"first\nFrom: "))
                self.assertTrue(self.out.read_bytes().endswith(b"last\n"))
        with open(self.out, "ab") as stdout:
            result = self.write("-o", "out.eml", capture_output=False, stdout=stdout, stderr=subprocess.PIPE)
        self.assert_fails(result, 73, "out.eml", "standard output")
        for number in 9, 9999999:
            self.assert_fails(self.write("-o", f"/dev/fd/{number}"), 73, f"/dev/fd/{number}", "closed")
        with open(COMMAND, "rb") as stdin:
            self.assert_fails(self.write("--body", "", "-o", "/dev/stdin", stdin=stdin), 73, "/dev/stdin", "reading alone")

    def test_waits_for_pipes_that_do_not_block(self):
        text_reader, text = os.pipe()
        mail_reader, mail = os.pipe()
        os.set_blocking(text_reader, False)
        os.set_blocking(mail, False)
        process = subprocess.Popen([COMMAND, "write", "--body-file", "-", "-o", "-"], stdin=text_reader, stdout=mail)
        os.close(text_reader)
        os.close(mail)
        time.sleep(0.1)  # it meets an empty pipe, then a full one
        with open(text, "wb") as pipe:
            pipe.write(b"x" * 200_000)
        time.sleep(0.1)
        with open(mail_reader, "rb") as pipe:
            self.assertIn(b"x" * 200_000, pipe.read())
        self.assertEqual(process.wait(), 0)

    def test_an_old_file_keeps_its_owner_and_rights(self):
        if os.geteuid() != 0:
            self.skipTest("only root can make a file of another owner")
        self.folder.chmod(0o777)
        as_user = {"user": 1001, "group": 1001, "extra_groups": [2000]}
        for owner, group, mode, status in (1001, 2000, 0o660, 0), (1001, 2001, 0o660, 73), (1000, 2000, 0o660, 73):
            with self.subTest(owner=owner, group=group):
                self.out.write_text("old")
                os.chown(self.out, owner, group)
                self.out.chmod(mode | 0o006)
                before = self.out.stat()
                result = self.write("-o", "out.eml", **as_user)
                self.assertEqual(result.returncode, status, result.stderr)
                if status:
                    self.assert_fails(result, 73, "out.eml", "owner, group", "--in-place")
                    self.assertEqual(self.out.read_text(), "old")
                    self.assertEqual(self.write("-o", "out.eml", "--in-place", **as_user).returncode, 0)
                    self.assertEqual(self.out.stat().st_ino, before.st_ino)
                self.assertTrue(self.out.read_bytes().startswith(LEADING_FIELDS))
                after = self.out.stat()
                self.assertEqual((after.st_uid, after.st_gid, after.st_mode), (before.st_uid, before.st_gid, before.st_mode))
                self.assert_only("out.eml")

    def test_a_file_that_is_mounted_is_written_in_place_alone(self):
        self.out.write_text("old")
        mounted = ["unshare", "-m", "sh", "-c", 'mount --bind out.eml out.eml && exec "$@" </dev/null', "sh"]
        if subprocess.run([*mounted, "true"], cwd=self.folder, capture_output=True).returncode:
            self.skipTest("this system lets nobody mount")
        write = [*mounted, COMMAND, "write", "--from", "a@b.jp", "-o", "out.eml"]
        for more, status, top in ([], 73, "old"), (["--in-place"], 0, "From: a@b.jp"):
            result = subprocess.run([*write, *more], cwd=self.folder, capture_output=True)
            self.assertEqual((result.returncode, self.out.read_text().split("\n")[0]), (status, top), result.stderr)
            self.assert_only("out.eml")

    def test_an_attachment_that_changes_is_refused_by_name(self):
        grown = self.folder / "grown"
        grown.write_bytes(b"x" * 100_000)
        with open(grown, "ab") as end:
            cat = subprocess.Popen(["cat"], stdin=subprocess.PIPE, stdout=end)
        result = self.write("--attach", "grown", "-o", "-", capture_output=False, stdout=cat.stdin, stderr=subprocess.PIPE)
        cat.communicate()
        self.assert_fails(result, 66, "--attach", "grown", "was changed")
        shrunk = self.folder / "shrunk"
        reader, writer = os.pipe()
        shrunk.write_bytes(b"x" * 10_000_000)
        with subprocess.Popen([COMMAND, "write", "--attach", "shrunk", "--body", "", "-o", "-"], cwd=self.folder,
                              stdout=writer, stderr=subprocess.PIPE) as process:
            os.close(writer)
            os.read(reader, 1000)
            os.truncate(shrunk, 9_000_000)
            with open(reader, "rb") as pipe:
                pipe.read()
            self.assertIn(b"shrunk: was changed", process.stderr.read())
        self.assertEqual(process.returncode, 66)
        status = self.written("--attach", "/proc/self/status").attachments()
        self.assertEqual((status[0][0], status[0][1][:5]), ("status", b"Name:"))
        with open(grown) as file:
            fcntl.flock(file, fcntl.LOCK_EX)
            self.assert_fails(self.write("--attach", "grown", "-o", "-"), 66, "grown", "locked by another program")

    def test_notices_that_the_output_takes_no_more(self):
        self.assert_fails(self.write("-o", "/dev/full"), 74, "/dev/full", "No space left")
        with open("/dev/full", "wb") as full:
            for arguments in ["write", "-o", "-"], ["--help"]:
                result = self.run_it(*arguments, capture_output=False, stdout=full, stderr=subprocess.PIPE)
                self.assert_fails(result, 74, "standard output")
        reader, writer = os.pipe()
        os.close(reader)
        with open(writer, "wb") as pipe:
            result = self.write("-o", "-", capture_output=False, stdout=pipe, stderr=subprocess.PIPE)
        self.assert_fails(result, 74, "standard output", "Broken pipe")
        self.assert_fails(self.write("-o", "-", preexec_fn=lambda: os.close(1)), 73, "standard output", "closed")
        self.assertEqual(self.write("-o", "/dev/null").returncode, 0)
        self.assertTrue(stat.S_ISCHR(os.stat("/dev/null").st_mode))


if __name__ == "__main__":
    unittest.main()
