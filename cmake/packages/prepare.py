"""Brings the staged files of each package into the form that Debian wants: compressed manual pages, changelog and
copyright, and what the package manager has to know of a library. The same input gives the same bytes.

    prepare.py SOURCE OUT VERSION STAGE"""
import gzip
import os
import pathlib
import re
import shutil
import subprocess
import sys
import textwrap
import time

source, out, version, stage = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3], pathlib.Path(sys.argv[4])
moment = int(os.environ["SOURCE_DATE_EPOCH"])


def compressed(data):
    return gzip.compress(data, compresslevel=9, mtime=0)


def changelog(package):
    """The changes of this version, out of CHANGELOG.md: the top-level points of its section."""
    text = (source / "CHANGELOG.md").read_text(encoding="utf-8")
    section = re.search(rf"^## {re.escape(version)}.*?\n(.*?)(?=^## |\Z)", text, re.S | re.M)[1]
    points = re.findall(r"^- (.*(?:\n  .*)*)", section, re.M)
    changes = "\n".join(textwrap.fill(re.sub(r"\*\*|\s*\n *", lambda m: " " * ("\n" in m[0]), point), 78, break_long_words=False,
                                      initial_indent="  * ", subsequent_indent="    ") for point in points)
    date = time.strftime("%a, %d %b %Y %H:%M:%S +0000", time.gmtime(moment))
    return (f"mailengine ({version}) unstable; urgency=medium\n\n{changes}\n\n"
            f" -- The mailengine developers <mailengine@localhost.localdomain>  {date}\n").encode()


def describe_library(package, folder):
    """symbols, shlibs and triggers for the package's control archive."""
    control = out / "control" / package
    shutil.rmtree(control, ignore_errors=True)
    control.mkdir(parents=True)
    libraries = sorted(path for path in folder.glob("usr/lib/**/*.so.*") if not path.is_symlink())
    subprocess.run(["dpkg-gensymbols", "-q", f"-p{package}", f"-v{version}", f"-P{folder}", f"-O{control / 'symbols'}",
                    *(f"-e{library}" for library in libraries)], check=True)
    names = [re.match(r"(.*)\.so\.(\d+)", library.name).groups() for library in libraries]
    (control / "shlibs").write_text("".join(f"{name} {major} {package} (>= {version})\n" for name, major in names))
    (control / "triggers").write_text("activate-noawait ldconfig\n")


for folder in sorted(stage.iterdir()):
    package = folder.name
    if not (folder / "usr").is_dir():
        continue
    for page in folder.glob("usr/share/man/**/man?/*.?"):
        page.with_name(page.name + ".gz").write_bytes(compressed(page.read_bytes()))
        page.unlink()
    documents = folder / "usr/share/doc" / package
    documents.mkdir(parents=True, exist_ok=True)
    (documents / "changelog.gz").write_bytes(compressed(changelog(package)))
    shutil.copyfile(source / "cmake/packages/copyright", documents / "copyright")
    if re.fullmatch(r"lib.*\d", package):
        describe_library(package, folder)
    for path in [folder, *folder.rglob("*")]:
        if not path.is_symlink():
            path.chmod(0o755 if path.is_dir() or path.stat().st_mode & 0o100 and "/bin/" in str(path) else 0o644)
        os.utime(path, (moment, moment), follow_symlinks=False)
