#!/usr/bin/env python3
"""includes.py ROOT: fails when a file uses a function, type or constant of a header of the tree that it does not include, by itself
or through another, and when a header does so with the language's: where files are compiled together, another one's include would
do. A name counts when one header has it."""
import os
import re
import sys

LAYERS = "util diag card store inventory request install api".split()
FOLDERS = LAYERS + "ossl lenient pkcs11 crypt front simcard host words cli desktop include".split()
DECLARED = re.compile(r"\b(?:struct|class|enum(?: class)?|union)\s+(\w+)[^;(){]*\{|^\s*#\s*define\s+(\w+)|\busing\s+(\w+)\s*="
                      r"|\bconstexpr\b[^;=({]*?(\w+)\s*[\[={]|[\w>&*\]]\s+[&*]*(\w+)\s*\((?!&)", re.M)
LOCAL = re.compile(r"\w[\s&*]+(\w+)\s*[,)=;{]|\b(?:typename|class)\s+(\w+)")
USED = re.compile(r"(?<![\w.>:])(\w+)\s*\((?!&)|\b([A-Z]\w*)\b(?!\s*\(&)")
OF_TEXT = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"', re.S)
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^">]+)[">]', re.M)
LANGUAGE = {name: header for header, names in (
    ("algorithm", "sort find find_if any_of all_of none_of copy fill equal min max"), ("array", "array"), ("chrono", "chrono"),
    ("cstddef", "byte"), ("cstring", "memcpy memset strlen"), ("filesystem", "filesystem"), ("fstream", "ifstream ofstream"),
    ("functional", "function"), ("map", "map multimap"), ("memory", "unique_ptr shared_ptr make_unique make_shared"),
    ("optional", "optional nullopt"), ("set", "set"), ("span", "span"), ("stdexcept", "runtime_error invalid_argument"),
    ("string", "string to_string"), ("string_view", "string_view"), ("tuple", "tuple"), ("utility", "pair exchange move"),
    ("variant", "variant"), ("vector", "vector")) for name in names.split()}

os.chdir(sys.argv[1])
raw = {}
for folder in FOLDERS:
    for path, _, names in os.walk(folder):
        for name in names:
            if name.endswith((".h", ".cpp")):
                raw[os.path.normpath(os.path.join(path, name))] = open(os.path.join(path, name), encoding="utf-8").read()


def found(user, name):
    for place in (os.path.join(os.path.dirname(user), name), name, "include/" + name):
        if os.path.normpath(place) in raw:
            return os.path.normpath(place)
    return None


def parts(pattern, text):
    return {part for match in pattern.finditer(text) for part in match.groups() if part}


def outer(text):
    """What stands at the level of namespaces: bodies of types and functions are taken out."""
    kept, depth = [], []
    for part in re.split(r"([{}])", text):
        if part == "{":
            kept.append("{")
            depth.append(bool(re.search(r'(?:\bnamespace\b[^;{}()]*|\bextern\s*)$', last)))
        elif part == "}":
            if depth:
                depth.pop()
            kept.append("}")
        elif all(depth):
            kept.append(part)
        last = part
    return "".join(kept)


includes = {path: [to for to in (found(path, name) for name in INCLUDE.findall(text)) if to] for path, text in raw.items()}
code = {path: OF_TEXT.sub(" ", text) for path, text in raw.items()}
# What is ours is found with its namespace before it and without; a name of another namespace is none of ours.
ours = "|".join({name for text in code.values() for name in re.findall(r"\bnamespace\s+(\w+)\s*\{", text)})
code = {path: re.sub(rf"\b(?:{ours})::", "", text) for path, text in code.items()}
declared = {path: parts(DECLARED, outer(text) if path.endswith(".h") else text) for path, text in code.items()}


def reached(path, seen):
    for to in includes[path]:
        if to not in seen:
            seen.add(to)
            reached(to, seen)
    return seen


def library(path):
    folder = os.path.dirname(path)
    return "the library" if folder in LAYERS else folder


def missing(files):
    """Of files that are compiled together: file, name, and the header that another of them includes."""
    seen = {path: reached(path, {path}) for path in files}
    homes = {}
    for header in set().union(*seen.values()) - set(files):
        for name in declared[header]:
            homes.setdefault(name, set()).add(header)
    for path in [*files, *sorted(set().union(*seen.values()) - set(files))]:
        if path not in seen:
            seen[path] = reached(path, {path})
        for name in sorted(parts(USED, code[path]) - parts(LOCAL, code[path]) - parts(DECLARED, code[path])):
            home = homes.get(name, set())
            if len(home) == 1 and not seen[path] & home:
                yield path, name, next(iter(home))


def missing_of_language(header):
    """The types whose header neither this one nor one that it includes has."""
    included = {name for path in reached(header, {header}) for name in INCLUDE.findall(raw[path])}
    for name in sorted(set(re.findall(r"\bstd::(\w+)", raw[header]))):
        if name in LANGUAGE and LANGUAGE[name] not in included:
            yield header, "std::" + name, LANGUAGE[name]


libraries = {}
for path in sorted(raw):
    if path.endswith(".cpp"):
        libraries.setdefault(library(path), []).append(path)
wrong = [line for files in libraries.values() for line in missing(files)]
wrong += [line for path in sorted(raw) if path.endswith(".h") for line in missing_of_language(path)]
for path, name, home in sorted(set(wrong)):
    print(f"{path}: uses {name} of {home}, which it does not include")
if len(libraries) < 8 or sum(map(len, declared.values())) < 500:
    sys.exit("hardly a name was seen")
sys.exit(bool(wrong))
