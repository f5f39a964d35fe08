#!/usr/bin/python3
"""mailengine send against real mail servers on loopback. First argument: the command."""
import os
import pathlib
import pty
import re
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "servers"))
sys.dont_write_bytecode = True
from peers import Aiosmtpd, Postfix, same  # noqa: E402

COMMAND = os.path.abspath(sys.argv.pop(1))
# Every mix of dots and line ends, also at the borders of the pieces that the writer reads (1,023 bytes).
MIX = b"MIME-Version: 1.0\r\n\r\n.\r\n..\r\n.a\n.b\r.c\r\r\n.\n.\r.\n\r\n\n\n\r\r.\r\n" + b"x" * 947 + b"\r\n.y\r"
LETTER = ["--from", "山田 <s@example.test>", "--to", "髙橋 <a@example.test>", "--subject", "日本語の件名", "--body",
          "本文\n.\n..x\n", "--signature", "."]


def on_the_wire(message):
    """What a server stores of a message file: bare CR and LF made line ends, and the line end in front of the dot."""
    return re.sub(rb"\r\n|\r|\n", b"\r\n", message) + b"\r\n"


class SendTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.folder.chmod(0o755)
        (cls.folder / "mix.eml").write_bytes(MIX)
        (cls.folder / "写真.bin").write_bytes(bytes(range(256)) * 100)
        (cls.folder / "空.txt").write_bytes(b"")
        (cls.folder / "old.eml").write_bytes(b"From: a@example.test\nSubject: old\nMIME-Version: 1.0\n\ntext\n")
        cls.mails = {
            "plain": ["--from", "s@example.test", "--to", "a@example.test", "--body", ".\n.x\n\n.", "--subject", "plain"],
            "japanese": LETTER,
            "attachments": LETTER + ["--attach", cls.folder / "写真.bin", "--attach", cls.folder / "空.txt",
                                     "--attach", cls.folder / "mix.eml"],
            "answer": ["--answer", cls.folder / "old.eml", "--from", "s@example.test", "--body", "了解"],
            "hundred": LETTER + [word for i in range(99) for word in ("--cc", f"c{i}@example.test")],
        }

    def run_it(self, *arguments):
        return subprocess.run([COMMAND, *arguments], stdin=subprocess.DEVNULL, capture_output=True, timeout=120)

    def send(self, port, *arguments):
        return self.run_it("send", "--quiet", "--server", f"127.0.0.1:{port}", *arguments)

    def message_of(self, *arguments):
        command = ["reply", *arguments[1:]] if arguments[0] == "--answer" else ["write", *arguments]
        result = self.run_it(*command, "-o", "-")
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout

    def serve(self, server):
        self.addCleanup(server.stop)
        return server

    def test_a_peer_that_keeps_every_byte(self):
        server = self.serve(Aiosmtpd(self.folder / "peer"))
        for number, (name, arguments) in enumerate(self.mails.items()):
            with self.subTest(name):
                result = self.send(server.port, *arguments)
                self.assertEqual((result.returncode, result.stdout, result.stderr), (0, b"", b""))
                envelope, stored = server.mails()[number]
                self.assertEqual(same(stored), same(on_the_wire(self.message_of(*arguments))))
                self.assertEqual(envelope["from"], "s@example.test")
                self.assertEqual(len(envelope["to"]), 100 if name == "hundred" else 1)
        result = self.send(server.port, "--from", "s@e.test", "--to", "a@e.test", "--subject", "x" * 990, "--body", "b")
        self.assertEqual((result.returncode, b"999 bytes" in result.stderr), (0, True), result.stderr)

    def test_postfix_at_its_strictest(self):
        server = self.serve(Postfix(self.folder / "postfix"))
        for number, name in enumerate(["plain", "japanese", "attachments"]):
            with self.subTest(name):
                result = self.send(server.port, *self.mails[name])
                self.assertEqual((result.returncode, result.stderr), (0, b""))
                stored = server.mails(number + 1)[number]
                expected = on_the_wire(self.message_of(*self.mails[name])).replace(b"\r\n", b"\n")
                self.assertEqual(same(stored), same(expected))
        result = self.send(server.port, "--from", "s@example.test", "--to", "a@foreign.test", "--body", "x")
        self.assertEqual(result.returncode, 69)
        self.assertRegex(result.stderr, rb"^mailengine: the mail was not sent: 554 .*foreign\.test.*\n$")

    def test_refusals_reach_the_user_and_nothing_arrives(self):
        server = self.serve(Aiosmtpd(self.folder / "refusing", size_limit=20000))
        for name, arguments, status, words in (
                ("recipient", LETTER + ["--cc", "b@refused.test"], 69, b"550 5.1.1 no such user here"),
                ("size", self.mails["attachments"], 69, b"552 Error: Too much mail data"),
                ("missing file", LETTER + ["--attach", self.folder / "missing"], 66, b"missing"),
                ("101", self.mails["hundred"] + ["--cc", "one@more"], 65, b"101 recipients"),
                ("no recipient", LETTER[:2], 65, b"--to"), ("no sender", LETTER[2:], 65, b"--from")):
            with self.subTest(name):
                result = self.send(server.port, *arguments)
                self.assertEqual(result.returncode, status)
                self.assertEqual(result.stderr.count(b"\n"), 1, result.stderr)
                self.assertIn(words, result.stderr)
        self.assertEqual(server.mails(), [])

    def test_blind_copies_are_blind_and_nobody_is_named_twice(self):
        server = self.serve(Aiosmtpd(self.folder / "blind"))
        result = self.send(server.port, *LETTER, "--cc", "a@EXAMPLE.test", "--cc", "A@example.test", "--bcc",
                           "秘密 <b@example.test>", "--bcc", "a@example.test", "--sender-bcc")
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        (envelope, stored), = server.mails()
        self.assertEqual(envelope["to"], ["a@example.test", "A@example.test", "b@example.test", "s@example.test"])
        self.assertNotIn(b"bcc", stored.lower())
        self.assertNotIn(b"b@example.test", stored)

    def test_a_finished_message_goes_as_it_stands(self):
        top = b"From: =?utf-8?B?5bGx?= <y@example.test>\nSender: z@example.test\nTo: A <a@example.test>,\n g: b@example.test;\n"
        rest = b"Subject: s\nX-Odd:  kept\n\n.\n..x\n\n" + b"y" * 998 + b"\n.\nend"
        server = self.serve(Aiosmtpd(self.folder / "finished"))
        mail = self.folder / "finished.eml"
        for data, sent, given, sender, to in (
                (top + b"bcc: c@example.test,\n\td@example.test\n" + rest, top + rest, [], "y@example.test", "abcd"),
                (top + rest + b"\n\n", top + rest + b"\n", ["--to", "e@example.test", "--from", "f@example.test"],
                 "f@example.test", "e"),
                (b"Bcc: a@example.test\r\n\r\nx\ry\r\n", b"\r\nx\r\ny", ["--from", "f@example.test"], "f@example.test", "a")):
            with self.subTest(data=data[:30]):
                mail.write_bytes(data)
                result = self.send(server.port, mail, *given)
                self.assertEqual((result.returncode, result.stderr), (0, b""))
                envelope, stored = server.mails()[-1]
                self.assertEqual(stored, on_the_wire(sent))
                self.assertEqual((envelope["from"], envelope["to"]), (sender, [f"{name}@example.test" for name in to]))
        for data, said in ((top + b"\nx\0", b"a NUL in line 6, at byte 109"), (top + "\n件".encode(), b"above 7F in line 6, at byte 108"),
                           (top + b"\n" + b"x" * 999, b"998 bytes in line 6, at byte 1106"), (b"\xff\xd8 a JPEG", b"no header"),
                           (b"", b""), (b"a: b\n\nx", b"--from"), (b"a: b\nc\nBcc: d@e\n\nx", b"line 2 of its header"),
                           (b"a: b\rBcc: d\n\nx", b"the message's field Bcc"), (b"From: a@b\n\nx", b"--to"), (b"From: a@b..c\n\n", b"--from: the message's field From"),
                           (b"From: a@b\nCc: \"@\" <a@b>, c@d (@), e@@f\n\n", b"--to: the message's field Cc")):
            with self.subTest(said):
                mail.write_bytes(data)
                result = self.run_it("send", "--server", "nowhere.invalid", mail)
                self.assertNotIn(result.returncode, (0, 76))
                self.assertIn(said, result.stderr)
        self.assertEqual(len(server.mails()), 3)
        self.assertEqual(self.send(server.port, mail, "--subject", "x").returncode, 64)

    def answer(self, replies):
        """One session of a server that answers each command by its reply; none closes the connection."""
        with socket.create_server(("127.0.0.1", 0)) as server:
            process = subprocess.Popen([COMMAND, "send", "--quiet", "--server", f"127.0.0.1:{server.getsockname()[1]}",
                                        *LETTER], stdin=subprocess.DEVNULL, stderr=subprocess.PIPE)
            connection, _ = server.accept()
            with connection, connection.makefile("rb") as lines:
                for reply in replies:
                    connection.sendall(reply + b"\r\n")
                    while reply[:3] == b"354" and next(lines) != b".\r\n":
                        pass
                    if reply[:3] in (b"220", b"250"):
                        next(lines, b"")
            return process.wait(30), process.communicate()[1].decode()

    def test_what_a_server_says_reaches_the_user_as_it_is(self):
        to_data = [b"220 ", b"250 ", b"250 ", b"250 ", b"354 "]
        for name, replies, status, said in (
                ("login", [b"220 ", b"250 ", b"530-5.7.0 first\r\n530 login"], 69,
                 r"the mail was not sent: 530-5\.7\.0 first 530 login: .*login or encryption; leave --server out.*"),
                ("charset", [b"220 ", b"554 \x8eQ \xe9\xab\x99\x1b"], 69, r"the mail was not sent: 554 \\x8EQ 髙\\x1B"),
                ("end refused", to_data + [b"451 later"], 75, "the mail was not sent: 451 later"),
                ("no verdict", to_data, 76, "the server may have taken the mail: メールはすべて.*")):
            with self.subTest(name):
                code, error = self.answer(replies)
                self.assertEqual(code, status, error)
                self.assertRegex(error, f"^mailengine: {said}\n$")

    def test_a_server_that_is_not_there(self):
        with socket.create_server(("127.0.0.1", 0)) as free:
            port = free.getsockname()[1]
        result = self.send(port, *LETTER)
        self.assertEqual(result.returncode, 75)
        self.assertRegex(result.stderr.decode(), rf"ソケット通信エラー\(Connect\).*: nobody listens at 127\.0\.0\.1:{port}\n$")
        result = self.run_it("send", "--server", "nosuch.invalid", *LETTER)
        self.assertRegex(result.stderr.decode(), "no machine is named nosuch.invalid\n$|cannot be looked up now")
        self.assertIn(result.returncode, (68, 75))
        for server in "", "h:", "h:0", "h:65536", "h:25x", "[::1", ":25":
            self.assertEqual(self.run_it("send", "--server", server, *LETTER).returncode, 64, server)

    def test_a_dry_run_prints_the_envelope_and_connects_to_nothing(self):
        result = self.run_it("send", "--dry-run", "--server", "nowhere.invalid", "--sender-bcc", *LETTER)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertRegex(result.stdout.decode(), "^sender: s@example.test\nrecipient: a@example.test\n"
                                                 "recipient: s@example.test\nsize: [0-9]+ bytes\n$")
        size = int(re.search(rb"size: (\d+)", result.stdout)[1])
        self.assertAlmostEqual(size, len(self.message_of(*LETTER)), delta=5)  # the process number

    def press(self, presses):
        """Starts a send to a server that says nothing, presses Ctrl-C so often; the exit status and the terminal."""
        terminal, line = pty.openpty()
        self.addCleanup(os.close, terminal)
        with socket.create_server(("127.0.0.1", 0)) as silent:
            process = subprocess.Popen([COMMAND, "send", "--server", f"127.0.0.1:{silent.getsockname()[1]}", *LETTER],
                                       stdin=subprocess.DEVNULL, stderr=line, env=os.environ | {"TERM": "xterm"})
            os.close(line)
            connection, _ = silent.accept()
            with connection:
                for _ in range(presses):
                    process.send_signal(signal.SIGINT)
                    while re.search(r"ShdPnd:\s*0*[1-9a-f]", pathlib.Path(f"/proc/{process.pid}/status").read_text()):
                        pass  # two presses that wait together count as one
                status = process.wait(30)
        return status, os.read(terminal, 65536).decode()

    def test_ctrl_c_cancels_and_a_second_one_ends(self):
        status, shown = self.press(1)
        self.assertEqual(status, 130)
        self.assertRegex(shown, r"\r\x1b\[KSending \[-{30}\] 0%\r\nmailengine: cancelled; the mail was not sent\r\n$")
        # On a busy machine the first press may have ended it before the second comes.
        self.assertIn(-signal.SIGINT, (self.press(2)[0] for _ in range(20)))

    def test_progress_reaches_its_end(self):
        server = self.serve(Aiosmtpd(self.folder / "shown"))
        terminal, line = pty.openpty()
        seen = []
        reader = threading.Thread(target=lambda: seen.extend(iter(lambda: self.read(terminal), b"")))
        arguments = [COMMAND, "send", "--server", f"127.0.0.1:{server.port}", *self.mails["attachments"]]
        process = subprocess.Popen(arguments, stdin=subprocess.DEVNULL, stderr=line, env=os.environ | {"TERM": "xterm"})
        os.close(line)
        reader.start()
        self.assertEqual(process.wait(60), 0)
        reader.join()
        os.close(terminal)
        shown = b"".join(seen).decode()
        self.assertTrue(shown.endswith("[" + "#" * 30 + "] 100%\r\nThe mail was sent.\r\n"), shown)
        plain = self.run_it("send", "--server", f"127.0.0.1:{server.port}", *LETTER)
        self.assertEqual(plain.stderr.decode(), "Sending...\nThe mail was sent.\n")

    @staticmethod
    def read(terminal):
        try:
            return os.read(terminal, 65536)
        except OSError:  # the other end is closed
            return b""


if __name__ == "__main__":
    unittest.main()
