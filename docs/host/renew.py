"""renew.py LIBRARY MODULES AUTHORITY IDENTIFIER [remove]: renews one certificate of the card in the first reader.

LIBRARY is libzvRenew (.so.1, .1.dylib), MODULES the folder of the cards' PKCS#11 modules, AUTHORITY a program that is run
as "AUTHORITY REQUEST CERTIFICATE" and writes the certificate for a request. The PIN is the first line of standard input.
With "remove" the old certificate and its keys go from the card. The same command again goes on where a failure left it.
"""
import ctypes
import os
import pwd
import re
import subprocess
import sys

# zvConstants.h
PIN_MAX, ID_MAX, MODULE_DIR_MAX = 31, 31, 511
LIST_ENTRIES, LIST_ENTRY_SIZE, RECORD_NAME_SIZE = 11, 4096, 512
KEY_ID_SIZE, LABEL_SIZE, REQUEST_SIZE = 32, 256, 16384
CERT_TEXT_MAX, MESSAGE_SIZE, MESSAGES = 7500, 512, 512

KINDS = SIGNATURE, AUTHENTICATION, SERVICES = range(3)
# Five fields, two dates, the identifier; the first five may not hold a "#" of their own, or the record is not taken.
RECORD = re.compile(rb"([^#]*)#[^#]*#[^#]*#[^#]*#[^#]*" + rb"#\d\d/\d\d/\d{4} \d\d:\d\d:\d\d" * 2 + rb"#([^#]*)")


class Library:
    """The library. One call at a time: ctypes lets other threads run meanwhile, so a host with threads needs a lock."""

    def __init__(self, path):
        text, flag = ctypes.c_char_p, ctypes.c_bool
        self.lib = ctypes.CDLL(path)
        # Without these an argument is taken as an int, and half of a pointer is lost.
        entry, number = ctypes.POINTER(text), ctypes.POINTER(ctypes.c_int)
        self.lib.rinnovo_Card_readCerts.argtypes = [text, text, ctypes.c_int, entry, entry, entry, number, number, number,
                                                    text, text, text, text]
        for end in ("PRA", "AUT"):
            getattr(self.lib, "rinnovo_Card_createCertRequest" + end).argtypes = [text] * 5 + [flag]
            getattr(self.lib, "rinnovo_Card_saveCert" + end).argtypes = [text] * 4 + [flag]
        self.message = (ctypes.c_char * MESSAGE_SIZE).in_dll(self.lib, "szBuffErr")
        self.machinery = (ctypes.c_char * MESSAGE_SIZE).in_dll(self.lib, "szSockMsg")
        self.messages = (ctypes.c_char * MESSAGE_SIZE * MESSAGES).in_dll(self.lib, "errorMessages")
        self.lib.loadErrorCodes()  # or the texts of PKCS#11 results stay empty

    def call(self, name, *arguments):
        """Calls and raises what went wrong, in whatever words there are."""
        self.machinery.value = b""  # else it may be about an earlier failure
        result = getattr(self.lib, "rinnovo_Card_" + name)(*arguments)
        if result:
            of_result = self.messages[result].value if 0 <= result < MESSAGES else b""
            words = (self.message.value, self.machinery.value, of_result)
            sys.exit("\n".join([f"{name}: {result}"] + [text.decode("utf-8", "replace") for text in words]))


class Card:
    """What a reading gives: also what requests and installing need right before."""

    def __init__(self, library, pin, modules):
        self.texts = [[ctypes.create_string_buffer(LIST_ENTRY_SIZE) for _ in range(LIST_ENTRIES)] for _ in KINDS]
        lists = [(ctypes.c_char_p * LIST_ENTRIES)(*map(ctypes.addressof, texts)) for texts in self.texts]
        waits = [ctypes.c_int() for _ in KINDS]
        keys = [ctypes.create_string_buffer(KEY_ID_SIZE) for _ in KINDS]
        library.call("readCerts", None, pin, 0, lists[SERVICES], lists[SIGNATURE], lists[AUTHENTICATION],
                     waits[SERVICES], waits[SIGNATURE], waits[AUTHENTICATION], keys[SIGNATURE], keys[AUTHENTICATION],
                     None, modules)
        self.pending = [bool(wait.value) for wait in waits]
        self.pair = [keys[SIGNATURE].value, keys[AUTHENTICATION].value, b"CNS0"]

    def subject(self, kind, identifier):
        """The subject of the only certificate with that identifier; none when there is none, or more than one."""
        records = [RECORD.match(entry.value) for entry in self.texts[kind][1:]]
        subjects = [record[1] for record in records if record and record[2] == identifier]
        return subjects[0] if len(subjects) == 1 else None


def make_log_folder():
    """The library logs to a folder that it does not make, below the home folder of the user database."""
    os.makedirs(os.path.join(pwd.getpwuid(os.getuid()).pw_dir, ".trevallo"), mode=0o700, exist_ok=True)


def ask_pin():
    """A PIN in a buffer that can be wiped. Python keeps copies of what it reads: a desktop host takes it from C."""
    line = sys.stdin.buffer.readline().rstrip(b"\n")
    if not 1 <= len(line) <= PIN_MAX or line.endswith(b" "):
        sys.exit("A PIN has 1 to 31 characters and no blank at its end.")
    return ctypes.create_string_buffer(line, PIN_MAX + 1)


def ask_authority(program, request):
    """Hands the request over. No session is open meanwhile: each call opens and closes its own."""
    with open("request.b64", "wb") as file:
        file.write(request)
    subprocess.run([program, "request.b64", "certificate.pem"], check=True)
    with open("certificate.pem", "rb") as file:
        certificate = file.read()
    if not 0 < len(certificate) <= CERT_TEXT_MAX:
        sys.exit("The certificate is empty, or too long.")
    return certificate


def renew(library, pin, modules, authority, identifier, keep_old):
    kind = SERVICES if identifier == b"CNS0" else SIGNATURE if identifier.startswith(b"DS") else AUTHENTICATION
    end = "PRA" if kind == SIGNATURE else "AUT"
    card = Card(library, pin, modules)  # proves the PIN: one that is refused ends here, and costs one try
    subject, pair = card.subject(kind, identifier), card.pair[kind]
    if subject is None or len(subject) >= RECORD_NAME_SIZE - 1:
        sys.exit("The card does not hold exactly one certificate of that identifier, or its subject came cut.")
    if kind != SERVICES and not re.search(rb"[345]", pair):
        sys.exit("No identifier is free for new keys.")
    print("Renewing", identifier.decode(), "with the keys", pair.decode(),
          "which wait already" if card.pending[kind] else "", flush=True)

    request = ctypes.create_string_buffer(REQUEST_SIZE)
    # False: a pair that waits already is used again; true would discard it.
    library.call("createCertRequest" + end, request, pair, pin, identifier, subject, False)
    if len(request.value) == REQUEST_SIZE - 1:
        sys.exit("The request came cut.")
    certificate = ask_authority(authority, request.value)

    # Much may have happened since: is it the same card, and does the pair still wait?
    card = Card(library, pin, modules)
    if not card.pending[kind] or card.pair[kind] != pair:
        sys.exit("The pair does not wait on this card.")
    old = ctypes.create_string_buffer(identifier, LABEL_SIZE)  # the library writes into it
    library.call("saveCert" + end, pin, old, pair, certificate, keep_old)

    card = Card(library, pin, modules)
    if card.pending[kind] or card.subject(kind, pair) is None:
        sys.exit("The certificate is not on the card.")
    if not keep_old and kind != SERVICES and card.subject(kind, identifier) is not None:
        sys.exit("The old certificate is still on the card.")
    print(pair.decode(), "is on the card with its keys" + ("" if keep_old else "; the old certificate is not"))


def main(library, modules, authority, identifier, remove=""):
    if len(modules) > MODULE_DIR_MAX or len(identifier) > ID_MAX or remove not in ("", "remove"):
        sys.exit(2)
    make_log_folder()
    pin = ask_pin()
    try:
        renew(Library(library), pin, os.fsencode(modules), authority, identifier.encode(), not remove)
    finally:
        ctypes.memset(pin, 0, len(pin))


main(*sys.argv[1:])
