#!/usr/bin/python3
"""One language throughout: help and errors in a Japanese locale and in C.UTF-8. First argument: the command."""
import os
import pathlib
import re
import shlex
import socket
import subprocess
import sys
import tempfile
import threading
import unittest

COMMAND = os.path.abspath(sys.argv.pop(1))
TEXTS = pathlib.Path(__file__).resolve().parents[2] / "mailengine/support/TextList.inc"
LIBRARY = set(re.findall("[\u3000-\uffef]+", TEXTS.read_text(encoding="utf-8")))
JAPANESE = re.compile("[\u3041-\u30fa\u4e00-\u9fff]")
SENTENCE = re.compile(r"[A-Za-z]{2,}[ ,;:]+[A-Za-z]{2,}")
# What is no sentence: a server's line, the program and its command, options, metavariables, what stands in quotes, names
# with a dot or a slash, words with a digit, the library's own texts.
NO_SENTENCE = re.compile(
    r"\b[2-5]\d\d [a-z ]+|mailengine [a-z]+|--?[a-z][\w-]*|\b[A-Z][A-Z_]+\b|'[^']*'|「[^」]*」|[\w.$~@:=-]*[./@][\w./@-]*|"
    r"\b[\w-]*\d[\w-]*|" + "|".join(sorted(LIBRARY, key=len, reverse=True)))
SHOWN = re.compile(r"x?$| ?(From|To|Cc|Date|Subject):|==>|\[mail")  # the library's summary of a mail, and its text

MAIL = "From: a@b.jp\nTo: c@d.jp\nSubject: s\nMIME-Version: 1.0\n"
PARTS = "Content-Type: multipart/%s; boundary=b\n\n--b\n"
FILES = {
    "mail": MAIL + "\nx\n", "two": 2 * f"From a@b\n{MAIL}\nx\n\n", "empty": "", "jpeg": "\xff\xd8\xff\xe0\0\x10JFIF",
    "nul.eml": MAIL + "\nx\0y", "cut": MAIL + PARTS % "mixed" + "\nx", "sealed": MAIL + PARTS % "encrypted" + "\nx\n--b--",
    "odd": MAIL + "Content-Transfer-Encoding: x-odd\n\nx\n", "nobody": "Subject: s\n\nx\n", "sjis": "\x93\xfa", 'a".txt': "",
    "mime": MAIL.replace("1.0", "2.0") + "\nx\n", "alone": MAIL + "Content-Type: multipart/mixed\n\nx\n",
    "html": MAIL + "Content-Type: text/html\n\n<p>x\n", "none.eml": MAIL + PARTS.replace("--b\n", "") % "mixed" + "x\n",
    "nested": MAIL + PARTS % "mixed" + "Content-Type: message/rfc822\n\nx\n--b--\n", "a\n": "", "old.ini": "x=1\n",
    "bare": MAIL + PARTS % "mixed" + "Content-Type: text/x-a\n\nx\n--b--\n", "bad.ini": "[mail]\nx=1\n"}
# What a server says before it hangs up.
SERVERS = {"REFUSES": "220 hi\r\n250 ok\r\n250 ok\r\n550 nobody here\r\n", "LOGIN": "220 hi\r\n250 ok\r\n530 log in\r\n",
           "SSH": "SSH-2.0\r\n", "TAKES": "220 hi\r\n" + 3 * "250 ok\r\n" + "354 go\r\n",
           "GOOD": "220 hi\r\n" + 3 * "250 ok\r\n" + "354 go\r\n250 ok\r\n221 bye\r\n"}
LETTER = "--from a@b.jp --to c@d.jp"
COMMANDS = [
    "", "wirte", "help x", "write", "write --sbject x", "write -o", "write -o - x", "write -o - --body a --body-file b",
    "write -o a -o b", "read --json=1", "send --message 1", "read ''", "read none", "subject .", "write -o none/x",
    "write -o ''", "write -o .", "write -o x/", "write -o link", "write -o /dev/fd/9", f"write -o /dev/full {LETTER}",
    f"write -o /dev/stdin {LETTER}", f"write {LETTER} -o mail --attach mail", f"write {LETTER} -o - --config bad.ini",
    *(f"write -o /dev/null {LETTER} --attach {file}" for file in ("none", ".", "fifo", "'a\".txt'", "nul.eml", "''", "'a\n'")),
    *(f"write -o /dev/null --from a@b.jp --to '{to}'" for to in (
        "a", "<a@b", "a@@b", "a@b..c", "a@.b", "a@b.", "a b@c", "mailto:a@b?c", "mailto:a%@b", "A\\ <a@b>", "", "日@b")),
    *(f"write -o /dev/null {LETTER} {text}" for text in (
        "--subject 'a\nb'", "--subject \x07", "--subject 😀", "--mailer 日", "--body-file sjis", "--body-file none")),
    *(f"read {strict} {shlex.quote(name)}" for name in FILES if name != "sjis" for strict in ("", "--strict")),
    "read --extract mail mail", "reply two -o -", "reply two -o - --message 3", "reply two -o - --message x", "reply empty -o -",
    "reply mail -o mail", "reply - -o - --body-file -", "reply mail -o - --subject ''", "reply nobody -o /dev/null --from a@b.jp",
    "send --server h:x", "send --server h", "send --server h --from a@b.jp", f"send --server h {LETTER} --dry-run",
    f"send --server h {LETTER}" + "".join(f" --to {i}@d.jp" for i in range(101)),
    *(f"send {LETTER} --sendmail {program}" for program in ("/none", "./busy")),
    "read mail --extract /proc/none/x", "read html --extract .", f"write {LETTER} -o - --config old.ini",
    f"write {LETTER} -o /dev/null --subject " + 1000 * "x",
    *(f"send {LETTER} --server {server}" for server in ("127.0.0.1:1", "no.invalid", *SERVERS)),
]


def serve(server, replies):
    while True:
        connection = server.accept()[0]
        with connection, connection.makefile("rb") as commands:
            for reply in replies.splitlines(True):
                connection.sendall(reply.encode())
                while commands.readline() not in (b".\r\n", b"") and reply.startswith("354"):
                    pass


class LanguageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        for name, text in FILES.items():
            (cls.folder / name).write_bytes(text.encode("latin-1"))
        (cls.folder / "link").symlink_to("nowhere")
        os.mkfifo(cls.folder / "fifo")
        (cls.folder / "busy").write_text("#!/bin/sh\ncat >/dev/null\nexit 75\n")
        (cls.folder / "busy").chmod(0o755)
        cls.ports = {}
        for name, replies in SERVERS.items():
            server = socket.create_server(("127.0.0.1", 0))
            cls.addClassCleanup(server.close)
            threading.Thread(target=serve, args=(server, replies), daemon=True).start()
            cls.ports[name] = f"127.0.0.1:{server.getsockname()[1]}"
        (cls.folder / "locales").mkdir()
        subprocess.run(["localedef", "-i", "ja_JP", "-f", "UTF-8", cls.folder / "locales/ja_JP.UTF-8"], check=True)

    def run_it(self, locale, arguments):
        """The status, and what the command says itself: the summary and the text of a mail are left out."""
        environment = {"LC_ALL": locale, "LOCPATH": str(self.folder / "locales"), "HOME": str(self.folder)}
        result = subprocess.run([COMMAND, *arguments], cwd=self.folder, env=environment, stdin=subprocess.DEVNULL,
                                capture_output=True, timeout=60)
        said = (result.stdout + result.stderr).decode().replace("mailengine: ", "").splitlines()
        return result.returncode, [line for line in said if not SHOWN.match(line)]

    def check(self, command):
        arguments = [self.ports.get(word, word) for word in shlex.split(command)]
        status, japanese = self.run_it("ja_JP.UTF-8", arguments)
        other, english = self.run_it("C.UTF-8", arguments)
        self.assertEqual((status, bool(japanese)), (other, bool(english)), (japanese, english))
        for line in japanese:
            plain = NO_SENTENCE.sub("", line)
            self.assertFalse(SENTENCE.search(plain), line)
            self.assertTrue(JAPANESE.search(line) or not re.search("[A-Za-z]{2}", plain), line)
        for line in english:
            self.assertFalse(JAPANESE.search(NO_SENTENCE.sub("", line)), line)

    def test_help_and_errors(self):
        _, program = self.run_it("C.UTF-8", ["help"])
        commands = [line.split()[0] for line in program if re.match("  [a-z]", line)]
        self.assertIn("send", commands)
        for command in ["help", *(f"{command} --help" for command in commands), *COMMANDS]:
            with self.subTest(command):
                self.check(command)


if __name__ == "__main__":
    unittest.main()
