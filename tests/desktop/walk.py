"""A renewal by the window's first buttons, whatever disturbs it, and what has to be so on the way and in the end."""
import hashlib
import re
import signal
import subprocess
import time

from drive import AUTHORITY, PROGRAM, Desk, Failed

PIN = "70391648"
OTHER_PIN = "11502294"
MOST_PAGES = 60
PROFILES = {"signature": "signature", "services": "cns"}
OLD = {"signature": "DS0", "services": "CNS0"}  # the certificate that is renewed


class SweepDesk(Desk):
    """A desk where another card may come into the reader, the reader may go, and a folder may be full."""

    def __init__(self, scratch, build):
        super().__init__(scratch, build, PIN)
        self.keys = ""  # a pair that was discarded would be handed out as the new one
        self.mounted = []

    def begin(self, kind, other=False):
        self.enter("case")
        self.make_card(PROFILES[kind])
        if other:
            self.eject()
            self.tool(f"create --profile {PROFILES[kind]} --name other --days 400 --cns-days 400 --pin {OTHER_PIN} "
                      f"--keys {self.build}/test_keys.pem")
            self.tool("eject other")
            self.tool("insert card")
        self.readers = (self.place / "zvcrypt.conf").read_text()
        self.others = self.other_card()

    def other_card(self):
        """What no renewal has a reason to change."""
        folder = self.place / "cards/other"
        if not folder.exists():
            return None
        data = [file.read_bytes() for file in sorted(folder.glob("*.object")) if file.name != "token.object"]
        return hashlib.sha256(b"|".join(data)).digest(), self.setting("pin_tries_left", "other")

    def setting(self, key, card="card"):
        return re.search(rf"^{key} *= *(\S+)", (self.place / f"cards/{card}/card.ini").read_text(), re.M).group(1)

    def set(self, key, value):
        file = self.place / "cards/card/card.ini"
        file.write_text(re.sub(rf"^{key} *=.*$", f"{key} = {value}", file.read_text(), flags=re.M))

    def tries(self):
        return int(self.setting("pin_tries_left"))

    def eject(self):
        self.tool("eject card")

    def swap(self):
        self.eject()
        self.tool("insert other")

    def is_away(self):
        return self.setting("inserted") == "no"

    def take_reader(self):
        (self.place / "zvcrypt.conf").write_text("")

    def put_back(self):
        """The card in its reader, and room in the folders."""
        if (self.place / "zvcrypt.conf").read_text() != self.readers:
            (self.place / "zvcrypt.conf").write_text(self.readers)
        for folder in self.mounted:
            self.mount("-o", "remount,rw", folder)
            (folder / "filler").unlink(missing_ok=True)
        if self.others and self.setting("inserted", "other") == "yes":
            time.sleep(2)  # nobody is so quick that a window which looks once a second does not see it
            self.tool("eject other")
        super().put_back()

    @staticmethod
    def mount(*arguments):
        subprocess.run(["mount", *arguments], check=True)

    def make_small(self, name):
        """Makes a folder one that can be full, or be written to no more."""
        folder = self.place / name
        self.mount("-t", "tmpfs", "-o", "size=256k", "tmpfs", folder)
        self.mounted.append(folder)

    def fill(self):
        for folder in self.mounted:
            try:
                with open(folder / "filler", "wb", 0) as filler:
                    while filler.write(bytes(4096)):
                        pass
            except OSError:
                pass  # it is full

    def lock_folder(self):
        for folder in self.mounted:
            self.mount("-o", "remount,ro", folder)

    def issue(self, file, arguments=""):
        """The authority's certificate for the last request."""
        request = max(self.work().glob("request-*"), key=lambda one: one.stat().st_mtime)
        self.tool(f"issue {request} --out {file} {arguments}")

    def ended_with(self):
        return self.windows[-1].process.poll()

    def close(self):
        super().close()
        self.windows.clear()
        for folder in self.mounted:
            subprocess.run(["umount", "-l", folder], check=True)
        self.mounted.clear()


class Spent(Failed):
    """A login or a PIN try that nobody had a reason for."""


class Logins:
    """That none comes before a PIN is given, and what those cost that are given."""

    def __init__(self, desk, most):
        self.desk, self.most = desk, most  # how many a page takes when nothing is disturbed; none: not known yet
        self.counted = {}  # by page, the most of them
        self.known, self.answers, self.of_answer = 0, "", 0

    def opened(self):
        self.known = 0

    def now(self):
        """Those of this process; where somebody is logged in already, the PIN is not looked at."""
        trace = self.desk.trace()
        lines = trace.read_text(errors="replace").splitlines() if trace.exists() else ()
        return sum(line.startswith("C_Login ") and not line.endswith("-> 0x100") for line in lines)

    def look(self):
        now = self.now()
        if now != self.known:
            raise Spent(f"{now - self.known} logins though no PIN was given")

    def answered(self, page, wrong, more, tries):
        """Behind a page that was answered; `tries` were left before."""
        now = self.now()
        spent, self.known = now - self.known, now
        if more:  # the same PIN
            page, spent_before = self.answers, self.of_answer
        else:
            self.answers, spent_before = page, 0
        self.of_answer = spent_before + spent
        self.counted[page] = max(self.counted.get(page, 0), self.of_answer)
        if wrong and (spent > 1 or self.desk.tries() < tries - 1):
            raise Spent(f"{spent} logins and {tries - self.desk.tries()} tries for a wrong PIN")
        if not wrong and self.desk.tries() < tries:
            raise Spent(f"{tries - self.desk.tries()} tries for the right PIN")
        if self.most and self.of_answer > self.most[page] + 2:  # where one fails, the card is looked at and tidied up
            raise Spent(f"{self.of_answer} logins for the page {page}, which takes {self.most[page]}")


class Walk:
    """To its end, from the start, as often as it takes."""

    def __init__(self, desk, kind="signature", rules="", most=None):
        self.desk, self.kind = desk, kind
        self.passed, self.met = [], None
        self.at_page = {}  # what is done when a page is shown, once
        self.certificates, self.pin_list = [], []
        self.before = desk.objects()
        self.logins = Logins(desk, most)
        self.rules, self.window = rules, None

    def count(self):
        """Whether the call came that was to be disturbed, in the process that was."""
        if self.rules and self.met is None:
            function, number = self.rules.split(":")[:2]
            self.met = self.desk.calls(function) >= int(number)

    def reopen(self):
        self.count()
        self.desk.put_back()
        self.desk.windows[-1].end()
        self.window = self.desk.open()
        self.logins.opened()
        self.passed.append("opened again")

    def to_end(self):
        while len(self.passed) < MOST_PAGES:
            try:
                self.window = self.window or self.desk.open(rules=self.rules)
                if self.one_page():
                    return self.count()
            except Failed as problem:
                if isinstance(problem, Spent):
                    raise
                if self.desk.ended_with() == -signal.SIGKILL:
                    self.passed.append("killed")
                    self.reopen()
                elif not (self.desk.is_away() and self.window.page() == "start"):  # where the page goes with the card
                    raise
        raise Failed("it leads nowhere: " + ", ".join(self.passed))

    def one_page(self):
        page = self.window.wait_for("start", "consent", "request", "done", "problem")
        name = page + ("-install" if page == "consent" and self.window.look_for("check box", "window-remove-old") else "")
        self.passed.append(name)
        self.logins.look()
        if deed := self.at_page.pop(name, None):
            deed(self)
            return False
        return getattr(self, page)()

    def leave(self, page, sentence, **values):
        """Presses a button and waits until the page is another."""
        self.window.press(sentence, **values)
        self.window.until(lambda: self.window.page() not in (page, "looking", "work", ""), "page after " + page)

    def start(self):
        def button():
            self.desk.put_back()
            if again := self.window.look_for("push button", "window-try-again"):
                return again
            for sentence in ("window-take-certificate", "window-finish-renewal", "window-renew"):
                if found := self.window.look_for("push button", sentence, kind=self.kind):
                    return found
            new = [one for one in self.desk.objects() if one[0] == "certificate" and one not in self.before]
            return "none" if new and self.window.says("window-card-heading") else None
        found = self.window.until(button, "button that leads on")
        if found == "none":
            return True
        self.passed[-1] += f" ({found.name})"
        found.press()
        # where the card is another now, or still cannot be read, the start page stays
        self.window.until(lambda: self.window.page() not in ("looking", "work", "") and
                          not self.window.first(lambda part: part.path == found.path), "page after start")
        return False

    def consent(self):
        page, tries = self.passed[-1], self.desk.tries()
        more = self.window.says("window-more-heading")
        wrong = False
        if field := self.window.look_for("password text", "window-pin"):
            if "sensitive" not in field.states:
                return self.locked()
            wrong = self.give_pin()
        try:
            self.window.press("window-go-on")
            self.window.until(lambda: self.window.page() not in ("consent", "looking", "work", "") or
                              not more and self.window.says("window-more-heading"), "page after consent")
        finally:
            self.logins.answered(page, wrong, more, tries)
        return False

    def give_pin(self):
        """Types the next PIN, with all ticks; says whether it is a wrong one."""
        if (box := self.window.look_for("check box", "window-remove-old")) and "checked" not in box.states:
            self.window.tick("window-remove-old")
        self.window.activate()
        def take_focus():
            field = self.window.look_for("password text", "window-pin")
            return field.take_focus() or "taken" if field else self.window.page()
        if self.window.until(take_focus, "field for the PIN") != "taken":
            raise Failed("the page went before its PIN was given")
        pin = self.pin_list.pop(0) if self.pin_list else PIN
        self.window.type_pin(pin)
        if box := self.window.look_for("check box", "window-final-try"):
            self.passed[-1] += " (last try)"
            if "sensitive" in self.window.find("push button", "window-go-on").states:
                raise Failed("the last try wants no tick")
            self.window.tick("window-final-try")
        return pin != PIN

    def locked(self):
        """Somebody unlocks the card meanwhile."""
        self.passed[-1] += " (locked)"
        if not self.window.says("unlock-first") or \
                "sensitive" in self.window.find("push button", "window-go-on").states:
            raise Failed(f"a locked PIN is asked for:\n{self.window.told()}")
        self.desk.set("pin_tries_left", self.desk.setting("pin_tries_max"))
        self.leave("consent", "window-back")
        return False

    def request(self):
        if again := self.window.look_for("push button", "window-request-again"):
            again.press()
            self.window.wait_for("consent", "problem")
            return False
        if self.certificates:
            file = self.certificates.pop(0)()
        else:
            file = self.desk.place / "certificate.pem"
            if not file.exists():
                self.desk.issue(file)
        self.window.press("window-choose-certificate")
        self.window.choose_file(file)
        self.window.until(lambda: self.window.page() in ("consent", "problem") or self.window.says("insert-same-card"),
                          "page after the certificate")
        self.desk.put_back()
        self.window.wait_for("consent", "problem", "start")
        return False

    def problem(self):
        self.desk.put_back()
        parts = self.window.parts()
        if len([part for part in parts if part.role == "label" and part.name]) < 2:
            raise Failed(f"the page does not say what happened:\n{self.window.told()}")
        first = next(part for part in parts if part.role == "push button")
        if (self.desk.place / "other.pem").exists():
            first = self.window.look_for("push button", "window-other-certificate") or first
            (self.desk.place / "other.pem").unlink()
        self.passed[-1] += f" ({first.name})"
        first.press()
        self.window.until(lambda: self.window.page() != "problem", "page after the problem")
        return False

    def done(self):
        self.leave("done", "window-finish")
        return False


def places(objects):
    """What there is, those of the authority excepted, which do no harm where they are."""
    return sorted([one[0], one[1]] for one in objects if one[1] != AUTHORITY)


def judge(walk, end):
    """What is wrong at the end; empty when nothing is. `end` has the places that an undisturbed renewal leaves."""
    desk, before, after = walk.desk, walk.before, walk.desk.objects()
    new = [one for one in after if one not in before and one[0] == "certificate" and one[1] != AUTHORITY]
    if len(new) != 1 or not new[0][3]:
        return f"new certificates: {new}"
    if gone := {one[1] for one in before if one not in after} - {OLD[walk.kind]}:
        return f"gone: {gone}"
    if broken := [one[:2] for one in after if not one[3] and one[1] != AUTHORITY]:
        return f"works no longer: {broken}"
    if end and (more := PROGRAM.less(places(after), end)):
        return f"left over: {more}"
    lost = {one[2] for one in before if one not in after and one[0] == "certificate"} - desk.backups()
    if lost:
        return "the old certificate is in no backup"
    if desk.setting("pin_tries_left") != desk.setting("pin_tries_max"):
        return "a PIN try was spent"
    if desk.other_card() != desk.others:
        return "the other card is not as it was"
    return ""
