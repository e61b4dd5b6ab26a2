"""What disturbs a renewal in the window: page by page, and call by call of the card's module."""
from walk import OLD, SweepDesk

PAGES = ("start", "consent", "request", "consent-install", "done")
# A few calls of each function, for a quick sweep.
SAMPLE = {"C_Login": (1, 2, 4), "C_GenerateKeyPair": (1,), "C_SignInit": (1,), "C_Sign": (1, 2, 3), "C_CreateObject": (1,),
          "C_DestroyObject": (1, 2, 3), "C_FindObjectsInit": (3, 8, 14), "C_GetAttributeValue": (20, 60, 120),
          "C_OpenSession": (3, 8)}
SERVICES_SAMPLE = {"C_Login": (1, 2, 4), "C_Sign": (1, 2), "C_CreateObject": (1, 2), "C_DestroyObject": (1,)}
DEEDS = {"killed before a call": "kill-before", "killed after a call": "kill-after", "call not done, 0x30": "answer:0x30",
         "call done, 0x30": "do-and-answer:0x30", "card pulled at a call": "take-out", "card swapped at a call": "swap"}
# What goes from the reader, and what the start page says then.
AWAY = {"card pulled": (SweepDesk.eject, "window-no-card-heading"), "card swapped": (SweepDesk.swap, "list-card"),
        # the service of readers may run here or not
        "reader gone": (SweepDesk.take_reader, "window-no-reader-heading", "window-unlisted-heading",
                        "window-trouble-heading")}
# What the authority sends first.
ANSWERS = {"someone else's": "--other-person VRDBBB80A41Z999U", "expired": "--starts-in -400 --days 30",
           "another kind's": "--kind {another}", "garbage": None}
ANOTHER = {"signature": "authentication", "services": "signature"}
WRONG = ["11111117", "22222227", "33333337"]
# The PINs that are typed first, how many tries are left, and what is shown meanwhile.
PINS = {"1 wrong": (WRONG[:1], 3, ""), "2 wrong": (WRONG[:2], 3, "consent (last try)"), "3 wrong": (WRONG, 3, "consent (locked)"),
        "right on the last try": ([], 1, "consent (last try)"), "wrong on the last try": (WRONG[:1], 1, "consent (locked)"),
        "locked already": ([], 0, "consent (locked)")}


def away(page, name):
    do, *sentences = AWAY[name]

    def deed(walk):
        do(walk.desk)
        if page in ("request", "done"):
            return  # which want no card
        if page == "problem":
            walk.window.press("window-try-again")
        walk.window.wait_for("start")
        serial = {"serial": walk.desk.setting("serial", "other")} if name == "card swapped" else {}
        walk.window.until(lambda: any(walk.window.says(one, **serial) for one in sentences), " or ".join(sentences))
    return {"at": (page, deed), "other": name == "card swapped", "pins": WRONG[:1] if page == "problem" else []}


def other_answer(walk, arguments):
    def make():
        file = walk.desk.place / "other.pem"
        if arguments is None:
            file.write_text("This is no certificate.\n")
        else:
            walk.desk.issue(file, arguments.format(another=ANOTHER[walk.kind]))
        return file
    walk.certificates.append(make)


def lose_request(walk):
    next(walk.desk.work().glob("request-*")).unlink()
    walk.window.kill()


def at_page(page, deed, **more):
    return {"at": (page, deed), **more}


def of_pages():
    for page in PAGES:
        yield f"killed on a page: {page}", at_page(page, lambda walk: walk.window.kill())
    for name in AWAY:
        for page in (*PAGES, "problem"):
            yield f"{name} on a page: {page}", away(page, name)
    for name, arguments in ANSWERS.items():
        yield f"certificate: {name}", {"prepare": lambda walk, arguments=arguments: other_answer(walk, arguments),
                                       "shows": "problem"}
    yield "request's file gone", at_page("request", lose_request)


def of_pins():
    for name, (pins, tries, shows) in PINS.items():
        yield f"PIN: {name}", {"pins": pins, "tries": tries, "shows": shows or "problem"}
    yield "PIN: wrong for the certificate", at_page("consent-install", lambda walk: walk.pin_list.append(WRONG[0]), shows="problem")


def of_folders():
    for folder in ("work", "home"):
        for name, deed in {"full": SweepDesk.fill, "read-only": SweepDesk.lock_folder}.items():
            for page in ("consent", "consent-install"):
                yield f"folder {name}: {folder}, {page}", at_page(
                    page, lambda walk, deed=deed: deed(walk.desk), small=folder, shows="problem" if folder == "work" else "")


def of_calls(numbers):
    for function, chosen in numbers.items():
        for number in chosen:
            for name, deed in DEEDS.items():
                call = f"{function}:{number}:"
                rules = call + deed if deed != "swap" else f"{call}take-out:0;{call}put-back:1"
                yield f"{name}: {function}:{number}", {"rules": rules, "other": deed == "swap"}


def cases(counts=None):
    """By name; `counts` has the calls of an undisturbed walk by kind and function where every call is wanted."""
    found = {}
    for kind, sample in zip(OLD, (SAMPLE, SERVICES_SAMPLE)):
        if counts:
            sample = {function: range(1, number + 1) for function, number in counts[kind].items()}
        for name, case in (("undisturbed", {}), *of_pages(), *of_pins(), *of_folders(), *of_calls(sample)):
            found[f"{kind}, {name}"] = {"kind": kind, **case}
    return found
