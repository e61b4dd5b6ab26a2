"""The cards that are renewed to be measured, and how: with zvrenew, and by hand."""
import os
import pathlib
import shutil
import subprocess
import sys

BUILD = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent / "build/default").resolve()
PROGRAM, TOOL = BUILD / "bin/zvrenew", BUILD / "bin/zvsimcard-tool"
OLD, NEW = "445330", "445333"  # DS0 and DS3


class Card:
    """A card in a reader, and who renews it in a folder of its own."""
    module, pin, options, removes = pathlib.Path(), "", (), True

    def __init__(self, folder):
        self.folder, self.work = pathlib.Path(folder), pathlib.Path(folder) / "work"
        self.work.mkdir()
        self.write("pin", self.pin, 0o600)
        self.write("authority", "#!/bin/sh\ncat >asked && rm -f got && "
                   f"{TOOL} issue asked --out got >/dev/null && cat got\n", 0o755)
        # The library's log goes to the home folder of the user database.
        self.write("passwd", f"u:x:{os.getuid()}:{os.getgid()}::{folder}:/bin/sh\n")
        self.environment = {**os.environ, "LD_PRELOAD": "libnss_wrapper.so", "NSS_WRAPPER_PASSWD": f"{folder}/passwd",
                            "NSS_WRAPPER_GROUP": "/etc/group", "HOME": folder, "ZVSIMCARD_HOME": f"{folder}/cards",
                            "ZVCRYPT_CONF": f"{folder}/conf", "XDG_STATE_HOME": f"{folder}/state", "XDG_RUNTIME_DIR": folder}
        self.make()
        self.do("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", "/dev/null", "-subj", "/CN=any", "-outform",
                "DER", "-out", self.folder / "any.der")

    def make(self):
        raise NotImplementedError

    def write(self, name, text, mode=0o644):
        (self.folder / name).write_text(text)
        (self.folder / name).chmod(mode)

    def do(self, *words):
        done = subprocess.run(words, cwd=self.work, env=self.environment, capture_output=True, check=False)
        if done.returncode:
            sys.exit(f"{' '.join(map(str, words))} ended with {done.returncode}: {(done.stderr + done.stdout).decode()}")

    def zvrenew(self, line):
        self.do(PROGRAM, *line.split(), *self.options, "--pin-file", self.folder / "pin")

    def by_pkcs11_tool(self, line):
        self.do("pkcs11-tool", "--module", self.module, "-l", "--pin", self.pin, *line.split())


class SimulatedCard(Card):
    """One whose module adds each call to a file."""
    module, pin = next(BUILD.glob("lib/libzvsimcard.*"), None), "12345678"

    def make(self):
        self.do(TOOL, "create", "--days", "12", "--keys", BUILD / "test_keys.pem", "--config", self.folder / "conf")
        # How long a pair takes to make is chance: they are there already.
        keys = shutil.copy(BUILD / "test_keys.pem", self.folder / "keys")
        self.environment.update(ZVSIMCARD_TRACE=f"{self.folder}/trace", ZVSIMCARD_KEYS=str(keys))

    def calls(self):
        """Names of the calls since the last time."""
        trace = self.folder / "trace"
        names = [line.split()[0] for line in trace.read_text().splitlines()] if trace.exists() else []
        trace.unlink(missing_ok=True)
        return names


def list_(card):
    card.zvrenew("list")


def request(card):
    card.zvrenew("request signature --out request")


def issue(card):
    card.do(TOOL, "issue", "request", "--out", "certificate")


def install(card):
    card.zvrenew("install certificate --request request" + card.removes * " --remove-old")


def renewal(card):
    card.zvrenew(f"renew signature --ca-command {card.folder}/authority" + card.removes * " --remove-old")


def by_hand(card):
    """The same with another program: look, new pair, a request's two signatures, store, remove."""
    (card.work / "digest").write_bytes(bytes.fromhex("3021300906052b0e03021a05000414") + bytes(20))
    card.by_pkcs11_tool("-O")
    card.by_pkcs11_tool(f"--keypairgen --key-type rsa:2048 --id {NEW} --label DS3")
    for id_, out in (NEW, "s1"), (OLD, "s2"):
        card.by_pkcs11_tool(f"--sign --mechanism RSA-PKCS --id {id_} --input-file digest --output-file {out}")
    card.by_pkcs11_tool(f"--write-object {card.folder}/any.der --type cert --id {NEW} --label DS3")
    for type_ in ("cert", "pubkey", "privkey") if card.removes else ():
        card.by_pkcs11_tool(f"--delete-object --type {type_} --id {OLD}")


# What is measured, and what goes before it.
STEPS = {"list": ((), list_), "request": ((), request), "install": ((request, issue), install), "renewal": ((), renewal),
         "by hand": ((), by_hand)}
