"""How starts reach the running program: a second start, the command line, links, and what is none of these."""
import contextlib
import fcntl
import os
import signal
import socket
import struct
import subprocess

from journey import PROGRAMS, Journey, main
from virtual_desktop import await_value


class LaunchJourney(Journey):
    def tearDown(self):
        # The command line starts a program that is nobody's child.
        if self.running():
            self.end_running()
        super().tearDown()

    def end_running(self):
        with self.connect() as peer:
            process = struct.unpack("3i", peer.getsockopt(socket.SOL_SOCKET, socket.SO_PEERCRED, 12))[0]
        os.kill(process, signal.SIGTERM)
        await_value(lambda: not self.running(), "the program to end")

    def running(self):
        with contextlib.suppress(FileNotFoundError, ConnectionRefusedError), self.connect():
            return True
        return False

    def desktop_program(self, *arguments, **environment):
        done = subprocess.run([os.path.join(PROGRAMS, "notlet-desktop"), *arguments], check=False, timeout=10,
                              env={**self.desktop.environment, **environment}, capture_output=True, text=True)
        return done.returncode, done.stderr

    def await_active(self, name="Notlet"):
        await_value(lambda: self.desktop.active_window_name() == name, f"the window {name}")

    def cover(self):
        """Puts another window in front, and gives it."""
        other = self.desktop.start(["xmessage", "-center", "in front"])
        await_value(lambda: self.desktop.active_window_name() == "xmessage", "the other window")
        return other

    def connect(self):
        peer = socket.socket(socket.AF_UNIX)
        peer.settimeout(15)
        peer.connect(os.path.join(self.desktop.environment["XDG_RUNTIME_DIR"], "notlet", "notlet.socket"))
        return peer

    def test_every_way_to_start_reaches_the_running_program(self):
        self.open()
        for window, start in (("Notlet", lambda: self.assertEqual(self.desktop_program(), (0, ""))),
                              ("Notlet", lambda: self.assertEqual(self.desktop_program("notlet:x"), (0, ""))),
                              ("Quick Notlet", lambda: self.assertEqual(self.desktop_program("--capture"), (0, ""))),
                              # From a session of another kind.
                              ("Notlet", lambda: self.assertEqual(self.desktop_program(XDG_RUNTIME_DIR="")[0], 0)),
                              ("Quick Notlet", lambda: self.desktop.notlet("capture")),
                              ("Notlet", self.desktop.notlet),
                              ("Notlet", lambda: self.desktop.notlet("open", "notlet:anything/at?all"))):
            other = self.cover()
            start()
            self.await_active(window)
            self.desktop.end(other)
        self.assertEqual(len(self.desktop.windows("^Notlet$")), 1)
        self.desktop.type("still here")
        self.await_text("still here")

    def test_one_that_cannot_be_reached_is_told(self):
        os.makedirs(self.desktop.place("state", "notlet"))
        with open(self.desktop.place("state", "notlet", "notlet.lock"), "w") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            self.program = self.desktop.start([os.path.join(PROGRAMS, "notlet-desktop")])
            self.desktop.control("label", "Notlet could not be opened")
            self.desktop.keys("Return")
            self.assertEqual(self.program.wait(10), 1)

    def test_the_command_line_starts_the_program(self):
        for window, words in (("Notlet", ()), ("Quick Notlet", ("capture",)), ("Notlet", ("open", "notlet:x"))):
            self.assertFalse(self.running())
            self.desktop.notlet(*words)
            self.await_active(window)
            self.desktop.type("typed at once")
            self.await_text("typed at once")
            self.desktop.keys("Return")
            self.await_text("")
            self.end_running()
        self.await_stored(*["typed at once"] * 3)

    def test_in_the_background_it_waits_for_the_next_start(self):
        self.program = self.desktop.start([os.path.join(PROGRAMS, "notlet-desktop"), "--background"])
        await_value(self.running, "the program")
        # It answers only when it is up; only then does the absence of a window mean something.
        with self.connect() as peer:
            peer.sendall(b"?")
            self.assertTrue(peer.recv(1000).startswith(b"-"))
        self.assertEqual(self.desktop_program("--background"), (0, ""))
        self.assertEqual(self.desktop.windows("^Notlet$"), [])
        self.desktop.notlet()
        self.await_active()

    def test_a_wrong_option_is_named(self):
        for arguments, complaint in ((("--nonsense",), "nonsense"), (("--capture=x",), "capture"),
                                     (("--capture", "--background"), "Only one"),
                                     (("--capture", "notlet:x"), "Only one"),
                                     (("--background", "notlet:x"), "Only one")):
            status, message = self.desktop_program(*arguments)
            self.assertEqual(status, 2)
            self.assertRegex(message, f"^notlet-desktop: .*{complaint}.*\n$")
        self.assertFalse(self.running())

    def test_without_a_display_it_says_so_in_a_sentence_and_still_tells_of_itself(self):
        for platform in ("", "xcb"):
            for display in ("", ":4711"):
                without = {"DISPLAY": display, "QT_QPA_PLATFORM": platform}
                status, message = self.desktop_program(**without)
                self.assertEqual(status, 1)
                self.assertRegex(message, f"^notlet-desktop: .*{display}.*[.]\n$")
                for option in ("--help", "--version", "-v"):
                    self.assertEqual(self.desktop_program(option, **without), (0, ""))

    def test_the_window_belongs_to_the_desktop_entry(self):
        self.open()
        window = self.desktop.windows("^Notlet$")[0]
        self.assertIn('"Notlet"', self.desktop.output("xprop", "-id", str(window), "WM_CLASS"))


if __name__ == "__main__":
    main()
