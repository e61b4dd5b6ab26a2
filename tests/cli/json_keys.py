#!/usr/bin/env python3
"""json_keys.py ROOT ZVRENEW TOOL KEYS NSS_WRAPPER NOTIFICATION_SERVICE: compares the keys that docs/json.md describes with those that the
program prints, in both directions, and its list of advice with the program's sources."""
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

root, zvrenew, tool, keys, wrapper, notification_service = sys.argv[1:]
problems = []
RESULTS = {"done": 0, "failed": 1, "refused": 2, "nothing due": 3,
           "due": 10, "expired": 11, "request under way": 12, "nothing on the card": 13}


def described():
    """The keys of each section of the document; the advice with its further keys apart."""
    sections, advice, name = {}, {}, ""
    for line in pathlib.Path(root, "docs/json.md").read_text().splitlines():
        if line.startswith("## "):
            name = line[3:].replace("`", "")
        if not line.startswith("| `"):
            continue
        cells = [re.findall(r"`([^`]+)`", cell) for cell in line.strip("|").split("|")]
        if name == "Advice":
            advice.update({key: set(cells[2]) for key in cells[0]})
        else:
            sections.setdefault(name, set()).update(cells[0])
    return sections, advice


def paths(value, at=""):
    if isinstance(value, list):
        for one in value:
            yield from paths(one, at + "[]")
    elif isinstance(value, dict):
        for key, inner in value.items():
            own = "*" if re.search(r"(subject|issuer)\[\]$", at) else key
            path = f"{at}.{own}" if at else own
            if not isinstance(inner, (list, dict)) or not inner or not isinstance(inner, dict) and not isinstance(inner[0], dict):
                yield path
            yield from paths(inner, path)


class Desk:
    """Simulated cards, a home and a working folder."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.work = self.folder / "work"
        self.work.mkdir()
        (self.folder / "passwd").write_text(f"u:x:{os.getuid()}:{os.getgid()}::{folder}:/bin/sh\n")
        self.environment = {**os.environ, "LD_PRELOAD": wrapper, "NSS_WRAPPER_PASSWD": f"{folder}/passwd",
                            "NSS_WRAPPER_GROUP": "/etc/group", "ZVSIMCARD_HOME": f"{folder}/cards", "HOME": folder, "XDG_STATE_HOME": f"{folder}/state", "XDG_CONFIG_HOME": f"{folder}/configuration",
                            "ZVCRYPT_CONF": f"{folder}/conf", "ASAN_OPTIONS": "verify_asan_link_order=0"}
        # No session but one of its own: what is turned on by a test is not the user's.
        self.environment.pop("DBUS_SESSION_BUS_ADDRESS", None)
        self.environment["XDG_RUNTIME_DIR"] = folder
        self.pin = "12345678"
        self.printed, self.advised = set(), set()

    def card(self, *options):
        subprocess.run([tool, "remove", "card"], env=self.environment, capture_output=True)
        self.tool("create", "--keys", keys, "--config", f"{self.folder}/conf", *options)
        for file in self.work.iterdir():
            file.unlink()

    def tool(self, *arguments):
        subprocess.run([tool, *arguments], env=self.environment, cwd=self.work, check=True, capture_output=True)

    def full(self):
        file = self.folder / "cards/card/card.ini"
        file.write_text(re.sub("capacity = .*", "capacity = 1", file.read_text()))

    def session(self):
        """What runs a command in a desktop session."""
        (self.folder / "n.service").write_text("[D-BUS Service]\nName=org.freedesktop.Notifications\n"
                                               f"Exec={notification_service} {self.folder}/shown\n")
        (self.folder / "session.conf").write_text(
            f"<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><servicedir>{self.folder}</servicedir>"
            '<policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/>'
            '<allow own="*"/></policy></busconfig>')
        return ["dbus-run-session", "--config-file", f"{self.folder}/session.conf", "--"]

    def run(self, line, rules="", environment=None, pin=True, before=()):
        pin_file = self.folder / "pin"
        pin_file.write_text(self.pin)
        pin_file.chmod(0o600)
        arguments = line.split() + (["--pin-file", str(pin_file)] if pin and line.split()[:1] not in (["readers"], ["doctor"], ["status"], ["rehearse"], ["remind"]) else [])
        done = subprocess.run([*before, zvrenew, *arguments, "--json"], cwd=self.work, capture_output=True, stdin=subprocess.DEVNULL,
                              start_new_session=True, env={**self.environment, "ZVSIMCARD_RULES": rules, **(environment or {})})
        try:
            answer = json.loads(done.stdout)
        except ValueError:
            return problems.append(f"{line}: no JSON: {done.stdout!r} {done.stderr!r}")
        self.check(line, answer, done.returncode)

    def check(self, line, answer, code):
        if RESULTS.get(answer["result"]) != code:
            problems.append(f"{line}: {answer['result']} with exit code {code}")
        command = answer["command"]
        wanted = set(sections["Every answer"]) | sections.get(command, set())
        if command not in (None, "readers", "doctor", "remind"):
            wanted |= sections["The card"]
        if "--dry-run" in line:
            wanted |= sections["With --dry-run"]
        wanted |= {key for key in sections["After failed, refused and nothing due"]
                   if 0 < code < 10 or key.startswith("on_card")}
        for advice in answer.pop("advice"):
            self.printed |= {"advice[].key", "advice[].text", "advice[].sentence"}
            further = set(advice) - {"key", "text", "sentence"}
            self.advised.add(advice["key"])
            if not further <= advice_keys.get(advice["key"], set()):
                problems.append(f"{line}: advice {advice['key']} with {further}")
        self.printed.add("advice")
        printed = set(paths(answer))
        self.printed |= printed
        for path in sorted(printed - wanted):
            if not any(key.startswith((path + ".", path + "[")) for key in wanted):
                problems.append(f"{line}: prints {path}, which is not described")


def play(desk):
    desk.run("remind --enable")
    desk.card("--days", "12")
    for line in ("readers", "readers --days 3", "status", "status --days 800", "status --reader none", "list", "list --help", "list --days 800", "free-id", "lost",
                 "list --reader none", "list --module-dir /", "install none", "install cards", "request authentication",
                 "request services", "request services --new-pair", "request signature --subject /C=ITA",
                 "request signature --certificate none", "request signature --out s --subject CN"):
        desk.run(line)
    desk.run("remind")
    desk.run("remind", before=desk.session())
    desk.run("remind --disable")
    desk.run("remind --enable --disable")
    desk.run("list", pin=False)
    desk.run("status", "C_FindObjectsInit:1:answer:0x30")
    desk.run("doctor --bundle b")
    desk.run("doctor --module-dir .", "C_Initialize:*:answer:0x5")
    desk.run("doctor --bundle b", "C_Initialize:*:answer:0x5")
    for code in ("0x6", "0x30"):
        desk.run("list", f"C_FindObjectsInit:1:answer:{code}")
    desk.run("list", "C_FindObjects:all:answer:0x30")
    desk.run("request signature --out s --dry-run")
    desk.run("request signature --out s --apply-if x")
    desk.run("request signature --out s", "C_GenerateKeyPair:1:answer:0x5")
    desk.run("request signature --out s", "C_Sign:1:answer:0x30")
    desk.run("request signature --out s")
    desk.run("request signature --out s --subject /C=IT/CN=x")
    desk.run("request signature")
    desk.run("list")
    desk.run("free-id")
    desk.run("pending")
    desk.run("remove DS3")
    desk.run("remove DS0")
    desk.run("remove none")
    desk.tool("issue", "s", "--out", "c")
    desk.run("install c --replace none")
    desk.run("install c --remove-old --backup b", "C_CreateObject:1:answer:0x31")
    desk.run("install c --remove-old --backup b")
    desk.run("install c")
    desk.run("request signature --force --out second")
    desk.tool("issue", "second", "--out", "d")
    desk.run("install d --remove-old --replace DS3", "C_DestroyObject:1:answer:0x6;C_DestroyObject:2:answer:0x6")
    desk.run("list")
    desk.run("status")
    desk.run("free-id")
    desk.run("pending discard DS0")
    desk.run("rehearse signature")
    desk.run("rehearse authentication")
    desk.run("renew authentication")
    desk.run("renew authentication --from answer")
    desk.run("renew authentication --force --from answer")
    desk.tool("issue", "request-authentication.b64", "--out", "answer")
    desk.run("renew authentication --from answer", "C_CreateObject:1:answer:0x31")
    desk.run("renew authentication --from answer --replace AUTHCertificate0")
    desk.run("request signature --force --out third")
    desk.run("pending")
    desk.run("pending discard DS5")
    desk.card("--profile", "cns", "--cns-days", "3")
    desk.run("request services --out s")
    desk.run("list")
    desk.run("status")
    desk.tool("issue", "s", "--out", "c")
    desk.run("install c --remove-old --backup b", "C_CreateObject:1:answer:0x5")
    desk.card("--days", "12")
    desk.full()
    desk.run("request signature")
    desk.tool("create", "--name", "two", "--reader", "Simulated", "--keys", keys, "--config", f"{desk.folder}/conf")
    desk.run("list")
    desk.tool("remove", "two")
    desk.card("--days", "12")
    desk.run("request signature --out s")
    desk.tool("issue", "s", "--out", "c")
    desk.run("install c", "C_CreateObject:1:take-out")
    desk.card("--days", "12")
    for kind in ("authentication", "signature"):
        for number in "345":
            desk.run(f"request {kind} --force --out {kind}{number}")
            desk.tool("issue", f"{kind}{number}", "--out", "c")
            desk.run("install c")
            (desk.work / "c").unlink()
        desk.run("free-id")
        desk.run("list --days 2000")
    desk.run("request signature --force")
    desk.card("--days", "12")
    desk.pin = "9999"
    for line in ("list", "list", "list", "list --final-try", "list"):
        desk.run(line)
    desk.run("readers")
    desk.tool("eject", "card")
    desk.run("list")
    for text in ("[reader x]\nname = x\natr = 3B00\n", ""):
        (desk.folder / "conf").write_text(text)
        for line in ("readers", "doctor", "list"):
            desk.run(line, environment={"PCSCLITE_CSOCK_NAME": "/nowhere"})


def keys_of_sources():
    text = "".join(path.read_text() for room in ("host", "cli") for path in sorted(pathlib.Path(root, room).glob("*.cpp")))
    return set(re.findall(r'(?:Advice\s*\{|return \{|(?<!objections\.)push_back\(\s*\{|advise\()\s*"([a-z-]+)",', text))


# A sentence is written as an advice is; what stands in a row of words/ is one.
def sentences():
    text = "".join(path.read_text() for path in pathlib.Path(root, "words/english").glob("*.cpp"))
    return set(re.findall(r'\{"([a-z-]+)",', text))


sections, advice_keys = described()
with tempfile.TemporaryDirectory() as folder:
    desk = Desk(folder)
    play(desk)
every = set().union(*sections.values()) - {"on_card[].id"}
problems += [f"{key} is described, but nothing printed it" for key in sorted(every - desk.printed)
             if not any(path.startswith((key + ".", key + "[")) for path in desk.printed)]
problems += [f"advice {key}: not described" for key in sorted((keys_of_sources() - sentences() | desk.advised) - set(advice_keys))]
problems += [f"advice {key}: described, but not in the sources" for key in sorted(set(advice_keys) - keys_of_sources())]
print("\n".join(problems))
sys.exit(1 if problems else 0)
