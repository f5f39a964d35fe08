"""Completions for bash, zsh and fish, from the description of the options."""
BASH = """# Completion of mailengine for bash.
_mailengine()
{{
    local cur prev words cword
    _init_completion || return
    local command=${{words[1]}}
    if ((cword == 1)); then
        mapfile -t COMPREPLY < <(compgen -W '{first}' -- "$cur")
        return
    fi
    case $command:$prev in
{values}
    esac
    if [[ $cur == -* ]]; then
        local options=
        case $command in
{options}
        esac
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
    else
        _filedir
    fi
}}
complete -F _mailengine mailengine
"""


def names_of(app):
    return [name for option in app["options"] for name in option["names"]]


def asks_for(option):
    """What can be completed behind the option: a file, a folder, nothing at all, or it takes no value."""
    return {"": "flag", "FILE": "file", "DIR": "folder"}.get(option["value"], "text")


def bash(program):
    values, options = [], []
    for command in program["commands"]:
        for kind, action in ("file", "_filedir"), ("folder", "_filedir -d"), ("text", ":"):
            names = [f"{command['name']}:{name}" for option in command["options"] if asks_for(option) == kind
                     for name in option["names"]]
            if names:
                values.append(f"        {' | '.join(names)}) {action}; return ;;")
        options.append(f"            {command['name']}) options='{' '.join(names_of(command))}' ;;")
    first = " ".join([command["name"] for command in program["commands"]] + ["help"] + names_of(program))
    return BASH.format(first=first, values="\n".join(values), options="\n".join(options))


def zsh_quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def zsh_option(option):
    action = {"flag": "", "file": ":file:_files", "folder": ":folder:_files -/", "text": f":{option['value']}: "}
    help_text = option["help"].replace("\\", "\\\\").replace("[", "\\[").replace("]", "\\]").replace(":", "\\:")
    many = "*" if option["many"] else f"({' '.join(option['names'] + option['excludes'])})"
    return [zsh_quoted(f"{many}{name}[{help_text}]{action[asks_for(option)].replace('[:PORT]', '')}")
            for name in option["names"]]


def zsh(program):
    lines = ["#compdef mailengine", "# Completion of mailengine for zsh.", "local -a commands=("]
    for command in program["commands"]:
        lines.append("    " + zsh_quoted(f"{command['name']}:{command['description']}"))
    lines += [")", "if ((CURRENT == 2)); then", "    _describe command commands", "    return", "fi",
              "local command=$words[2]", "shift words", "((CURRENT--))", "case $command in"]
    for command in program["commands"]:
        entries = [entry for option in command["options"] for entry in zsh_option(option)]
        entries += ["'*:file:_files'"] if any(option["position"] for option in command["options"]) else []
        lines += [f"    {command['name']})", "        _arguments \\"]
        lines += ["            " + " \\\n            ".join(entries), "        ;;"]
    return "\n".join(lines + ["esac"]) + "\n"


def fish_quoted(text):
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def fish(program):
    lines = ["# Completion of mailengine for fish.", "complete -c mailengine -n __fish_use_subcommand -f"]
    for command in program["commands"]:
        name = command["name"]
        lines.append(f"complete -c mailengine -n __fish_use_subcommand -a {name} -d {fish_quoted(command['description'])}")
        for option in command["options"]:
            spellings = " ".join(f"-l {n[2:]}" if n.startswith("--") else f"-s {n[1:]}" for n in option["names"])
            kind = {"flag": "", "file": " -r -F", "folder": " -x -a '(__fish_complete_directories)'", "text": " -x"}
            if spellings:
                lines.append(f"complete -c mailengine -n '__fish_seen_subcommand_from {name}' {spellings}"
                             f"{kind[asks_for(option)]} -d {fish_quoted(option['help'])}")
    return "\n".join(lines) + "\n"


def write(program, folder):
    folder.mkdir(parents=True, exist_ok=True)
    for name, make in ("mailengine", bash), ("_mailengine", zsh), ("mailengine.fish", fish):
        (folder / name).write_text(make(program), encoding="utf-8")
