#!/usr/bin/env python3
"""lint_batches.py BUILD INTO FOLDER...: puts the unity files that BUILD makes of the FOLDERs together in INTO, with compile
commands, and prints what it made: clang-tidy, most of whose time goes into headers, reads them once for several libraries.
A library that stands in no row is a batch of its own. Two in a row must not define the same: libraries of one namespace may
have file-local names alike. A program's main stands apart from what it calls, and is looked at as when it is compiled."""
import json
import os
import re
import shlex
import sys

ROWS = (("zvwords", "zvrenew_parts"), ("zvsimcard_authority", "zvsimcard_make", "zvsimcard-tool"), ("zvhost_objects", "zvrenew"),
        ("min_zvCrypt", "zvpkcs11", "zvfront_core", "zvossl", "zvsimcard_common", "zvvirtualreaders"),
        ("zvsimcard", "zvsimcard_readers", "zvvirtualcard"), ("zvrenew_objects",))
WITH_VALUE = ("-I", "-isystem", "-include")

build, into, *folders = sys.argv[1:]
unity = re.compile(rf"/(?:{'|'.join(folders)})/(?:.*/)?([^/]+)\.dir/Unity/[^/]+")
found = {}
for entry in json.load(open(f"{build}/compile_commands.json", encoding="utf-8")):
    file = os.path.join(entry["directory"], entry["file"])
    match = file.startswith(build + "/") and unity.fullmatch(file[len(build):])
    if match:
        found.setdefault(match[1], []).append((file, entry))


def flags(entry):
    """Those of a compile command that are not about its one file, each with its value."""
    words = iter(entry.get("arguments") or shlex.split(entry["command"]))
    next(words)  # the compiler
    for word in words:
        if word == "-o":
            next(words)
        elif word in WITH_VALUE:
            yield (word, next(words))
        elif word.startswith("-") and word != "-c":
            yield (word,)


if not found:
    sys.exit(f"{build} has no unity files of {folders}")
commands = []
for row in ROWS + tuple((name,) for name in found if not any(name in row for row in ROWS)):
    files = [one for name in row for one in found.get(name, ())]
    if not files:
        continue
    batch = f"{into}/{row[0]}.cpp"
    with open(batch, "w", encoding="utf-8") as text:
        text.writelines(f'#include "{file}"\n' for file, _ in files)
    once = dict.fromkeys(flag for _, entry in files for flag in flags(entry))
    commands.append({"directory": files[0][1]["directory"], "file": batch,
                     "arguments": ["clang++", *(word for flag in once for word in flag), "-c", batch]})
    print(batch)
with open(f"{into}/compile_commands.json", "w", encoding="utf-8") as text:
    json.dump(commands, text)
