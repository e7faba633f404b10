"""A private desktop for journeys: X server, session bus, window manager and assistive technology.

Everything lives in a throw-away home directory and ends with the object. One desktop per process, because
the assistive-technology library keeps its first bus connection.
"""
import os
import shutil
import signal
import subprocess
import tempfile
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402


class Timeout(AssertionError):
    pass


def await_value(produce, what, timeout=15.0):
    """Calls `produce` until it gives something true, and returns that."""
    end = time.monotonic() + timeout
    while True:
        value = produce()
        if value:
            return value
        if time.monotonic() > end:
            raise Timeout(f"waited {timeout} s for {what}")
        time.sleep(0.02)


class VirtualDesktop:
    def __init__(self, programs, size="1280x800"):
        self.programs = programs
        self.size = size
        self.children = []
        self.pipes = []
        self.root = tempfile.mkdtemp(prefix="notlet-journey-")
        home = os.path.join(self.root, "home")
        self.environment = {
            "PATH": os.environ["PATH"], "HOME": home, "LC_ALL": "C.UTF-8", "TZ": "UTC",
            "XDG_RUNTIME_DIR": os.path.join(self.root, "run"),
            "XDG_DATA_HOME": os.path.join(home, "data"),
            "XDG_STATE_HOME": os.path.join(home, "state"),
            "XDG_CONFIG_HOME": os.path.join(home, ".config"),
            "QT_QPA_PLATFORM": "xcb",
            # Without these two the toolkit leaves assistive technology alone under a bare window manager.
            "QT_ACCESSIBILITY": "1", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
        }
        for name in ("ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]
        os.makedirs(home)
        os.makedirs(self.environment["XDG_RUNTIME_DIR"], mode=0o700)

    # Start and end

    def __enter__(self):
        try:
            self._start()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(self, *_):
        self.close()

    def _start(self):
        reader, writer = os.pipe()
        self.start(["Xvfb", "-displayfd", str(writer), "-screen", "0", self.size + "x24", "-nolisten", "tcp",
                    "-noreset", "-dpi", "96"], pass_fds=(writer,))
        os.close(writer)
        with os.fdopen(reader) as numbers:
            self.environment["DISPLAY"] = ":" + numbers.readline().strip()
        bus = self.start(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"],
                         stdout=subprocess.PIPE)
        self.pipes.append(bus.stdout)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().decode().strip()
        self.start(["openbox"])
        await_value(lambda: "window id" in self.output("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"),
                    "the window manager")
        self.start(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"])
        await_value(lambda: "unix:" in self.output(
            "gdbus", "call", "--session", "--dest", "org.a11y.Bus", "--object-path", "/org/a11y/bus",
            "--method", "org.a11y.Bus.GetAddress"), "the assistive-technology bus")
        os.environ.update(self.environment)  # The assistive-technology library reads them in this process.
        Atspi.init()

    def close(self):
        for child in reversed(self.children):
            self.end(child)
        for pipe in self.pipes:
            pipe.close()
        shutil.rmtree(self.root, ignore_errors=True)

    def start(self, command, **options):
        """Starts a program of which the desktop takes care; its output goes to the log of the desktop."""
        with open(os.path.join(self.root, "log"), "ab") as log:
            options.setdefault("stdout", log)
            child = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL, stderr=log, **options)
        self.children.append(child)
        return child

    def end(self, child, number=signal.SIGTERM, timeout=15):
        """Sends the signal and gives the exit status; kills what does not go."""
        if child.poll() is None:
            child.send_signal(number)
        try:
            return child.wait(timeout)
        except subprocess.TimeoutExpired:
            child.kill()
            child.wait()
            raise

    def log(self):
        with open(os.path.join(self.root, "log"), errors="replace") as log:
            return log.read()

    def output(self, *command):
        done = subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False)
        return done.stdout.decode(errors="replace")

    # The programs

    def notlet(self, *arguments):
        """What the command line prints; it must succeed."""
        done = subprocess.run([os.path.join(self.programs, "notlet"), *arguments], env=self.environment,
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)
        assert done.returncode == 0, done.stderr.decode(errors="replace")
        return done.stdout.decode()

    def open_notlet(self):
        """Starts the program and waits until its window takes typing."""
        child = self.start([os.path.join(self.programs, "notlet-desktop")])
        await_value(lambda: self.active_window_name() == "Notlet" or child.poll() is not None, "the window")
        assert child.poll() is None, self.log()
        return child

    def place(self, *parts):
        return os.path.join(self.environment["HOME"], *parts)

    # Keys, mouse and windows

    def type(self, text):
        self.output("xdotool", "type", "--delay", "8", "--", text)

    def keys(self, *names):
        self.output("xdotool", "key", "--clearmodifiers", *names)

    def click(self, control):
        x, y, width, height = self.extents(control)
        self.output("xdotool", "mousemove", str(x + width // 2), str(y + height // 2), "click", "1")

    def active_window_name(self):
        return self.output("xdotool", "getactivewindow", "getwindowname").strip()

    def windows(self, name):
        found = self.output("xdotool", "search", "--onlyvisible", "--name", name).split()
        return [int(word) for word in found if word.isdigit()]

    # Controls, as assistive technology sees them

    def controls(self, role=None, name=None, text=None):
        """The controls on screen with this role, name and text; each may be left open."""
        return [control for control in self._walk(Atspi.get_desktop(0))
                if self._fits(control, role, name, text)]

    def control(self, role=None, name=None, text=None, timeout=15.0):
        return await_value(lambda: next(iter(self.controls(role, name, text)), None),
                           f"a control with role {role!r}, name {name!r}, text {text!r}", timeout)

    def _walk(self, node):
        try:
            children = [node.get_child_at_index(index) for index in range(node.get_child_count())]
        except gi.repository.GLib.Error:  # It went while we looked.
            return
        for child in children:
            if child is not None:
                yield child
                yield from self._walk(child)

    def _fits(self, control, role, name, text):
        try:
            return ((role is None or control.get_role_name() == role)
                    and (name is None or control.get_name() == name)
                    and (text is None or self.text(control) == text)
                    and control.get_state_set().contains(Atspi.StateType.SHOWING))
        except gi.repository.GLib.Error:
            return False

    @staticmethod
    def text(control):
        content = control.get_text_iface()
        return content.get_text(0, content.get_character_count()) if content else None

    @staticmethod
    def has_state(control, state):
        return control.get_state_set().contains(getattr(Atspi.StateType, state))

    @staticmethod
    def extents(control):
        box = control.get_component_iface().get_extents(Atspi.CoordType.SCREEN)
        return box.x, box.y, box.width, box.height

    @staticmethod
    def press(control):
        control.get_action_iface().do_action(0)
