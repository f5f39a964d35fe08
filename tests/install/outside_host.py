"""Installs the library into an empty folder, builds README's program against that copy, once through the CMake package
and once through pkg-config, runs both, and reads the message that they wrote with Python's own mail package. README's
other listings are compiled."""
import argparse
import email
import email.policy
import os
import pathlib
import re
import shutil
import subprocess
import tempfile

parser = argparse.ArgumentParser()
for name in ("build", "source", "cmake", "cxx"):
    parser.add_argument("--" + name, required=True)
args = parser.parse_args()


def run(*command, **more):
    return subprocess.run([str(word) for word in command], check=True, text=True, **more)


def readme_listings():
    text = pathlib.Path(args.source, "README.md").read_text(encoding="utf-8")
    return re.findall(r"```cpp\n(.*?)```", text, re.S)


def check_headers(include, umbrella):
    """The umbrella header reaches every header that is installed in its folder, and one that exports is among them."""
    folder = pathlib.Path(umbrella).parent
    installed = {path.relative_to(include).as_posix() for path in (include / folder).rglob("*.h")}
    rule = run(args.cxx, "-std=c++20", "-M", "-I", include, include / umbrella, capture_output=True).stdout
    reached = {word[len(f"{include}/"):] for word in rule.split() if word.startswith(f"{include / folder}/")}
    assert reached == installed, reached ^ installed
    for header in pathlib.Path(args.source, folder).rglob("*.h"):
        exports = " MAILENGINE_API " in header.read_text(encoding="utf-8")
        assert not exports or header.relative_to(args.source).as_posix() in installed, header


def build_with_cmake(scratch, prefix):
    host = scratch / "host"
    host.mkdir()
    (host / "main.cpp").write_text("\n".join(readme_listings()), encoding="utf-8")
    shutil.copy(pathlib.Path(args.source, "tests/install/host/CMakeLists.txt"), host)
    run(args.cmake, "-G", "Ninja", "-S", host, "-B", host / "build", f"-DCMAKE_PREFIX_PATH={prefix}",
        f"-DCMAKE_CXX_COMPILER={args.cxx}", stdout=subprocess.DEVNULL)
    run(args.cmake, "--build", host / "build", "--", "--quiet")
    return host / "build" / "host"


def build_with_pkg_config(scratch, prefix):
    pkgconfig = next(prefix.rglob("mailengine.pc")).parent
    flags = run("pkg-config", "--cflags", "--libs", "mailengine", capture_output=True,
                env={**os.environ, "PKG_CONFIG_PATH": str(pkgconfig)}).stdout.split()
    program = scratch / "host-by-pkg-config"
    run(args.cxx, "-std=c++20", scratch / "host" / "main.cpp", *flags, f"-Wl,-rpath,{pkgconfig.parent}", "-o", program)
    return program


def check_message(path):
    message = email.message_from_bytes(path.read_bytes(), policy=email.policy.default)
    assert message["Subject"] == "議事録", message["Subject"]
    assert message["To"].addresses[0].addr_spec == "tanaka@example.jp", message["To"]
    assert message.get_content() == "議事録をお送りします。\r\n", repr(message.get_content())


with tempfile.TemporaryDirectory() as folder:
    scratch = pathlib.Path(folder)
    prefix = scratch / "prefix"
    run(args.cmake, "--install", args.build, "--prefix", prefix, stdout=subprocess.DEVNULL)
    check_headers(prefix / "include", "mailengine/mailengine.h")
    for build in (build_with_cmake, build_with_pkg_config):
        program = build(scratch, prefix)
        work = scratch / build.__name__
        work.mkdir()
        run(program, cwd=work)
        check_message(work / "mail.eml")
