"""Makes the manual pages and the completions of the command: mailengine(1), a page for each command, and, in English,
mailengine(7) on the form of the messages. What they say of options is what the program's own parser said."""
import argparse
import json
import pathlib
import re
import subprocess
import sys

sys.dont_write_bytecode = True
import completions  # noqa: E402

JAPANESE = {
    "NAME": "名前", "SYNOPSIS": "書式", "DESCRIPTION": "説明", "COMMANDS": "コマンド", "OPTIONS": "オプション",
    "EXIT STATUS": "終了ステータス", "EXAMPLES": "例", "SEE ALSO": "関連項目", "User Commands": "ユーザーコマンド",
    "Not together with {}.": "{} と同時には指定できません。", "Only with {}.": "{} とともに指定します。",
    "Required.": "必須です。", "[OPTIONS]": "[オプション]", "COMMAND": "コマンド",
}


def roff(text):
    """The text as roff shows it to the letter: what begins a request, an escape or a dash is spelled."""
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("'", "\\(aq").replace("^", "\\(ha").replace("~", "\\(ti")
    return re.sub(r"^\.", r"\\&.", text, flags=re.M)


def whole_sentences(text):
    """Help breaks its lines for a terminal; a page fills its own. No blank comes between two Japanese characters."""
    text = re.sub(r"(?<=[^\x00-\xff])\n(?=[^\x00-\xff])", "", text.strip())
    return re.sub(r"\s*\n", "\n", text)


class Pages:
    def __init__(self, args):
        self.args = args
        self.program = json.loads(args.options.read_text(encoding="utf-8"))
        self.folder = args.out / "man1"

    def word(self, english):
        return JAPANESE.get(english, english) if self.args.language == "ja" else english

    def head(self, name, description):
        title = name.upper()
        return ["'\\\" -*- coding: UTF-8 -*-",
                f'.TH "{roff(title)}" "1" "" "mailengine {self.args.version}" "{self.word("User Commands")}"',
                *self.section("NAME"), f"{roff(name)} \\- {roff(description.rstrip('.。'))}"]

    def section(self, name):
        return [f'.SH "{self.word(name)}"']

    def option(self, option):
        names = ", ".join(f"\\fB{roff(name)}\\fR" for name in option["names"]) or f"\\fI{roff(option['position'])}\\fR"
        if option["names"] and option["value"]:
            names += f" \\fI{roff(option['value'])}\\fR"
        notes = [self.word("Required.")] if option["required"] else []
        for key, sentence in (("excludes", "Not together with {}."), ("needs", "Only with {}.")):
            notes += [self.word(sentence).format(", ".join(option[key]))] if option[key] else []
        return [".TP", names, roff(whole_sentences(self.sentence(option["help"]))), *map(roff, notes)]

    def sentence(self, text):
        return text.rstrip(".。") + ("。" if self.args.language == "ja" else ".")

    def options(self, app):
        positions = [option for option in app["options"] if option["position"]]
        return [*self.section("OPTIONS"),
                *(line for option in positions + [o for o in app["options"] if not o["position"]]
                  for line in self.option(option))]

    def synopsis(self, words, app):
        line = f"\\fB{roff(words)}\\fR {roff(self.word('[OPTIONS]'))}"
        for option in app["options"]:
            if option["position"]:
                name = f"\\fI{roff(option['position'])}\\fR" + ("..." if option["many"] else "")
                line += f" {name}" if option["required"] else f" [{name}]"
        return [*self.section("SYNOPSIS"), line]

    def footer(self, app):
        """What stands below the options: what the command does, and its exit status."""
        text, _, status = re.sub(r"^(Exit status|終了ステータス|終了コード)[:：] *", "\0", app["footer"],
                                 flags=re.M).partition("\0")
        lines = [*self.section("DESCRIPTION"), roff(self.sentence(app["description"])),
                 *([".PP", roff(whole_sentences(text))] if text.strip() else [])]
        return lines, [*self.section("EXIT STATUS"), roff(whole_sentences(status))] if status else []

    def see_also(self, but):
        names = ["mailengine(1)"] + [f"mailengine-{c['name']}(1)" for c in self.program["commands"]] + ["mailengine(7)"]
        links = [re.sub(r"(.*)\((\d)\)", lambda m: f"\\fB{roff(m[1])}\\fR({m[2]})", n) for n in names if n != but]
        return [*self.section("SEE ALSO"), ", ".join(links)]

    def write(self, name, lines):
        self.folder.mkdir(parents=True, exist_ok=True)
        (self.folder / f"{name}.1").write_text("\n".join(lines) + "\n", encoding="utf-8")

    def program_page(self, examples):
        lines = [*self.head("mailengine", self.program["description"]), *self.section("SYNOPSIS"),
                 f"\\fBmailengine\\fR \\fI{self.word('COMMAND')}\\fR {roff(self.word('[OPTIONS]'))}",
                 *self.section("DESCRIPTION"), roff(self.program["description"]), *self.section("COMMANDS")]
        for command in self.program["commands"]:
            lines += [".TP", f"\\fBmailengine\\-{roff(command['name'])}\\fR(1)", roff(command["description"])]
        self.write("mailengine", [*lines, *self.options(self.program), *self.section("EXAMPLES"), ".nf", roff(examples),
                                  ".fi", *self.see_also("mailengine(1)")])

    def command_page(self, command):
        name = f"mailengine-{command['name']}"
        description, status = self.footer(command)
        self.write(name, [*self.head(name, command["description"]), *self.synopsis(name.replace("-", " ", 1), command),
                          *description, *self.options(command), *status, *self.see_also(f"{name}(1)")])


def examples_in(readme):
    """The block of README's section on the command line, as an installed program is called."""
    section = re.search(r"## On the command line\n+((?:    .*\n|\n)+)", readme.read_text(encoding="utf-8"))[1]
    return re.sub(r"^    ", "", section, flags=re.M).replace("build/release/bin/", "").strip()


def format_page(args, document):
    """mailengine(7): the document as a page. Its title becomes the page's; links to other documents become names."""
    title, text = document.read_text(encoding="utf-8").split("\n", 1)
    text = re.sub(r"\[([^]]*)\]\([^)]*\.md[^)]*\)", r"\1", text)
    text = f"# NAME\n\nmailengine - {title.strip('# ').lower()}\n\n# DESCRIPTION\n{text}"
    page = subprocess.run([args.lowdown, "-s", "-Tman", "-M", "title=MAILENGINE", "-M", "section=7",
                           "-M", f"source=mailengine {args.version}"],
                          input=text, check=True, capture_output=True, text=True).stdout
    # A table is not kept in one piece, which would be longer than a screen, nor is it drawn wider than the line.
    page = "'\\\" t\n.ad l\n" + page.replace("\\fC", "\\f(CR").replace(".SH\n", ".SH ").replace(".SS\n", ".SS ")
    page = re.sub(r"(\d{8,}\.)(?=\d)", r"\1\\:", page)  # may be broken there, in a narrow column
    (args.out / "man7").mkdir(parents=True, exist_ok=True)
    (args.out / "man7/mailengine.7").write_text(page, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser()
    for name, kind in (("options", pathlib.Path), ("out", pathlib.Path), ("language", str), ("version", str),
                       ("lowdown", str)):
        parser.add_argument("--" + name, type=kind, required=True)
    parser.add_argument("readme", type=pathlib.Path)
    parser.add_argument("format", type=pathlib.Path)
    args = parser.parse_args()
    pages = Pages(args)
    for command in pages.program["commands"]:
        pages.command_page(command)
    pages.program_page(examples_in(args.readme))
    if args.language == "en":
        format_page(args, args.format)
        completions.write(pages.program, args.out / "completions")


main()
