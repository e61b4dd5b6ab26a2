#!/usr/bin/env python3
"""catalogue.py ROOT LANGUAGE: fails when a text that is told has no translation, or one with other places; when there is
a translation of what nothing tells; when a sentence that the engine or a face of it tells has no row, not one, or not the
values that its row has places for; and when a row is told nowhere."""
import pathlib
import re
import subprocess
import sys

root, language = pathlib.Path(sys.argv[1]), sys.argv[2]
# What takes a text and translates it: which of its arguments is the text; and those of which another one is, too.
KEYWORDS = ["N_", "tr", "flag:3", "text:4", "days:3", "descriptor:3", "wait:3", "words:5", "argument:3", "kind:3",
            "add_command:3"]
# What a window tells in the place of a row without it.
WINDOW = "@window"
SHOWN = ["text:2", "words:2", "argument:1", "kind:1"]
wrong = []


def run(*command, errors=None):
    return subprocess.run(command, check=not errors, stdout=subprocess.PIPE, stderr=errors, encoding="utf-8", cwd=root).stdout


def unquoted(text):
    pieces = re.findall(r'"((?:[^"\\]|\\.)*)"', text)
    return re.sub(r"\\(.)", lambda m: {"n": "\n", "t": "\t"}.get(m[1], m[1]), "".join(pieces))


def messages(catalogue):
    """{msgid: (msgstr, fuzzy)}"""
    found = {}
    for block in catalogue.split("\n\n"):
        parts = re.search(r'^msgid (.*?)^msgstr (.*)', block, re.S | re.M)
        if not parts or re.search("^#~", block, re.M):
            continue
        found[unquoted(parts[1])] = (unquoted(parts[2]), bool(re.search("^#,.*fuzzy", block, re.M)))
    found.pop("", None)
    return found


def places(text):
    return sorted(set(re.findall(r"{(\w*)}", text)))


def sources(*folders):
    return [path for folder in folders for path in sorted((root / folder).rglob("*")) if path.suffix in (".cpp", ".h")]


def told_in():
    return sources("host", "cli", "desktop") + sorted((root / "words").glob("*.cpp"))


def check_translations():
    files = [str(path.relative_to(root)) for path in sources("words", "cli")]
    told = {}
    for keywords in KEYWORDS, SHOWN:
        told |= messages(run("xgettext", "-L", "C++", "--from-code=UTF-8", "--no-wrap", "--no-location", "-o", "-", "-k",
                             *["-k" + keyword for keyword in keywords], *files))
    areas = sorted(str(path) for path in (root / "words" / language).glob("*.po"))
    translated = {}
    for area in areas:
        wrong.extend(run("msgfmt", "--check", "-o", "/dev/null", area, errors=subprocess.STDOUT).splitlines())
        for text, said in messages(run("msgcat", "--no-wrap", area)).items():
            if translated.setdefault(text, said) != said:
                wrong.append(f"{area}: translated differently elsewhere: {text!r}")
    for text in told:
        said, fuzzy = translated.get(text, ("", False))
        if not said or fuzzy:
            wrong.append(f"not in {language}: {text!r}")
        elif places(said) != places(text):
            wrong.append(f"other places in {language}: {text!r}: {said!r}")
    wrong.extend(f"in {language}, but told nowhere: {text!r}" for text in translated if text not in told)
    return told


def check_rows():
    rows = [id for path in sources("words/english") for id in re.findall(r'{"([^"]+)",\s*N_\(', path.read_text())]
    wrong.extend(f"{id}: has several rows" for id in sorted(set(rows)) if rows.count(id) > 1)
    code = "\n".join(path.read_text() for path in told_in())
    told = set(re.findall(r'Sentence{\s*"([^"]+)"|"(window-[a-z-]+)"', code))
    told = {id for found in told for id in found if id}
    wrong.extend(f"{id}: is told and has no row" for id in sorted(told - set(rows)))
    # Some are put together: "object-" and a word.
    literals = set(re.findall(r'"([\w -]+)"', code))
    parts = tuple(literal for literal in literals if re.fullmatch(r"[a-z]+(-[a-z]+)*-", literal))
    ends = tuple(literal for literal in literals if re.fullmatch(r"(-[a-z]+)+", literal))
    wrong.extend(f"{id}: has a row and is told nowhere" for id in (row.removesuffix(WINDOW) for row in rows)
                 if id not in literals and not id.startswith(parts) and not id.endswith(ends))


# The text between a brace and the one that closes it.
def braced(text):
    depth = 0
    for brace in re.finditer(r'"(?:[^"\\]|\\.)*"|[{}]', text):
        depth += {"{": 1, "}": -1}.get(brace[0], 0)
        if depth == 0:
            return text[:brace.end()]
    return text


# The values where a sentence is told, where its identifier and they stand there.
def check_values():
    rows = dict((id, places(unquoted(text))) for path in sources("words/english")
                for id, text in re.findall(r'{"([^"]+)",\s*N_\(((?:"(?:[^"\\]|\\.)*"\s*)+)\)', path.read_text()))
    seen = 0
    for path in told_in():
        code = path.read_text()
        for told in re.finditer(r'(?:"([a-z-]+)"\s*:\s*)?"([a-z-]+)",\s*(?={{"|{}[})])', code):
            given = re.findall(r'{"(\w+)",', braced(code[told.end():]))
            for id in filter(rows.__contains__, told.groups()):
                seen += 1
                wrong.extend(f"{path}: {id}: no value for {{{place}}}" for place in rows[id] if place not in given)
    if seen < 250:
        wrong.append(f"the values of too few sentences were seen: {seen}")


check_rows()
check_values()
if len(check_translations()) < 50:
    wrong.append("too few texts were seen")
print("\n".join(wrong))
sys.exit(bool(wrong))
