#!/usr/bin/env python3
"""window.py ROOT LANGUAGE: fails when a sentence that a window may show speaks of a command, an option or a key, in English
or in the language, or quotes what no button says; when a window's row has no row to stand in for, or a place that this has not; and when a sentence that
only a terminal tells need not be named here."""
import pathlib
import re
import sys

root, language = pathlib.Path(sys.argv[1]), sys.argv[2]
WINDOW = "@window"
LITERALS = r'(?:"(?:[^"\\]|\\.)*"\s*)+'
# Of the command line, of asking for a PIN in a terminal, of what no window does: rehearse, call an authority's command.
TERMINAL_ONLY = set("""
authority-failed authority-failed-advice authority-unasked command-missing command-unknown enable-or-disable help
install-simcard no-terminal pin-file pin-file-open pin-several-sources rehearse-with-force
renewal-under-way renewal-without-authority-advice terminal-echo terminal-unread
""".split())
UNSEEN = r"zvrenew |--|\bcommand|\bcomand|\boption|\bopzion|terminal|Ctrl-|chmod|\bkill\b|rm -r|\bldd\b|\bman |\btool\b|apt "


def unquoted(text):
    pieces = re.findall(r'"((?:[^"\\]|\\.)*)"', text)
    return re.sub(r"\\(.)", lambda m: {"n": "\n", "t": "\t"}.get(m[1], m[1]), "".join(pieces))


def places(text):
    return set(re.findall(r"{(\w*)}", text))


rows = {id: unquoted(text) for path in (root / "words/english").glob("*.cpp")
        for id, text in re.findall(rf'{{"([^"]+)",\s*N_\(({LITERALS})\)', path.read_text())}
said = {unquoted(text): unquoted(words) for path in (root / "words" / language).glob("*.po")
        for text, words in re.findall(rf"^msgid ({LITERALS})\nmsgstr ({LITERALS})", path.read_text(), re.M)}
wrong = []
for id in sorted(rows):
    base = id.removesuffix(WINDOW)
    if base != id:
        if base not in rows or base in TERMINAL_ONLY or not places(rows[id]) <= places(rows[base]):
            wrong.append(f"{id}: stands in for no row that a window may show, or has a place of its own")
        continue
    shown = rows.get(base + WINDOW, rows[base])
    seen = [text for text in (shown, said.get(shown, "")) if re.search(UNSEEN, text)]
    if base not in TERMINAL_ONLY:
        wrong.extend(f"{base}: no window can do this: {text!r}" for text in seen)
    elif not seen:
        wrong.append(f"{base}: a window can tell this")
labels = [said_so.replace("&", "") for id, text in rows.items() if id.startswith("window-")
          for said_so in (text, said.get(text, ""))]
labels += [label.replace("{kind}", kind) for label in labels for kind in ("services", said.get("services", ""))]
for id, text in rows.items():
    for told in (text, said.get(text, "")) if id.endswith(WINDOW) else ():
        wrong.extend(f"{id}: no button says {quoted!r}" for quoted in re.findall(r'"([^"]+)"', told) if quoted not in labels)
wrong.extend(f"{id}: has no row" for id in sorted(TERMINAL_ONLY - set(rows)))
if len(rows) < 400 or len(said) < 400:
    wrong.append("too few rows were seen")
print("\n".join(wrong))
sys.exit(bool(wrong))
