"""Drives zvrenew-desktop from outside: what it shows is read from the accessibility tree, as a screen reader reads it, and
keys come from the X server, as a keyboard's do. Wants tests/desktop/screen around it, and the Python of the system that
has the package python3-gi."""
import ctypes
import os
import re
import signal
import subprocess
import time
from functools import cached_property
from importlib.machinery import SourceFileLoader
from importlib.util import module_from_spec, spec_from_loader
from pathlib import Path

from gi.repository import Gio, GLib

ROOT = Path(__file__).resolve().parents[2]
LIMIT = int(os.environ.get("LIMIT", 60))  # seconds that anything may take, on a machine with much else to do
KINDS = ("signature", "authentication", "services")
# Headings, and of which page they are.
PAGES = {"window-looking-heading": "looking", "window-card-heading": "start", "window-no-card-heading": "start",
         "window-no-reader-heading": "start", "window-trouble-heading": "start", "window-unlisted-heading": "start",
         "window-renew-heading": "consent", "window-install-heading": "consent", "window-finish-renewal": "consent",
         "window-more-heading": "consent", "window-work-heading": "work", "window-waits-heading": "request",
         "window-done-heading": "done", "window-problem-heading": "problem"}


def sweep_program():
    """The sweep of the program in the terminal, whose bench and view of a card past everything are used here."""
    loader = SourceFileLoader("sweep_program", str(ROOT / "tests/sweeps/program"))
    module = module_from_spec(spec_from_loader("sweep_program", loader))
    loader.exec_module(module)
    module.own_tmp = False
    return module


PROGRAM = sweep_program()
AUTHORITY = PROGRAM.AUTHORITY  # whose certificate on a card has no keys there


class Failed(Exception):
    """The window does not do what it should."""


class Words:
    """The window's sentences by their identifiers, in a language."""

    def __init__(self, language):
        self.language = language
        self.english = {}
        for file in sorted((ROOT / "words/english").glob("*.cpp")):
            for name, text in re.findall(r'\{"([a-z0-9@-]+)",\s*N_\(((?:"(?:[^"\\]|\\.)*"\s*)+)\)\}', file.read_text()):
                self.english[name] = joined(text)
        self.italian = {}
        for file in sorted((ROOT / "words/it").glob("*.po")):
            for english, text in re.findall(r'^msgid ((?:"(?:[^"\\]|\\.)*"\s*)+)msgstr ((?:"(?:[^"\\]|\\.)*"\s*)+)',
                                            file.read_text(), re.M):
                self.italian[joined(english)] = joined(text)

    def text(self, name):
        text = self.english.get(name + "@window") or self.english[name]
        return self.italian[text] if self.language == "it" else text

    def pattern(self, name, **values):
        """What a widget with that sentence is called, whatever values are not given."""
        text = re.sub("&(.)", r"\1", self.text(name))
        pieces = re.split(r"\{([a-z_]+)\}", text)
        for place in range(1, len(pieces), 2):
            given = values.get(pieces[place])
            pieces[place] = "(?s:.*)" if given is None else re.escape(given)
        return re.compile("".join(piece if n % 2 else re.escape(piece) for n, piece in enumerate(pieces)))

    def letter(self, name):
        """The letter that goes with Alt."""
        found = re.search("&(.)", self.text(name))
        return found.group(1).lower() if found else None


def joined(literals):
    pieces = re.findall(r'"((?:[^"\\]|\\.)*)"', literals)
    return "".join(pieces).replace('\\"', '"').replace("\\n", "\n").replace("\\\\", "\\")


class Keyboard:
    """Keys of the X server's keyboard, and who owns its clipboards."""
    NAMED = {"Tab": 0xFF09, "Return": 0xFF0D, "Escape": 0xFF1B, "Shift": 0xFFE1, "Control": 0xFFE3, "Alt": 0xFFE9,
             "BackSpace": 0xFF08, "Down": 0xFF54, "Insert": 0xFF63, "space": 0x20}

    # A window that has just gone.
    NO_MATTER = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)(lambda display, error: 0)

    class Facts(ctypes.Structure):
        """XWindowAttributes"""
        _fields_ = [(name, ctypes.c_int) for name in ("x", "y", "width", "height", "border", "depth")] + \
            [("visual", ctypes.c_void_p), ("root", ctypes.c_ulong)] + \
            [(name, ctypes.c_int) for name in ("kind", "bit_gravity", "win_gravity", "backing")] + \
            [("planes", ctypes.c_ulong), ("pixel", ctypes.c_ulong), ("save_under", ctypes.c_int),
             ("colormap", ctypes.c_ulong), ("colormap_there", ctypes.c_int), ("map_state", ctypes.c_int),
             ("rest", ctypes.c_ulong * 8)]

    def __init__(self):
        self.x, self.test = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXtst.so.6")
        self.x.XOpenDisplay.restype = ctypes.c_void_p
        self.x.XSetErrorHandler(self.NO_MATTER)
        for function in ("XKeycodeToKeysym", "XInternAtom", "XGetSelectionOwner", "XDefaultRootWindow"):
            getattr(self.x, function).restype = ctypes.c_ulong
        self.x.XKeysymToKeycode.restype = ctypes.c_ubyte
        self.display = ctypes.c_void_p(self.x.XOpenDisplay(None))
        if not self.display:
            raise Failed("there is no screen")

    def key(self, what, down):
        code = self.x.XKeysymToKeycode(self.display, ctypes.c_ulong(self.NAMED.get(what) or ord(what)))
        self.test.XTestFakeKeyEvent(self.display, ctypes.c_uint(code), int(down), ctypes.c_ulong(0))

    def press(self, keys):
        """"Tab", "Shift+Tab", "Alt+c", "a"."""
        names = keys.split("+")
        for name in names:
            self.key(name, True)
        for name in reversed(names):
            self.key(name, False)
        self.x.XSync(self.display, 0)

    def type(self, text):
        for letter in text:
            code = self.x.XKeysymToKeycode(self.display, ctypes.c_ulong(ord(letter)))
            plain = self.x.XKeycodeToKeysym(self.display, code, 0) == ord(letter)
            self.press(letter if plain else "Shift+" + letter)

    def focus_on_top(self):
        """Gives the keyboard to the uppermost window, as a desktop does when it comes."""
        root = ctypes.c_ulong(self.x.XDefaultRootWindow(self.display))
        one, other, children, count = ctypes.c_ulong(), ctypes.c_ulong(), ctypes.POINTER(ctypes.c_ulong)(), ctypes.c_uint()
        self.x.XQueryTree(self.display, root, ctypes.byref(one), ctypes.byref(other), ctypes.byref(children),
                          ctypes.byref(count))
        for window in reversed(children[:count.value]):
            facts = self.Facts()
            if self.x.XGetWindowAttributes(self.display, ctypes.c_ulong(window), ctypes.byref(facts)) and \
                    facts.map_state == 2 and facts.width > 1:
                self.x.XSetInputFocus(self.display, ctypes.c_ulong(window), 2, ctypes.c_ulong(0))
                break
        self.x.XFree(children)
        self.x.XSync(self.display, 0)

    def clipboards_owned(self):
        """The names of those that some program has put something into."""
        owned = []
        for name in ("PRIMARY", "CLIPBOARD", "SECONDARY"):
            atom = self.x.XInternAtom(self.display, name.encode(), 0)
            if self.x.XGetSelectionOwner(self.display, ctypes.c_ulong(atom)):
                owned.append(name)
        return owned


class Bus:
    """The accessibility bus of the session."""

    def __init__(self):
        session = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        address = session.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None,
                                    GLib.VariantType("(s)"), 0, LIMIT * 1000, None).unpack()[0]
        flags = Gio.DBusConnectionFlags
        self.connection = Gio.DBusConnection.new_for_address_sync(
            address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)

    def call(self, name, path, interface, method, arguments=None):
        result = self.connection.call_sync(name, path, interface, method, arguments, None, 0, LIMIT * 1000, None)
        return result.unpack()

    def of_process(self, pid):
        """The name of a process's connection; None as long as it has none."""
        bus = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")
        for name in self.call(*bus, "ListNames")[0]:
            try:
                if name.startswith(":") and \
                        self.call(*bus, "GetConnectionUnixProcessID", GLib.Variant("(s)", (name,)))[0] == pid:
                    return name
            except GLib.Error:
                pass  # it has just gone
        return None


ACCESSIBLE = "org.a11y.atspi.Accessible"
# As the tree counts them.
ROLES = {2: "alert", 7: "check box", 11: "combo box", 16: "dialog", 19: "file chooser", 20: "filler", 23: "frame", 26: "icon",
         27: "image", 29: "label", 30: "layered pane", 31: "list", 32: "list item", 39: "panel", 40: "password text",
         42: "progress bar", 43: "push button", 48: "scroll bar", 49: "scroll pane", 61: "text", 62: "toggle button",
         68: "viewport", 69: "window", 75: "application", 83: "heading"}
STATES = {1: "active", 4: "checked", 7: "editable", 8: "enabled", 11: "focusable", 12: "focused", 24: "sensitive", 25: "showing",
          30: "visible"}


class Part:
    """A widget, as a screen reader has it; what nobody wants to know of it is not asked for."""

    def __init__(self, window, path):
        self.window, self.path = window, path

    @cached_property
    def states(self):
        low, high = self.call("GetState")[0]
        return {name for bit, name in STATES.items() if (low | high << 32) >> bit & 1}

    @cached_property
    def role(self):
        number = self.call("GetRole")[0]
        return ROLES.get(number, f"role {number}")

    @cached_property
    def name(self):
        return self.property("Name")

    @cached_property
    def description(self):
        return self.property("Description")

    def whole(self):
        """With all that is shown of it read now."""
        return str(self) and self

    def call(self, method, arguments=None, interface=ACCESSIBLE):
        return self.window.bus.call(self.window.name, self.path, interface, method, arguments)

    def property(self, name, interface=ACCESSIBLE):
        return self.call("Get", GLib.Variant("(ss)", (interface, name)), "org.freedesktop.DBus.Properties")[0]

    def children(self):
        return [path for _, path in self.call("GetChildren")[0]]

    def text(self):
        return self.call("GetText", GLib.Variant("(ii)", (0, -1)), "org.a11y.atspi.Text")[0]

    def set_text(self, text):
        self.call("SetTextContents", GLib.Variant("(s)", (text,)), "org.a11y.atspi.EditableText")

    def press(self):
        names = [name for name, _, _ in self.call("GetActions", None, "org.a11y.atspi.Action")[0]]
        wanted = [n for n, name in enumerate(names) if name.lower() in ("press", "toggle")]
        if not wanted:
            raise Failed(f"{self} cannot be pressed: {names}")
        self.call("DoAction", GLib.Variant("(i)", (wanted[0],)), "org.a11y.atspi.Action")

    def take_focus(self):
        self.call("GrabFocus", None, "org.a11y.atspi.Component")

    def __str__(self):
        return f"{self.role} \"{self.name}\"" + (f" ({self.description})" if self.description else "") + \
            ("" if "sensitive" in self.states else " [off]") + (" [checked]" if "checked" in self.states else "") + \
            (" [focused]" if "focused" in self.states else "")


class Window:
    """The program, at work."""

    def __init__(self, bus, keyboard, command, environment, folder, language="en"):
        self.bus, self.keyboard, self.words, self.name = bus, keyboard, Words(language), None
        self.errors = folder / "stderr"
        with self.errors.open("ab") as errors:
            self.process = subprocess.Popen([*map(str, command), "--lang", language], env=environment, cwd=folder,
                                            stdin=subprocess.DEVNULL, stdout=errors, stderr=errors)

    def is_there(self):
        self.name = self.bus.of_process(self.process.pid)
        return self.name is not None

    def until(self, condition, what):
        """Waits until the condition holds; gives what it gave."""
        end = time.monotonic() + LIMIT
        while time.monotonic() < end:
            if self.process.poll() is not None:
                raise Failed(f"the program ended with {self.process.returncode} before there was {what}:\n" +
                             self.errors.read_text(errors="replace"))
            try:
                if found := condition():
                    return found
            except GLib.Error:
                pass  # what was read has just changed
            time.sleep(0.01)
        raise Failed(f"there is no {what}; the window says:\n{self.told()}")

    def root(self):
        return Part(self, "/org/a11y/atspi/accessible/root")

    def parts(self):
        """What is shown, from the top; of several windows the uppermost."""
        return self.steadily(lambda: [part.whole() for part in self.shown()])

    def first(self, fits):
        """The uppermost that fits; None where there is none."""
        return self.steadily(lambda: next((part.whole() for part in self.shown() if fits(part)), None))

    def steadily(self, read):
        """Reads again where what is read has just changed."""
        while True:
            try:
                return read()
            except GLib.Error as error:
                if self.process.poll() is not None:
                    raise Failed(f"the program ended with {self.process.returncode}") from error
                time.sleep(0.01)

    def shown(self):
        windows = [Part(self, path) for path in self.root().children()]
        shown = [window for window in windows if "showing" in window.states]
        yield from self.below(shown[-1]) if shown else ()

    def below(self, part):
        yield part
        for path in part.children():
            child = Part(self, path)
            if "showing" in child.states:
                yield from self.below(child)

    def told(self):
        try:
            return "\n".join(str(part) for part in self.parts() if part.name)
        except GLib.Error as error:
            return str(error)

    def look_for(self, role, sentence, **values):
        """The widget with that role and that sentence as its name; None where there is none."""
        pattern = self.words.pattern(sentence, **values)
        roles = (role, {"password text": "text"}.get(role))
        return self.first(lambda part: part.role in roles and pattern.fullmatch(part.name))

    def find(self, role, sentence, **values):
        return self.until(lambda: self.look_for(role, sentence, **values), f"{role} \"{sentence}\"")

    def says(self, sentence, **values):
        pattern = self.words.pattern(sentence, **values)
        return self.first(lambda part: pattern.search(part.name)) is not None

    def page(self):
        """Which page is shown: its first label is its heading."""
        heading = self.first(lambda part: part.role in ("label", "heading"))
        return next((page for sentence, page in PAGES.items()
                     if heading and self.words.pattern(sentence).fullmatch(heading.name)), "")

    def wait_for(self, *pages):
        return self.until(lambda: next((page for page in (self.page(),) if page in pages), None),
                          "page " + " or ".join(pages))

    def press(self, sentence, role="push button", **values):
        """Presses a button or ticks a box, as a screen reader does."""
        def able():
            part = self.look_for(role, sentence, **values)
            return part if part and "sensitive" in part.states else None
        part = self.until(able, f"{role} \"{sentence}\" that can be pressed")
        self.until(lambda: (part.press(), True)[1], "press")

    def tick(self, sentence):
        self.press(sentence, "check box")

    def activate(self):
        """Gives the uppermost window the keyboard, as a desktop does when it comes."""
        def active():
            if (frame := self.first(lambda part: True)) and "active" in frame.states:
                return True
            self.keyboard.focus_on_top()
            return False
        self.until(active, "active window")

    def focused(self):
        return self.first(lambda part: "focused" in part.states)

    def keys(self, *keys):
        self.activate()
        for key in keys:
            self.keyboard.press(key)

    def tab_to(self, sentence, role="push button", **values):
        """Goes there with Tab alone."""
        pattern = self.words.pattern(sentence, **values)
        passed = []
        self.activate()
        for _ in range(40):
            now = self.until(self.focused, "focus")
            if now.role == role and pattern.fullmatch(now.name):
                return
            passed.append(str(now))
            self.keyboard.press("Tab")
            self.until(lambda: (after := self.focused()) and after.path != now.path, "focus that Tab moves")
        raise Failed(f"Tab does not come to {role} \"{sentence}\":\n" + "\n".join(passed))

    def type_pin(self, pin):
        """Types into the field for the PIN, which has the keyboard when its page is shown."""
        self.activate()
        field = self.until(self.pin_field, "field for the PIN with the keyboard")
        self.keyboard.type(pin)
        self.until(lambda: field.property("CharacterCount", "org.a11y.atspi.Text") == len(pin), "PIN in the field")

    def pin_field(self):
        field = self.look_for("password text", "window-pin")
        return field if field and "focused" in field.states else None

    def file_entry(self):
        """Where a dialog asks for a file's name."""
        top = self.first(lambda part: True)
        if not top or top.role not in ("dialog", "file chooser"):
            return None
        return self.first(lambda part: part.role == "text" and "editable" in part.states)

    def type_file(self, file):
        """Types a file's name there, which has the keyboard when the dialog comes."""
        self.until(self.file_entry, "dialog that asks for a file")
        self.activate()
        self.until(lambda: "focused" in self.file_entry().states, "field for a file's name with the keyboard")
        self.keyboard.type(str(file))
        self.until(lambda: self.file_entry().text() == str(file), "name of the file")
        self.keyboard.press("Return")
        self.until(lambda: self.file_entry() is None, "end of the dialog")

    def choose_file(self, file):
        """Has a reader put it there, and press the dialog's button."""
        self.until(self.file_entry, "dialog that asks for a file").set_text(str(file))
        def accept():
            return self.first(lambda part: part.role == "push button" and "sensitive" in part.states and
                              part.name in ("Open", "Save", "Choose", "Apri", "Salva", "Scegli"))
        self.until(accept, "button that takes the file").press()
        self.until(lambda: self.file_entry() is None, "end of the dialog")

    def alive(self):
        """Whether it answers."""
        return self.process.poll() is None and bool(self.parts())

    def kill(self):
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()

    def end(self):
        if self.process.poll() is None:
            self.process.terminate()
        try:
            self.process.wait(LIMIT)
        except subprocess.TimeoutExpired:
            self.kill()


class Desk(PROGRAM.Bench):
    """Cards, a home and a folder, with the window before them."""

    def __init__(self, scratch, build, pin):
        super().__init__(scratch, build)
        self.pin = pin
        self.keys = f"{self.build}/test_keys.pem"
        self.bus, self.keyboard = Bus(), Keyboard()
        self.windows = []

    def enter(self, name):
        super().enter(name)
        (self.place / "pin").unlink()

    def make_card(self, profile="signature", days=12, more=""):
        self.tool(f"create --profile {profile} --days {days} --auth-days {days} --cns-days {days} --pin {self.pin} "
                  f"--keys {self.build}/test_keys.pem --config ../zvcrypt.conf {more}")

    def open(self, language="en", rules="", arguments=()):
        """Starts the window and waits until it has seen the card."""
        self.trace().unlink(missing_ok=True)
        own = {"HOME": f"{self.place}/home", "LD_PRELOAD": self.wrapper, "NSS_WRAPPER_PASSWD": f"{self.place}/passwd",
               "NSS_WRAPPER_GROUP": "/etc/group", "ZVSIMCARD_KEYS": self.keys,
               "ZVSIMCARD_TRACE": str(self.trace()), "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
        for name in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "QT_QPA_PLATFORM", "XDG_RUNTIME_DIR"):
            if name in os.environ:
                own[name] = os.environ[name]
        if rules:
            own["ZVSIMCARD_RULES"] = rules
        window = Window(self.bus, self.keyboard,
                        [self.build / "bin/zvrenew-desktop", "--folder", self.work(), *arguments],
                        {**self.environment, **own}, self.place, language)
        self.windows.append(window)
        window.until(window.is_there, "program on the accessibility bus")
        return window

    def work(self):
        return self.place / "work"

    def trace(self):
        return self.place / "trace"

    def calls(self, function):
        """How often a function of the card's module was called since the window was started."""
        text = self.trace().read_text(errors="replace") if self.trace().exists() else ""
        return len(re.findall(rf"^{function} ", text, re.M))

    def answer(self, arguments=""):
        """The authority's certificate for the request in the folder."""
        request = max(self.work().glob("request-*"), key=lambda file: file.stat().st_mtime)
        self.tool(f"issue {request} --out certificate.pem {arguments}")
        return self.work() / "certificate.pem"

    def close(self):
        for window in self.windows:
            window.end()
