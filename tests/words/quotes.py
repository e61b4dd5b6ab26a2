#!/usr/bin/env python3
"""quotes.py ROOT: fails when the library can give a host an Italian text of which the table of quotes does not know the
meaning, or when the table knows one that no library gives."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
LITERALS = r'"(?:[^"\\\n]|\\.)*"'
wrong = []


def joined(literals):
    text = "".join(re.findall(r'"((?:[^"\\\n]|\\.)*)"', literals))
    text = re.sub(r"\\(.)", lambda m: {"n": "\n", "r": "\r"}.get(m[1], m[1]), text)
    return " ".join(re.sub(r"%\w+", "{}", text.replace("0x%08X", "0x{}")).split())


def code_of(*folders):
    files = [path for folder in folders for path in sorted((root / folder).glob("*")) if path.suffix in (".cpp", ".h")]
    text = "\n".join(path.read_text() for path in files)
    return re.sub(r"(?m)^\s*//.*|^#.*", "", re.sub(r"static_assert\([^;]*;", "", text))


def texts(code, before=""):
    return {joined(found[1]) for found in re.finditer(rf"{before}((?:{LITERALS}\s*)+)", code)}


def is_told(text):
    return re.search(r"[a-z]{2}.* |[\u00c0-\u00ff]|^PIN ", text) and not text.startswith("CKR_")


messages = texts(code_of("diag"), r"\{CKR_\w+,\s*")
steps = code_of("card", "request", "install", "api").replace("ZV_OWN_PAIR", '"CNS0"')
said = {text for text in messages if is_told(text)}
for before in (r"\.user\(", r"\w+_ERROR\[\] =\s*", r"REPEAT_GENERATION\[\] =\s*", r"NOT_SUPPORTED\[\] =\s*",
               r"format\[\] =\s*", r'\bfailed\("\w+",\s*', r'return fail(?:_command)?\("[^"]*",[^;"]*'):
    said |= texts(steps, before)
# One stands in a certificate's description.
pieces = {text for text in texts(code_of("crypt")) if is_told(text)} - {"(oltre 8191 caratteri)"}

table = re.findall(rf'{{({LITERALS}(?:\s*{LITERALS})*),\s*({LITERALS}(?:\s*{LITERALS})*)}},',
                   (root / "words/quotes_table.cpp").read_text())
known = [joined(italian) for italian, _ in table]
wrong += [f"two rows: {text!r}" for text in set(known) if known.count(text) > 1]
wrong += [f"no meaning: {text!r}" for text in sorted(said) if text not in known]
# The crypto library puts its texts together.
wrong += [f"no meaning: {piece!r}" for piece in sorted(pieces) if not any(piece.strip(" .:(") in text for text in known)]
literals = said | texts(code_of("crypt"))
for text in known:
    for piece in re.split(r"\s*{}\s*", text):
        if re.search("[A-Za-z]{2}", piece) and not any(piece in literal for literal in literals):
            wrong.append(f"told nowhere: {text!r}")
if len(messages) < 80 or len(said) < 60 or len(pieces) < 100:
    wrong.append("too few texts were seen")
print("\n".join(wrong))
sys.exit(bool(wrong))
