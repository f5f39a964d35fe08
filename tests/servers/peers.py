"""Mail servers for one test: each on loopback with files of its own, stopped by its process."""
import json
import pathlib
import pwd
import re
import signal
import socket
import subprocess
import sys
import time

PATIENCE = 60  # seconds for a server on a busy machine to come up, or to deliver


class Aiosmtpd:
    """Keeps the exact bytes and the envelope."""

    def __init__(self, folder, size_limit=1 << 27, login=()):
        self.folder = pathlib.Path(folder)
        self.folder.mkdir()
        peer = pathlib.Path(__file__).with_name("smtp_peer.py")
        self.process = subprocess.Popen(["/usr/bin/python3", peer, self.folder, str(size_limit), *login],
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        words = self.process.stdout.readline().split()
        if words[:1] != ["ready"]:
            raise RuntimeError("aiosmtpd did not start")
        self.port = int(words[1])

    def stop(self):
        self.process.stdin.close()
        self.process.wait(PATIENCE)
        self.process.stdout.close()

    def mails(self):
        """What was delivered, as (envelope, bytes)."""
        return [(json.loads(path.with_suffix(".json").read_text(encoding="utf-8")), path.read_bytes())
                for path in sorted(self.folder.glob("*.eml"))]


POSTFIX_MAIN = """compatibility_level = 3.6
queue_directory = {0}/queue
data_directory = {0}/data
mail_owner = postfix
setgid_group = postdrop
maillog_file = {0}/mail.log
maillog_file_prefixes = {0}
myhostname = mx.example.test
mydestination =
inet_interfaces = 127.0.0.1
inet_protocols = ipv4
mynetworks = 127.0.0.0/8
alias_maps =
alias_database =
local_recipient_maps =
virtual_mailbox_domains = example.test
virtual_mailbox_maps = static:all/
virtual_mailbox_base = {0}/mail
virtual_minimum_uid = 1
virtual_uid_maps = static:{1}
virtual_gid_maps = static:{2}
virtual_mailbox_limit = 0
message_size_limit = 0
default_transport = error:no mail leaves this machine
smtpd_relay_restrictions = reject_unauth_destination
smtpd_recipient_restrictions = reject_unauth_destination
smtpd_peername_lookup = no
smtpd_client_connection_count_limit = 0
smtpd_error_sleep_time = 0
in_flow_delay = 0
smtpd_forbid_bare_newline = reject
smtpd_forbid_bare_newline_exclusions =
strict_8bitmime = yes
smtpd_forbid_unauth_pipelining = yes
"""
POSTFIX_SERVICES = """127.0.0.1:{0} inet n - n - - smtpd
pickup unix n - n 60 1 pickup
cleanup unix n - n - 0 cleanup
qmgr unix n - n 300 1 qmgr
rewrite unix - - n - - trivial-rewrite
bounce unix - - n - 0 bounce
defer unix - - n - 0 bounce
trace unix - - n - 0 bounce
proxymap unix - - n - - proxymap
error unix - - n - - error
retry unix - - n - - error
virtual unix - n n - - virtual
anvil unix - - n - 1 anvil
postlog unix-dgram n - n - 1 postlogd
"""


class Postfix:
    """Refuses what the standard forbids: a bare LF, 8-bit data, early commands."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        owner = pwd.getpwnam("postfix")
        for name in "etc", "queue", "data", "mail":
            (self.folder / name).mkdir(parents=True)
        for name in "data", "mail":
            subprocess.run(["chown", "postfix:", self.folder / name], check=True)
        self.folder.chmod(0o755)
        with socket.create_server(("127.0.0.1", 0)) as free:
            self.port = free.getsockname()[1]
        main = POSTFIX_MAIN.format(self.folder, owner.pw_uid, owner.pw_gid)
        (self.folder / "etc/main.cf").write_text(main)
        (self.folder / "etc/master.cf").write_text(POSTFIX_SERVICES.format(self.port))
        subprocess.run(["/usr/sbin/postfix", "-c", self.folder / "etc", "start"], check=True, capture_output=True)
        try:
            self.wait_for(self.listens, "postfix does not listen")
        except RuntimeError:
            self.stop()
            raise

    def listens(self):
        with socket.socket() as probe:
            return probe.connect_ex(("127.0.0.1", self.port)) == 0

    @staticmethod
    def wait_for(done, complaint):
        end = time.monotonic() + PATIENCE
        while not done():
            if time.monotonic() > end:
                raise RuntimeError(complaint)
            time.sleep(0.05)

    def stop(self):
        """Ends the master process, which takes its own processes with it."""
        import os
        master = int((self.folder / "queue/pid/master.pid").read_text())
        os.kill(master, signal.SIGTERM)
        self.wait_for(lambda: not pathlib.Path(f"/proc/{master}").exists(), "postfix does not end")

    def mails(self, count):
        """The bytes of count delivered mails without the fields that servers put on top; line ends are LF."""
        box = self.folder / "mail/all/new"
        self.wait_for(lambda: len(list(box.glob("*"))) >= count, "postfix did not deliver: "
                      + (self.folder / "mail.log").read_text(errors="replace")[-2000:])
        return [without_trace(path.read_bytes()) for path in sorted(box.glob("*"), key=lambda p: p.stat().st_mtime_ns)]


CHANGES = re.compile(rb"(?m)^(Date|Message-ID): .*\n|BOUNDARY_\w+")  # what differs between two runs of the command


def same(message):
    return CHANGES.sub(b"", message)


def without_trace(mail):
    lines = mail.split(b"\n")
    while lines[0].startswith((b"Return-Path:", b"X-Original-To:", b"Delivered-To:", b"Received:", b"\t", b" ")):
        del lines[0]
    return b"\n".join(lines)


if __name__ == "__main__":
    sys.exit("peers.py is a module")
