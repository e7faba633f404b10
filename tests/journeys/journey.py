"""What all journeys share: a desktop, and for each test a fresh home with the real programs."""
import contextlib
import json
import os
import sys
import time
import unittest

from gi.repository import GLib

from virtual_desktop import Timeout, VirtualDesktop, await_value

PROGRAMS = sys.argv.pop(1)
HOT_KEY = "ctrl+super+j"
POPOVER = PANEL = "Quick Notlet"
BUBBLE = "Notlet Bubble"
PROPERTIES = "org.freedesktop.DBus.Properties"
WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"


class Journey(unittest.TestCase):
    """Each test goes through a fresh home on one desktop."""

    @classmethod
    def setUpClass(cls):
        cls.desktop = VirtualDesktop(PROGRAMS)
        cls.enterClassContext(cls.desktop)

    def setUp(self):
        # What a test before did to them ends with it.
        self.environment = dict(self.desktop.environment)
        self.addCleanup(self.desktop.environment.update, self.environment)
        self.desktop.environment["HOME"] = os.path.join(self.desktop.root, self._testMethodName)
        for variable, folder in (("XDG_DATA_HOME", "data"), ("XDG_STATE_HOME", "state")):
            self.desktop.environment[variable] = self.desktop.place(folder)
        os.makedirs(self.desktop.place())
        self.program = None
        self.last_click = 0.0

    def tearDown(self):
        if self.program is not None and self.program.poll() is None:
            self.assertEqual(self.desktop.end(self.program), 0, self.desktop.log())

    def open(self):
        self.program = self.desktop.open_notlet()
        return self.editor()

    def start_in_background(self):
        """Starts the program without its window."""
        self.program = self.desktop.start([os.path.join(PROGRAMS, "notlet-desktop"), "--background"])
        await_value(lambda: self.desktop.provider("org.notlet.Notlet") == self.program.pid, "the program")

    def open_popover(self):
        self.desktop.keys(HOT_KEY)
        self.await_keyboard(POPOVER)

    def enter_bubble_mode(self):
        self.desktop.press(self.desktop.control("push button", "Switch to Bubble Mode", within="Notlet"))
        self.await_window(BUBBLE)
        self.await_gone("Notlet")

    def editor(self, window=None):
        return self.desktop.control("text", "Notlet text", within=window)

    def stored(self):
        return [json.loads(line) for line in self.desktop.notlet("list", "--json").splitlines()]

    def await_stored(self, *contents):
        await_value(lambda: [entry["content"] for entry in self.stored()] == list(contents),
                    f"the store to hold {contents}")

    def await_text(self, text, window=None):
        await_value(lambda: self.desktop.text(self.editor(window)) == text,
                    lambda: f"the editor to hold {text!r}, which holds {self.desktop.text(self.editor(window))!r}")

    def await_draft(self, surface, text):
        await_value(lambda: self.draft(surface) == text, f"the draft of the {surface} to be {text!r}")

    def draft(self, surface):
        with contextlib.suppress(FileNotFoundError), open(self.desktop.place("state", "notlet", "drafts",
                                                                             surface + ".txt")) as draft:
            return draft.read()
        return ""

    # Windows, the other program, and services of the desktop

    @property
    def server(self):
        return self.desktop.server

    def await_keyboard(self, window):
        await_value(lambda: self.server.keyboard_name() == self.server.active_name() == window,
                    f"the keyboard to be with {window!r}")

    def await_window(self, name):
        return await_value(lambda: self.server.window(name), f"the window {name!r}")

    def await_gone(self, name):
        await_value(lambda: not self.server.window(name), f"the window {name!r} to go")

    def assert_stays(self, holds, seconds=0.4):
        """What must not happen would have happened within this time."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.assertTrue(holds())
            time.sleep(0.02)

    def await_frame(self, window, frame):
        try:
            await_value(lambda: self.server.frame(self.await_window(window)) == frame, "it", 5)
        except Timeout:
            self.fail(f"{window} is at {self.server.frame(self.await_window(window))}, not at {frame}")

    def split_screen(self):
        """Two monitors, of which the left one is the main one."""
        self.addCleanup(self.remove_monitors)
        self.set_monitor("left", "640/170x800/210+0+0", "screen")
        self.set_monitor("right", "640/170x800/210+640+0", "none")

    def set_monitor(self, name, frame, output):
        self.desktop.output("xrandr", "--setmonitor", name, frame, output)
        self.assertIn(name, self.desktop.output("xrandr", "--listmonitors"))

    def remove_monitors(self):
        for name in ("left", "right", "small"):
            self.remove_monitor(name)

    def remove_monitor(self, name):
        self.desktop.output("xrandr", "--delmonitor", name)
        self.assertNotIn(name, self.desktop.output("xrandr", "--listmonitors"))

    def run_beside(self, script, *arguments):
        """Starts one of the scripts beside this file for as long as the test lasts."""
        child = self.desktop.start_script(script, *arguments)
        self.addCleanup(self.desktop.end, child)
        return child

    def open_other(self):
        """Another program, which has the keyboard."""
        self.run_beside("other_program.py", self.desktop.place("typed"))
        self.await_keyboard("Other program")

    def click_other(self):
        self.desktop.click_at(*self.server.middle(self.await_window("Other program")))
        self.await_keyboard("Other program")

    def typed_elsewhere(self):
        with open(self.desktop.place("typed")) as typed:
            return typed.read()

    def await_typed_elsewhere(self, text):
        await_value(lambda: self.typed_elsewhere() == text, f"the other program to get {text!r}")

    def start_tray(self):
        """A panel of the older kind; gives its program and the window of Notlet's icon in it."""
        tray = self.desktop.start(["trayer", "--edge", "top", "--align", "right", "--widthtype", "request", "--height",
                                   "24", "--SetDockType", "true"])
        self.addCleanup(self.desktop.end, tray)
        return tray

    def await_icon(self):
        """The window of Notlet's icon in the tray, once it has its place."""
        def icon():
            panel = self.server.window("panel")
            icons = self.server.windows("Notlet", panel) if panel else []
            return icons[0] if icons and self.server.frame(icons[0])[2] > 1 else None
        return await_value(icon, "the icon in the tray")

    def start_compositor(self):
        compositor = self.desktop.start(["xcompmgr"])
        self.addCleanup(self.desktop.end, compositor)
        return compositor

    def await_cut(self, name, depth, is_cut):
        """The pixel that lies so far from the upper left corner on the diagonal is cut off, or is not."""
        await_value(lambda: self.server.covers(self.await_window(name), depth, depth) != is_cut,
                    f"the corner of {name} to be {'cut' if is_cut else 'whole'}")

    # The tray to which icons are described

    def items(self):
        try:
            return self.desktop.call(WATCHER, "/StatusNotifierWatcher", PROPERTIES, "Get",
                                     GLib.Variant("(ss)", (WATCHER, "RegisteredStatusNotifierItems")))[0]
        except GLib.Error:  # Not there yet.
            return []

    def await_item(self):
        """Bus name of the one icon that the panel shows."""
        service = await_value(self.items, "the icon")[0]
        self.assertEqual(len(self.items()), 1)
        return service

    def await_single_click(self):
        """A click sooner than this after another would be the second of a double click."""
        time.sleep(max(0.0, self.last_click + 0.45 - time.monotonic()))
        self.last_click = time.monotonic()

    def activate(self, service):
        self.await_single_click()
        self.tell_of_click(service)

    def tell_of_click(self, service):
        self.desktop.call(service, "/StatusNotifierItem", ITEM, "Activate", GLib.Variant("(ii)", (100, 10)))


def main():
    # The bindings call their own way to a control's interfaces deprecated, and offer no other.
    unittest.main(verbosity=2, warnings="ignore")
