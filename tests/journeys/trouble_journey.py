"""What goes wrong around the program: sudden ends, a lost X server or bus, no store, and calls that make no sense."""
import os
import random
import signal
import sqlite3

from gi.repository import GLib

from journey import HOT_KEY, PANEL, POPOVER, Journey, main
from virtual_desktop import await_value

SERVICE = "org.notlet.Notlet"
PATH = "/org/notlet/Notlet"
APPLICATION = "org.freedesktop.Application"
UNAVAILABLE = "Notlet storage is unavailable"


class TroubleJourney(Journey):
    def type_everywhere(self, text):
        """Leaves an unfinished text in popover and panel, which is open then."""
        self.open()
        self.open_popover()
        self.desktop.type(text)
        self.await_text(text, POPOVER)
        self.enter_bubble_mode()
        self.await_gone(POPOVER)
        self.desktop.keys(HOT_KEY)
        self.await_keyboard(PANEL)
        self.desktop.type(text)
        self.await_text(text, PANEL)

    def clear_drafts(self):
        for surface in ("popover", "panel"):
            os.remove(self.desktop.place("state", "notlet", "drafts", surface + ".txt"))

    # Ends

    def test_every_orderly_end_keeps_all_drafts(self):
        for name, end in (("by SIGTERM", lambda: self.program.send_signal(signal.SIGTERM)),
                          ("by SIGINT", lambda: self.program.send_signal(signal.SIGINT)),
                          ("by its key", lambda: self.desktop.keys("ctrl+q"))):
            with self.subTest(name):
                self.type_everywhere(name)
                end()
                self.assertEqual(self.program.wait(10), 0)
                self.assertEqual((self.draft("popover"), self.draft("panel")), (name, name))
                self.open()
                self.open_popover()
                self.await_text(name, POPOVER)
                self.desktop.keys("ctrl+q")
                self.assertEqual(self.program.wait(10), 0)
                self.clear_drafts()

    def test_the_key_that_quits_asks_before_what_was_typed_is_lost(self):
        state = self.desktop.place("state", "notlet")
        for window, surface, open_it in (("Notlet", "main-window", lambda: None), (POPOVER, "popover", self.open_popover)):
            with self.subTest(window):
                self.open()
                open_it()
                os.rename(state, state + "-away")
                with open(state, "w"):
                    pass
                self.desktop.type("precious")
                self.desktop.keys("ctrl+q")
                self.desktop.control("label", "Quit and lose what you typed?")
                self.desktop.keys("Escape")
                self.await_keyboard(window)
                self.await_text("precious", window)
                os.remove(state)
                os.rename(state + "-away", state)
                self.desktop.keys("ctrl+q")
                self.assertEqual(self.program.wait(10), 0)
                self.assertEqual(self.draft(surface), "precious")

    def test_the_key_that_quits_works_without_the_main_window(self):
        left = self.desktop.place("state", "notlet", "drafts", "edits", ".notlet-new-0123456789abcdef")
        os.makedirs(os.path.dirname(left))
        with open(left, "w") as file:
            file.write("what a killed run was about to write")
        self.start_in_background()
        self.assertFalse(os.path.exists(left))
        self.open_popover()
        self.desktop.type("kept")
        self.await_text("kept", POPOVER)
        self.desktop.keys("ctrl+q")
        self.assertEqual(self.program.wait(10), 0)
        self.assertEqual(self.draft("popover"), "kept")

    def test_a_lost_x_server_ends_the_program_with_its_drafts(self):
        server = self.desktop.start_display()
        self.start_in_background()
        self.open_popover()
        self.desktop.type("kept")
        # No longer than the keys take to arrive: less than the delay after which it would be written anyway.
        await_value(lambda: self.desktop.text(self.editor(POPOVER)) == "kept", "the text")
        self.desktop.end(server, signal.SIGKILL)
        self.assertNotEqual(self.program.wait(10), -signal.SIGSEGV)
        self.assertEqual(self.draft("popover"), "kept")
        self.restore_desktop()
        self.start_in_background()
        self.open_popover()
        self.await_text("kept", POPOVER)

    def restore_desktop(self):
        self.desktop.environment["DISPLAY"] = self.environment["DISPLAY"]

    def test_a_lost_bus_leaves_the_program_running(self):
        bus = self.desktop.start_bus()
        host = self.run_beside("notifier_host.py")
        self.start_in_background()
        self.await_item()
        self.open_popover()
        self.desktop.type("kept")
        self.desktop.end(bus, signal.SIGKILL)
        host.wait(10)
        self.desktop.keys(HOT_KEY)
        self.desktop.type(" and on")
        self.await_draft("popover", "kept and on")
        # The command line finds another way.
        self.desktop.notlet()
        self.await_keyboard("Notlet")
        self.desktop.type("here, too")
        self.await_draft("main-window", "here, too")
        self.assertIsNone(self.program.poll())
        self.desktop.keys("ctrl+q")
        self.assertEqual(self.program.wait(10), 0)

    # No store

    def test_without_a_store_window_and_popover_say_so(self):
        store = self.desktop.place("data", "notlet", "Notlet.store")
        os.makedirs(os.path.dirname(store))
        with open(store, "w") as file:
            file.write("not a store")
        self.run_beside("notifier_host.py")
        self.program = self.desktop.open_notlet()
        self.desktop.control("label", UNAVAILABLE, within="Notlet")
        self.assertEqual(self.desktop.controls(name="Switch to Bubble Mode"), [])
        self.desktop.keys(HOT_KEY)
        self.await_keyboard(POPOVER)
        self.desktop.control("label", UNAVAILABLE, within=POPOVER)
        self.desktop.keys("Escape")
        self.await_gone(POPOVER)
        self.activate(self.await_item())
        self.await_keyboard(POPOVER)
        self.desktop.notlet("open", "notlet:x")
        self.await_keyboard("Notlet")
        self.desktop.keys("ctrl+s", "a", "ctrl+s", "j", "Return", "ctrl+q")
        self.assertEqual(self.program.wait(10), 0)
        with open(store) as file:
            self.assertEqual(file.read(), "not a store")

    def test_a_store_in_use_is_taken_behind_the_placard(self):
        self.desktop.notlet("add", "before")
        other = sqlite3.connect(self.desktop.place("data", "notlet", "Notlet.store"))
        self.addCleanup(other.close)
        other.execute("BEGIN EXCLUSIVE")
        self.program = self.desktop.open_notlet()
        self.desktop.control("label", UNAVAILABLE, within="Notlet")
        self.open_popover()
        self.desktop.control("label", UNAVAILABLE, within=POPOVER)
        other.rollback()
        self.editor(POPOVER)
        self.desktop.type("caught")
        self.await_text("caught", POPOVER)
        self.desktop.keys("Return")
        self.await_stored("caught", "before")
        self.enter_bubble_mode()

    # Calls that make no sense

    def test_random_calls_and_endless_links_break_nothing(self):
        self.open()
        self.desktop.type("precious")
        self.await_text("precious", "Notlet")
        await_value(lambda: self.desktop.provider(SERVICE) == self.program.pid, "the name on the bus")
        dice = random.Random(17)
        answered = sum(self.call_at_random(dice) for _ in range(500))
        self.assertGreater(answered, 20)
        self.assertLess(answered, 480)
        megabyte = "notlet:" + "x" * 1_000_000
        for urls in ([megabyte], [megabyte, "ftp://elsewhere", ""], ["x" * 1_000_000], ["NOTLET:x", "\n"], []):
            self.desktop.call(SERVICE, PATH, APPLICATION, "Open", GLib.Variant("(asa{sv})", (urls, {})))
        # One argument of a program cannot be longer than this.
        self.desktop.notlet("open", *["notlet:" + "x" * 130_000] * 8)
        self.desktop.notlet()
        self.await_keyboard("Notlet")
        self.desktop.keys("ctrl+End")
        self.desktop.type(" draft")
        self.await_text("precious draft", "Notlet")

    def call_at_random(self, dice):
        """Whether the call was answered with something else than an error."""
        method = dice.choice(("Activate", "Open", "ActivateAction", "Nonsense", "Quit"))
        right = {"Activate": "(a{sv})", "Open": "(asa{sv})", "ActivateAction": "(sava{sv})"}.get(method, "()")
        try:
            if dice.random() < 0.3:
                arguments = GLib.Variant(right, tuple(self.random_value(dice, part) for part in self.parts(right)))
            else:
                types = dice.choices(("s", "as", "a{sv}", "av", "i", "d", "b", "v"), k=dice.randrange(5))
                arguments = GLib.Variant("(" + "".join(types) + ")", tuple(self.random_value(dice, part) for part in types))
            interface = APPLICATION if dice.random() < 0.8 else dice.choice((SERVICE, "org.notlet.Notlet1"))
            path = PATH if dice.random() < 0.9 else dice.choice(("/", PATH + "/x", "/StatusNotifierItem"))
            self.desktop.call(SERVICE, path, interface, method, arguments)
        except GLib.Error:
            return False
        return True

    @staticmethod
    def parts(signature):
        return {"(a{sv})": ["a{sv}"], "(asa{sv})": ["as", "a{sv}"], "(sava{sv})": ["s", "av", "a{sv}"]}.get(signature, [])

    def random_value(self, dice, kind):
        text = dice.choice(("", "capture", "notlet:x", "notlet", "\u0627\U0001f600", "%s%n", "x" * dice.randrange(5000),
                            "".join(chr(dice.randrange(1, 0xd800)) for _ in range(dice.randrange(50)))))
        return {"s": text, "as": [text] * dice.randrange(4), "i": dice.randrange(-2**31, 2**31),
                "d": dice.uniform(-1e300, 1e300), "b": dice.random() < 0.5, "v": GLib.Variant("s", text),
                "av": [GLib.Variant("s", text)] * dice.randrange(3),
                "a{sv}": {key: GLib.Variant(*dice.choice((("s", text), ("i", 7), ("as", [text]))))
                          for key in dice.sample(("activation-token", "desktop-startup-id", "", "x"), dice.randrange(4))},
                }[kind]


if __name__ == "__main__":
    main()
