"""The figures of docs/performance.md: each function gives a table."""
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from cards import BUILD, PROGRAM, STEPS, SimulatedCard, list_

# What a command takes on a card, in seconds: a call, and more than that.
CALL = 0.010
MORE = {"C_Login": 0.060, "C_Sign": 0.350, "C_GenerateKeyPair": 8.0, "C_CreateObject": 0.150, "C_DestroyObject": 0.150}
# As it was with an opening for each caller of the module and a login for each question, and what was aimed at.
OPENINGS = {"before": ("7 / 4", "9 / 6", "10 / 7", "19 / 13", "8 / 8"), "goal": ("1 / 1", "1 / 4", "1 / 4", "2 / 8", "")}
CALLS = {"before": ("182", "270", "390", "660", "273"), "goal": ("30", "175", "175", "350", "")}
COMMANDS = {"before": ("466", "640", "774", "1414", "411"), "goal": ("70", "110", "120", "230", "")}
SECONDS = {"before": ("5.0", "7.1", "8.2", "15.3", "4.7"), "goal": ("0.8", "1.4", "1.4", "0.6 of by hand", "")}
FRONTS = {"now": {}, "now, without the front": {"ZVRENEW_FRONT": "off"}}


def table(head, rows):
    return "\n".join("| " + " | ".join(map(str, row)) + " |" for row in (head, ["---"] * len(head), *rows))


def rows_of(what, known, seen):
    return [[f"{what}, {when}", *values] for when, values in (*known.items(), *seen.items())]


def run(name, **environment):
    """One run on a new simulated card: its calls by name, and its seconds."""
    with tempfile.TemporaryDirectory() as folder:
        card = SimulatedCard(folder)
        for before in STEPS[name][0]:
            before(card)
        card.calls()
        card.environment.update(environment)
        begun = time.monotonic()
        STEPS[name][1](card)
        took = time.monotonic() - begun
        return card.calls(), took


def in_turns(works, rounds):
    """Median seconds of works that take turns."""
    times = {name: [] for name in works}
    for _ in range(rounds):
        for name, work in works.items():
            begun = time.monotonic()
            work()
            times[name].append(time.monotonic() - begun)
    return {name: statistics.median(taken) for name, taken in times.items()}


def calls():
    seen = {front: {name: run(name, **switch)[0] for name in STEPS} for front, switch in FRONTS.items()}
    openings = {front: [f"{all_.count('C_Initialize')} / {all_.count('C_Login')}" for all_ in of.values()]
                for front, of in seen.items()}
    counts = {front: [len(all_) for all_ in of.values()] for front, of in seen.items()}
    waited = [f"{run(name, ZVSIMCARD_RULES='*:1+:delay:10000')[1]:.1f}" for name in STEPS]
    modelled = [f"{len(all_) * CALL + sum(MORE.get(one, 0) for one in all_):.1f}" for all_ in seen["now"].values()]
    return table(["", *STEPS], [*rows_of("module openings / logins", OPENINGS, openings), *rows_of("module calls", CALLS, counts),
                                ["seconds at 10 ms a call", *waited], ["seconds on a card, model", *modelled]])


def commands():
    def once(name, switch):
        words = [BUILD / "bin/zvvirtualreaders", sys.executable, "-B", pathlib.Path(__file__).with_name("opensc.py"), BUILD, name]
        done = subprocess.run(words, env={**os.environ, **switch}, capture_output=True, text=True, check=False)
        if done.returncode or not done.stdout:
            sys.exit(f"{name} over OpenSC: {done.stderr}")
        count, took = done.stdout.split()
        return int(count), float(took)

    counts, seconds = {}, {}
    for front, switch in FRONTS.items():
        runs = [[once(name, switch) for _ in range(3)] for name in STEPS]
        counts[front] = [statistics.median(count for count, _ in of) for of in runs]
        seconds[front] = [f"{statistics.median(took for _, took in of):.1f}" for of in runs]
    return table(["", *STEPS], rows_of("commands", COMMANDS, counts) + rows_of("seconds at 10 ms a command", SECONDS, seconds))


def replays():
    """The library's flows beside the same calls and entries of the log, made bare."""
    told = subprocess.run([BUILD / "bin/replay_bench"], capture_output=True, text=True, check=True).stdout
    rows = []
    for line in told.splitlines():
        title, flow, bare, ratio, call_count, entry_count = line.split("\t")
        rows.append([title, f"{float(flow):.2f}", f"{float(bare):.2f}", f"{float(ratio):.2f}", call_count, entry_count])
    return table(["", "milliseconds", "bare", "ratio", "calls", "entries"], rows)


def programs():
    """Wall time where a call costs nothing."""
    works = {name: [] for name in STEPS}
    for _ in range(7):
        for name, taken in works.items():
            taken.append(run(name)[1])
    return table(["", *STEPS], [["milliseconds", *(f"{1000 * statistics.median(taken):.0f}" for taken in works.values())]])


def starts():
    quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
    other = shutil.which("pkcs11-tool")
    taken = in_turns({"zvrenew --version": lambda: subprocess.run([PROGRAM, "--version"], **quiet, check=True),
                      "pkcs11-tool --version": lambda: subprocess.run([other, "--version"], **quiet, check=False)}, 1000)
    return table(["start", "milliseconds"], [[f"`{name}`", f"{1000 * one:.2f}"] for name, one in taken.items()])


def growth():
    """A card with more and more certificates: one that another program wrote, copied with other identifiers."""
    rows, first = [], bytes.fromhex("aaaaaaaa")
    with tempfile.TemporaryDirectory() as folder:
        card = SimulatedCard(folder)
        own = set(card.folder.glob("cards/*/*.object"))
        card.by_pkcs11_tool(f"--write-object {folder}/any.der --type cert --id {first.hex()} --label more")
        (written,) = set(card.folder.glob("cards/*/*.object")) - own
        for held in 10, 100, 1000:
            for number in range(1, held):
                copy = written.with_stem(f"{number:08x}-0000-0000-0000-000000000000")
                copy.write_bytes(written.read_bytes().replace(first, number.to_bytes(4, "big")))
            card.calls()
            list_(card)
            count = len(card.calls())
            taken = in_turns({"": lambda: list_(card)}, 7)[""]
            rows.append([held, count, f"{1000 * taken:.0f}"])
    return table(["objects more", "module calls of `list`", "milliseconds"], rows)
