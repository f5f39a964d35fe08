#!/usr/bin/python3
"""mailengine send without a server: by sendmail programs, real ones and scripts. First argument: the command."""
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "servers"))
sys.dont_write_bytecode = True
from peers import Aiosmtpd, Postfix, same  # noqa: E402

COMMAND = os.path.abspath(sys.argv.pop(1))
LETTER = ["--from", "山田 <s@example.test>", "--to", "髙橋 <a@example.test>", "--subject", "日本語の件名", "--body", "本文\n.\n..x\n"]
BLIND = ["--bcc", "-x@example.test"]
READ = "cat >/dev/null; "
PROGRAMS = (  # what a program does, the command's exit status, what it says
    ('printf "%s\\n" "$@" >args; cat >mail; test ! -e /proc/self/fd/4', 0, ""),
    (READ + "printf 'so\\tso\\r\\n\\n\\377\\n' >&2; echo two; exit 75", 75, r"the mail was not sent: so\\x09so \\xFF two \(status 75: .*\)"),
    ("exit 68", 68, r"the mail was not sent: \./program \(status 68: a host does not exist\)"), ("exec <&-; exit 3", 69, r".*\(status 3\)"),
    ("exit 0", 69, r".*\./program \(it ended without reading the mail\)"), ("head -c 1 /dev/stdin >/dev/null", 0, ""),
    ("head -c 9999999 /dev/zero; kill -9 $$", 69, r".*\(ended by signal 9\)"), (READ + "kill -9 $$", 76, ".* may have taken the mail: .*"),
)
CANCELLED = "cancelled; the mail was not sent"
HANGING = (  # the same, of those that are cancelled
    ("touch began; sleep 99; exit", 130, CANCELLED), ("trap '' TERM; touch began; sleep 99; sleep 99", 130, CANCELLED),
    (READ + "touch began; exec sleep 99", 76, ".* may have taken the mail: .*"),
)


class SendmailTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.folder.chmod(0o755)
        (self.folder / "写真.bin").write_bytes(bytes(range(256)) * 2000)

    def program(self, script):
        (self.folder / "program").write_text("#!/bin/sh\n" + script)
        (self.folder / "program").chmod(0o755)
        (self.folder / "tmp").mkdir(exist_ok=True)

    def start(self, *arguments, program="./program", **environment):
        return subprocess.Popen([COMMAND, "send", "--quiet", "--sendmail", program, *LETTER, *arguments], cwd=self.folder,
                                stdin=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True,
                                env=os.environ | {"TMPDIR": str(self.folder / "tmp")} | environment)

    def check(self, process, status, said=""):
        error = process.communicate(timeout=60)[1]
        self.assertRegex(error, f"^mailengine: {said}\n$" if said else "^$")
        self.assertEqual(process.returncode, status)
        self.assertEqual(list((self.folder / "tmp").glob("*")), [])

    def cancel(self, *arguments, **more):
        process = self.start(*arguments, **more)
        while not (self.folder / "began").exists():
            self.assertIsNone(process.poll(), "ended before its program began")
        (self.folder / "began").unlink()
        process.send_signal(signal.SIGINT)
        return process

    def written(self, *arguments):
        return subprocess.run([COMMAND, "write", *LETTER, *arguments, "-o", "-"], check=True, cwd=self.folder,
                              stdin=subprocess.DEVNULL, capture_output=True).stdout.replace(b"\r\n", b"\n")

    def test_what_programs_do(self):
        for script, status, said in PROGRAMS:
            with self.subTest(script):
                self.program(script)
                self.check(self.start(*BLIND), status, said)
        self.assertEqual((self.folder / "args").read_text().split(),
                         ["-i", "-f", "s@example.test", "--", "a@example.test", "-x@example.test"])
        self.assertEqual(same((self.folder / "mail").read_bytes()), same(self.written()))
        self.check(self.start(program="./nosuch"), 69, r"\./nosuch: no mail can be given .*--server.*")

    def test_a_copy_is_kept_of_what_was_or_may_have_been_sent(self):
        for script, status, flags in (READ, 0, "S"), (READ + "exit 75", 75, None), (READ + "kill -9 $$", 76, "FS"):
            self.program(script)
            process = self.start("--copy", "sent", "--bcc", "b@example.test", "--attach", "写真.bin")
            process.communicate(timeout=60)
            self.assertEqual(process.returncode, status)
            kept = [path for path in (self.folder / "sent").rglob("*") if path.is_file()]
            self.assertEqual([path.name.split(":2,")[1] for path in kept], [flags] if flags else [])
            for path in kept:
                self.assertEqual(same(path.read_bytes()), same(self.written("--bcc", "b@example.test", "--attach", "写真.bin")))
                path.unlink()
        self.program("cat >mail; rm -r sent/cur")
        self.check(self.start("--copy", "sent"), 0, "warning: no copy of the mail is kept in .*sent: .*")
        (self.folder / "mail").unlink()
        self.check(self.start("--copy", "sent"), 73, "sent: is no Maildir: it has no folder cur")
        for size in "100K", "600K":  # the attachment's own, and its Base64
            self.check(self.start("--limit", size, "--attach", "写真.bin"), 65, "the mail has .*")
        self.check(self.start("--limit", "1x"), 64, "--limit '1x': .*")
        self.assertFalse((self.folder / "mail").exists())

    def test_a_cancel(self):
        for script, status, said in HANGING:
            with self.subTest(script):
                self.program(script)
                self.check(self.cancel(), status, said)

    def test_msmtp_with_encryption_and_login(self):
        key, cert = self.folder / "key.pem", self.folder / "cert.pem"
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=localhost",
                        "-addext", "subjectAltName=DNS:localhost", "-keyout", key, "-out", cert], check=True, capture_output=True)
        server = Aiosmtpd(self.folder / "server", login=(cert, key, "user", "secret"))
        self.addCleanup(server.stop)
        for password, status, said in ("wrong", 77, r"the mail was not sent: msmtp: .*535 .* \(status 77: .*\)"), ("secret", 0, ""):
            settings = (f"host localhost\nport {server.port}\ntls on\ntls_starttls on\ntls_trust_file {cert}\nauth on\n"
                        f"user user\npassword {password}\n")
            (self.folder / "msmtprc").write_text(settings)
            (self.folder / "msmtprc").chmod(0o600)
            self.program('exec /usr/bin/msmtp -C msmtprc "$@"')
            self.check(self.start("--attach", "写真.bin", "--bcc", "b@example.test"), status, said)
        (envelope, stored), = server.mails()
        self.assertEqual(envelope["to"], ["a@example.test", "b@example.test"])
        self.assertEqual(same(stored.replace(b"\r\n", b"\n")), same(self.written("--attach", "写真.bin")))

    def test_postfix_gets_all_of_a_mail_or_nothing(self):
        server = Postfix(self.folder / "postfix")
        self.addCleanup(server.stop)
        own = {"MAIL_CONFIG": str(server.folder / "etc")}
        # It has half of the mail by the time of the cancel.
        self.program('(head -c 99999; touch began; sleep 99) | /usr/sbin/sendmail "$@"')
        self.check(self.cancel("--attach", "写真.bin", **own), 130, CANCELLED)
        self.check(self.start("--attach", "写真.bin", program="/usr/sbin/sendmail", **own), 0)
        mail, = server.mails(1)
        self.assertEqual(same(mail), same(self.written("--attach", "写真.bin")))
        self.assertEqual(list((server.folder / "queue/maildrop").iterdir()), [])


if __name__ == "__main__":
    unittest.main()
