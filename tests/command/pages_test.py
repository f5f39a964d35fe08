"""Help, manual pages and completions name the same options, and the shells and the formatter take them."""
import pathlib
import re
import shutil
import subprocess
import sys

program, folder = sys.argv[1], pathlib.Path(sys.argv[2])
done = folder / "en/completions"


def run(*command):
    result = subprocess.run(list(map(str, command)), capture_output=True, text=True)
    assert result.returncode == 0 and not result.stderr, (command, result)
    return result.stdout


def completed_by_bash(command):
    return run("bash", "-c", f"_init_completion() {{ words=(mailengine {command} -) cword=2 cur=- prev={command}; }}; "
                             f". {done / 'mailengine'}; _mailengine; echo ${{COMPREPLY[*]}}").split()


def completed_by_fish(command):
    lines = [line for line in (done / "mailengine.fish").read_text().splitlines() if f"_from {command}'" in line]
    return {{"s": "-", "l": "--"}[kind] + name for line in lines
            for kind, name in re.findall(r" -([sl]) (\S+)", line.split(" -d ")[0])}


zsh = (done / "_mailengine").read_text(encoding="utf-8")
commands = re.findall(r"^  ([a-z]+) ", run(program, "--help").split("Commands:")[1], re.M)
assert commands.pop() == "help"  # which tells what --help tells
assert {path.stem for path in folder.glob("en/man1/*")} == {"mailengine", *(f"mailengine-{c}" for c in commands)}
for command in commands:
    helped = {name for names in re.findall(r"^  (-\S+)", run(program, command, "--help"), re.M) for name in names.split(",")}
    assert helped == set(completed_by_bash(command)), (command, helped, completed_by_bash(command))
    assert helped == completed_by_fish(command), (command, completed_by_fish(command))
    part = re.search(rf"^    {command}\)\n(.*?);;", zsh, re.S | re.M)[1]
    assert helped == set(re.findall(r"^ +'(?:\*|\(.*?\))(-[\w-]+)\[", part, re.M)), (command, part)
    for language in "en", "ja":
        page = (folder / language / f"man1/mailengine-{command}.1").read_text(encoding="utf-8").replace("\\-", "-")
        named = {name for line in re.findall(r"^\.TP\n(\\fB-.*)", page, re.M) for name in re.findall(r"\\fB(-\S+?)\\fR", line)}
        assert helped == named, (command, language, helped ^ named)
for checker, name in (("bash -n", "mailengine"), ("zsh -n", "_mailengine"), ("fish --no-execute", "mailengine.fish")):
    if shutil.which(checker.split()[0]):
        run(*checker.split(), done / name)
