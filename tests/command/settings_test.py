#!/usr/bin/python3
"""The settings, as the command takes them. First argument: the command."""
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

COMMAND = os.path.abspath(sys.argv.pop(1))
GOOD = ("\ufeff# mine\r\n[user]\r\n from = 山田 <y@example.jp> \r\nown=a@b; c@d;\nreply-to = r@example.jp\n"
        "signature = 山田\\n\\s℡ 03\n\n[send]\nserver = 127.0.0.1:1\nlimit = 25m\ncopy = ~/sent")
BAD = (  # what stands behind the first group, the line, and what is said of it
    ("[sned]", 2, r"no group is named \[sned\]; the groups are \[user\], \[send\]"),
    ("form = a@b", 2, r"no key of \[user\] is named form; it has from, own, reply-to, signature"),
    ("own = a@b\n\nown = c@d", 4, "own stands in line 2 too"), ("x", 2, "is neither .*"), ("=x", 2, "is neither .*"),
    ("from = a@b\nown = a@b; c", 3, "own 'c': .*"), ("from = ", 2, "from: is empty; take it out"), ("own = ", 2, "own: .*"),
    ("signature = a\\n😀", 2, "signature: line 2, column 1: 😀 .*"), ("signature = \\q", 2, "signature: a backslash begins .*"),
    ("own = a@b\nfrom = \xff@b".encode("latin-1"), 3, "is not UTF-8.*"), ("from = a\0@b", 2, "is not UTF-8.*"),
    ("[send]\nserver = h:x", 3, "server 'h:x': .*"), ("[send]\ncopy = sent", 3, "copy 'sent': .*"),
    ("[send]\nlimit = 1T", 3, "limit '1T': .*"), ("[send]\nlimit = 99999999999G", 3, "limit .*"),
)


class SettingsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.file = self.folder / "mailengine/config.ini"
        self.file.parent.mkdir()

    def run_it(self, command, *arguments):
        result = subprocess.run([COMMAND, command, "--to", "t@example.jp", *arguments], stdin=subprocess.DEVNULL,
                                capture_output=True, text=True, env=os.environ | {"XDG_CONFIG_HOME": str(self.folder)})
        return result.returncode, result.stdout, result.stderr

    def test_what_is_set_goes_into_a_mail_and_options_beat_it(self):
        self.assertEqual(self.run_it("write", "-o", os.devnull), (0, "", ""))  # none are there
        self.file.write_text(GOOD, encoding="utf-8", newline="")
        message = self.folder / "mail.eml"
        for options, sender, reply, body in ([], "山田 <y@example.jp>", "r@example.jp", "山田\n ℡ 03"), (
                ["--from", "o@example.jp", "--reply-to", "p@example.jp", "--signature", "o"], "o@example.jp",
                "p@example.jp", "o"):
            self.assertEqual(self.run_it("write", "-o", message, *options), (0, "", ""))
            shown = subprocess.run([COMMAND, "read", message], capture_output=True, text=True).stdout
            self.assertRegex(shown, f"From: +{sender}\n")
            self.assertTrue(shown.rstrip().endswith("\n\n" + body), shown)
            self.assertIn(f"Reply-To: {reply}\n", message.read_text())
        self.assertIn("nobody listens at 127.0.0.1:1\n", self.run_it("send")[2])

    def test_each_mistake_is_told_with_its_line(self):
        config = self.folder / "設定.ini"
        for text, line, words in BAD:
            with self.subTest(text):
                config.write_bytes(b"[user]\n" + (text if isinstance(text, bytes) else text.encode()))
                status, _, error = self.run_it("write", "--config", config, "-o", "-")
                self.assertRegex(error, rf"^mailengine: {config}: line {line}: {words}\n$")
                self.assertEqual(status, 78)
        config.write_text("from = a@b")
        self.assertIn("line 1: stands in front of the first group", self.run_it("write", "--config", config, "-o", "-")[2])
        config.unlink()
        self.assertRegex(self.run_it("write", "--config", config, "-o", "-")[2], f"{config}: cannot be read: .*\n$")


if __name__ == "__main__":
    unittest.main()
