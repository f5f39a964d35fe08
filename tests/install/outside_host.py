"""Installs the libraries into an empty folder, builds the programs of README and docs/hostkit.md against that copy, through
the CMake package and through pkg-config, runs them, and reads what they wrote with another reader. README's
other listings are compiled."""
import argparse
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "servers"))
sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
from message_reader import Message  # noqa: E402
from peers import Aiosmtpd  # noqa: E402

parser = argparse.ArgumentParser()
for name in ("build", "source", "cmake", "cxx"):
    parser.add_argument("--" + name, required=True)
args = parser.parse_args()


def run(*command, **more):
    return subprocess.run([str(word) for word in command], check=True, text=True, **more)


def programs(document):
    text = pathlib.Path(args.source, document).read_text(encoding="utf-8")
    return re.findall(r"```cpp\n(.*?)```", text, re.S)


def check_headers(include, umbrella):
    """The umbrella header reaches every header that is installed in its folder, and one that exports is among them."""
    folder = pathlib.Path(umbrella).parent
    installed = {path.relative_to(include).as_posix() for path in (include / folder).rglob("*.h")}
    rule = run(args.cxx, "-std=c++20", "-M", "-I", include, include / umbrella, capture_output=True).stdout
    reached = {word[len(f"{include}/"):] for word in rule.split() if word.startswith(f"{include / folder}/")}
    assert reached == installed, reached ^ installed
    for header in pathlib.Path(args.source, folder).rglob("*.h"):
        exports = re.search(" (MAILENGINE|HOSTKIT|DESKTOP)_API ", header.read_text(encoding="utf-8"))
        assert not exports or header.relative_to(args.source).as_posix() in installed, header


# Without a started toolkit nothing is drawn.
DESKTOP = """#include <desktop/desktop.h>
int main() {
    desktop::ToolkitWindows windows;
    CWindowSystem::Install(&windows);
    return windows.MessageBox(nullptr, "", "", MB_OK) != IDOK;
}
"""


def build_with_cmake(scratch, prefix):
    """The folder of all programs: mailengine, desktop, and hostkit-1 to hostkit-5."""
    host = scratch / "host"
    host.mkdir()
    (host / "desktop.cpp").write_text(DESKTOP, encoding="utf-8")
    (host / "mailengine.cpp").write_text("\n".join(programs("README.md")), encoding="utf-8")
    for number, program in enumerate(programs("docs/hostkit.md"), 1):
        (host / f"hostkit-{number}.cpp").write_text(program, encoding="utf-8")
    shutil.copy(pathlib.Path(args.source, "tests/install/host/CMakeLists.txt"), host)
    run(args.cmake, "-G", "Ninja", "-S", host, "-B", host / "build", f"-DCMAKE_PREFIX_PATH={prefix}",
        f"-DCMAKE_CXX_COMPILER={args.cxx}", stdout=subprocess.DEVNULL)
    run(args.cmake, "--build", host / "build", "--", "--quiet")
    return host / "build"


def build_with_pkg_config(scratch, prefix):
    folder = scratch / "by-pkg-config"
    folder.mkdir()
    pkgconfig = next(prefix.rglob("mailengine.pc")).parent
    for package, program in ("mailengine", "mailengine"), ("mailengine-hostkit", "hostkit-1"), \
            ("mailengine-desktop", "desktop"):
        flags = run("pkg-config", "--cflags", "--libs", package, capture_output=True,
                    env={**os.environ, "PKG_CONFIG_PATH": str(pkgconfig)}).stdout.split()
        run(args.cxx, "-std=c++20", scratch / "host" / f"{program}.cpp", *flags, f"-Wl,-rpath,{pkgconfig.parent}",
            "-o", folder / program)
    return folder


def message_in(path):
    return Message(path.read_bytes())


def check_readme(programs, work):
    run(programs / "mailengine", cwd=work)
    message = message_in(work / "mail.eml")
    assert message.subject() == "議事録", message.subject()
    assert message.addresses("To") == [("田中", "tanaka@example.jp")], message.addresses("To")
    assert message.body() == "議事録をお送りします。\r\n", repr(message.body())


def check_desktop(programs, work):
    run(programs / "desktop", cwd=work)


def check_saving(programs, work):
    (work / "髙橋.txt").write_bytes(b"\0\xff")
    old = work / "議事録.eml"
    old.write_text("old")
    old.chmod(0o604)
    run(programs / "hostkit-1", cwd=work)
    message = message_in(old)
    assert message.addresses("To") == [("髙橋 一郎", "takahashi@example.jp"), ("", "tanaka@example.jp")]
    assert message.body() == "議事録をお送りします。\r\n第①回～第③回の分です。\r\n", repr(message.body())
    assert message.attachments() == [("髙橋.txt", b"\0\xff")], message.attachments()
    assert (old.stat().st_mode & 0o777, "tmp" in " ".join(os.listdir(work))) == (0o604, False)


def check_opening(programs, work):
    shown = run(programs / "hostkit-2", "議事録.eml", cwd=work, capture_output=True).stdout
    assert re.fullmatch("From: 山田太郎, yamada@example.jp\nDate: .* [+-]\\d{4}\nSubject: 議事録\n\n議事録をお送りします。\n"
                        "第①回～第③回の分です。\n2 bytes in attachments/髙橋.txt\n", shown), shown
    assert (work / "attachments/髙橋.txt").read_bytes() == b"\0\xff"
    (work / "utf8.eml").write_text("From: a@b\n\n会議😀\n", encoding="utf-8")
    assert "From: , a@b\n" in (shown := run(programs / "hostkit-2", "utf8.eml", cwd=work, capture_output=True).stdout)
    assert shown.endswith("\n会議😀\n"), shown
    (work / "bad.eml").touch()
    bad = subprocess.run([programs / "hostkit-2", "bad.eml"], cwd=work, capture_output=True, text=True)
    assert "bad.eml: is empty" in bad.stderr, bad


def check_answering(programs, work):
    (work / "fan.eml").write_text("From: a@b\nTo: TANAKA@example.jp, c@d\nMIME-Version: 1.0\n\n", encoding="utf-8")
    for argument, name, cc in ([], "sender.eml", []), (["--all"], "all.eml", [("", "c@d")]):
        run(programs / "hostkit-3", "fan.eml", *argument, cwd=work)
        message = message_in(work / name)
        assert (message.addresses("To"), message.addresses("Cc")) == ([("", "a@b")], cc), message.addresses("Cc")
    run(programs / "hostkit-3", "議事録.eml", cwd=work)
    message = message_in(work / "sender.eml")
    assert message.subject() == "Re: 議事録" and "\r\n> 議事録をお送りします。\r\n" in message.body(), message.body()


def check_sending(programs, work):
    server = Aiosmtpd(work / "server")
    try:
        shown = run(programs / "hostkit-4", f"127.0.0.1:{server.port}", capture_output=True).stdout
        assert shown.endswith("\n100 %\n"), shown
        [(envelope, _)] = server.mails()
        assert envelope["to"] == ["takahashi@example.jp"], envelope
    finally:
        server.stop()
    with socket.create_server(("127.0.0.1", 0)) as silent:
        process = subprocess.Popen([programs / "hostkit-4", f"127.0.0.1:{silent.getsockname()[1]}"],
                                   stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        with silent.accept()[0]:
            process.send_signal(signal.SIGINT)
            assert process.communicate(timeout=30)[1] == "cancelled; the mail was not sent\n"
        assert process.returncode == 2, process.returncode


def check_text(programs, work):
    shown = run(programs / "hostkit-5", cwd=work, capture_output=True).stdout
    assert shown == "line 2, column 4: 😀 (U+1F600) has no code in a Japanese mail\n髙橋様\n今日は〓です\n", shown


with tempfile.TemporaryDirectory() as folder:
    scratch = pathlib.Path(folder)
    prefix = scratch / "prefix"
    run(args.cmake, "--install", args.build, "--prefix", prefix, stdout=subprocess.DEVNULL)
    japanese = {"LC_ALL": "C.UTF-8", "LANGUAGE": "ja"}  # found from the library, wherever the tree is put
    assert "使い方" in run(prefix / "bin/mailengine", "--help", env=japanese, capture_output=True).stdout
    check_headers(prefix / "include", "mailengine/mailengine.h")
    check_headers(prefix / "include", "hostkit/hostkit.h")
    check_headers(prefix / "include", "desktop/desktop.h")
    every = (check_readme, check_desktop, check_saving, check_opening, check_answering, check_sending, check_text)
    for build, checks in (build_with_cmake, every), (build_with_pkg_config, every[:3]):
        built = build(scratch, prefix)
        work = scratch / build.__name__
        work.mkdir()
        for check in checks:
            check(built, work)
