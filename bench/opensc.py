"""bench/opensc.py BUILD STEP, in zvvirtualreaders: the commands that a step sends to a card through OpenSC and the PC/SC
service, counted on their way and delayed by 10 ms each. Prints how many there were and how many seconds the step took."""
import pathlib
import socket
import subprocess
import sys
import tempfile
import threading
import time

from cards import BUILD, STEPS, Card

ATR, DELAY, OURS, READER = "3B80800101", 0.010, 36999, 36865


class Relay(threading.Thread):
    """Between the driver and the card: messages are a length of two bytes and as many bytes. One of a single byte is for
    the card's contacts, any other a command or its answer."""

    def __init__(self):
        super().__init__(daemon=True)
        self.count, self.delay = 0, 0.0
        self.listening = socket.create_server(("127.0.0.1", OURS))

    @staticmethod
    def message(source):
        head = source.recv(2, socket.MSG_WAITALL)
        source.setsockopt(socket.IPPROTO_TCP, socket.TCP_QUICKACK, 1)  # the driver waits for it before the rest
        return head + source.recv(int.from_bytes(head, "big"), socket.MSG_WAITALL)

    def run(self):
        card, _ = self.listening.accept()
        reader = socket.create_connection(("127.0.0.1", READER))
        for one in card, reader:
            one.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        threading.Thread(target=self.answers, args=(card, reader), daemon=True).start()
        while command := self.message(reader):
            if len(command) > 3:
                self.count += 1
                time.sleep(self.delay)
            card.sendall(command)

    def answers(self, card, reader):
        while answer := self.message(card):
            reader.sendall(answer)


class OpenScCard(Card):
    """One in the virtual reader, with a pair DS0. OpenSC lets the library remove no keys: the old ones stay."""
    module, pin, removes = next(pathlib.Path("/usr/lib").rglob("opensc-pkcs11.so")), "12345", False
    options = ("--module-dir", module.parent)

    def make(self):
        authority = self.folder / "cards/.authority"
        authority.mkdir(parents=True)
        self.write("conf", f"[card made]\natr = {ATR}\nmodule = {self.module.name}\n")
        self.do("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj", "/C=IT/O=Prova/CN=Autorita", "-days", "60",
                "-keyout", authority / "key.pem", "-out", authority / "certificate.pem")
        self.do("pkcs15-init", "--create-pkcs15", "--so-pin", self.pin, "--so-puk", "1234567890123456", "--label", "card")
        self.by_pkcs11_tool("--keypairgen --key-type rsa:2048 --id 445330 --label DS0")
        self.by_pkcs11_tool("--read-object --type pubkey --id 445330 --output-file public.der")
        self.do("openssl", "pkey", "-pubin", "-in", "public.der", "-out", "public.pem")
        (self.work / "extensions").write_text("subjectKeyIdentifier = hash\ncertificatePolicies = 2.999.1.1\n")
        self.do("openssl", "x509", "-new", "-force_pubkey", "public.pem", "-days", "30", "-extfile", "extensions", "-subj",
                "/C=IT/O=Prova/CN=Ada Collaudo/serialNumber=TINIT-CLLDAA80A41Z999U", "-CA", authority / "certificate.pem", "-CAkey",
                authority / "key.pem", "-outform", "DER", "-out", "DS0.der")
        self.by_pkcs11_tool("--write-object DS0.der --type cert --id 445330 --label DS0")


def main():
    before, step = STEPS[sys.argv[2]]
    relay = Relay()
    relay.start()
    with subprocess.Popen([BUILD / "bin/zvvirtualcard", "--port", str(OURS), "--atr", ATR, "--applet", "iso"]) as played, \
            tempfile.TemporaryDirectory() as folder:
        time.sleep(1)  # until the service has seen the card
        card = OpenScCard(folder)
        for work in before:
            work(card)
        relay.count, relay.delay = 0, DELAY
        begun = time.monotonic()
        step(card)
        print(relay.count, time.monotonic() - begun)
        played.terminate()


main()
