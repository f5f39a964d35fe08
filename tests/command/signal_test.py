#!/usr/bin/python3
"""What signals leave behind that come at any moment of any command. First argument: the command."""
import concurrent.futures
import multiprocessing
import os
import pathlib
import random
import re
import resource
import signal
import socketserver
import subprocess
import sys
import tempfile
import time
import unittest

COMMAND = os.path.abspath(sys.argv.pop(1))
SIGNALS = [getattr(signal, "SIG" + name)
           for name in "HUP INT QUIT TERM ALRM USR1 USR2 PIPE XCPU XFSZ VTALRM PROF".split()]
MOMENTS = 50
SECONDS = 36  # a slow build gets fewer moments
FILES = {f"{i}.bin": bytes([65 + i]) * 50_000 for i in range(20)}
LETTER = ["--from", "a@b", "--to", "c@d", "--subject", "s", "--attach", "../big"]
PORT = 0


class Server(socketserver.ThreadingTCPServer):
    class Handler(socketserver.StreamRequestHandler):
        def handle(self):
            reply, data = b"220 hi\r\n", False
            try:
                while True:
                    if reply:
                        self.wfile.write(reply)
                    line = self.rfile.readline()
                    if not line or line == b"QUIT\r\n":
                        return
                    reply = b"" if data and line != b".\r\n" else b"354 go\r\n" if line == b"DATA\r\n" else b"250 ok\r\n"
                    data = (data and line != b".\r\n") or line == b"DATA\r\n"
            except OSError:
                pass
    daemon_threads = True


def write(folder):
    return ["write", *LETTER, "-o", "out.eml"], {"out.eml"}


def reply(folder):
    return ["reply", "../mail", *LETTER, "-o", "out.eml"], {"out.eml"}


def read(folder):
    return ["read", "../mail", "--extract", "out"], {"out.eml", "out"}


def send(folder):
    return ["send", *LETTER, "--quiet", "--server", f"127.0.0.1:{PORT}"], {"out.eml"}


def size_of(path):
    """Without the identifier of the message, which is as long as the number of the process that wrote it."""
    return len(re.sub(rb"Message-ID: [^\r]*", b"", path.read_bytes(), count=1))


class SignalTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.top = pathlib.Path(folder.name)
        (self.top / "big").write_bytes(bytes(2_000_000))
        parts = "".join(f'\r\n--b\r\nContent-Type: a/b; name="{name}"\r\n\r\n{data.decode()}' for name, data in FILES.items())
        head = "From: a@b\r\nMIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n"
        (self.top / "mail").write_text(head + parts + "\r\n--b--\r\n", newline="")

    def run_once(self, command, number=None, moment=None):
        """The folder that it ran in, its status and how long it took."""
        folder = pathlib.Path(tempfile.mkdtemp(dir=self.top))
        (folder / "work").mkdir()
        (folder / "tmp").mkdir()
        (folder / "work" / "out.eml").write_text("old")
        for name in "big", "mail":
            os.link(self.top / name, folder / name)
        start = time.monotonic()
        with subprocess.Popen([COMMAND, *command(folder)[0]], cwd=folder / "work", stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=os.environ | {"TMPDIR": str(folder / "tmp")}) as process:
            if number is not None:
                time.sleep(moment)
                process.send_signal(number)
            status = process.wait()
        return folder, status, time.monotonic() - start

    def check(self, command, number, moment, whole):
        folder, status, _ = self.run_once(command, number, moment)
        with self.subTest(command=command.__name__, signal=number.name, moment=moment):
            # A sending that ends while the verdict is waited for does not know what became of the mail.
            self.assertIn(status, {0, -number} | ({130, 76} if command is send else set()))
            self.assertEqual(os.listdir(folder / "tmp"), [])
            names = set(os.listdir(folder / "work"))
            self.assertLessEqual(names, command(folder)[1])
            size = size_of(folder / "work" / "out.eml")
            self.assertIn(size, {whole} if status == 0 else {whole, len("old")})
            extracted = os.listdir(folder / "work" / "out") if "out" in names else []
            for name in extracted:
                self.assertEqual((folder / "work" / "out" / name).read_bytes(), FILES[name])
            self.assertTrue(status != 0 or command is not read or len(extracted) == len(FILES))
        subprocess.run(["rm", "-r", folder], check=True)

    def test_leaves_old_or_new_and_nothing_else(self):
        generator = random.Random(9)
        for command in write, reply, read, send:
            folder, status, _ = self.run_once(command)
            self.assertEqual(status, 0)
            seconds = min(self.run_once(command)[2] for _ in range(5))
            whole = size_of(folder / "work" / "out.eml")
            workers = 8 if command is send else 2  # the end of a sending is a pause
            moments = min(MOMENTS, max(3, int(SECONDS / 4 / len(SIGNALS) * workers / (seconds / 2 + 0.01))))
            runs = [(number, generator.uniform(0, seconds * 1.1)) for number in SIGNALS for _ in range(moments)]
            with concurrent.futures.ThreadPoolExecutor(workers) as pool:
                for done in [pool.submit(self.check, command, *run, whole) for run in runs]:
                    done.result()
            print(f"{command.__name__}: {len(runs)} signals over {seconds * 1000:.0f} ms", file=sys.stderr)


if __name__ == "__main__":
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    server = Server(("127.0.0.1", 0), Server.Handler)
    PORT = server.server_address[1]
    process = multiprocessing.Process(target=server.serve_forever, daemon=True)
    process.start()
    server.socket.close()
    unittest.main()
