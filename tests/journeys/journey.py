"""What all journeys share: a desktop, and for each test a fresh home with the real programs."""
import json
import os
import sys
import unittest

from virtual_desktop import VirtualDesktop, await_value

PROGRAMS = sys.argv.pop(1)


class Journey(unittest.TestCase):
    """Each test goes through a fresh home on one desktop."""

    @classmethod
    def setUpClass(cls):
        cls.desktop = VirtualDesktop(PROGRAMS)
        cls.enterClassContext(cls.desktop)

    def setUp(self):
        self.desktop.environment["HOME"] = os.path.join(self.desktop.root, self._testMethodName)
        for variable, folder in (("XDG_DATA_HOME", "data"), ("XDG_STATE_HOME", "state")):
            self.desktop.environment[variable] = self.desktop.place(folder)
        os.makedirs(self.desktop.place())
        self.program = None

    def tearDown(self):
        if self.program is not None and self.program.poll() is None:
            self.assertEqual(self.desktop.end(self.program), 0, self.desktop.log())

    def open(self):
        self.program = self.desktop.open_notlet()
        return self.editor()

    def editor(self):
        return self.desktop.control("text", "Notlet text")

    def stored(self):
        return [json.loads(line) for line in self.desktop.notlet("list", "--json").splitlines()]

    def await_stored(self, *contents):
        await_value(lambda: [entry["content"] for entry in self.stored()] == list(contents),
                    f"the store to hold {contents}")

    def await_text(self, text):
        await_value(lambda: self.desktop.text(self.editor()) == text, f"the editor to hold {text!r}")


def main():
    # The bindings call their own way to a control's interfaces deprecated, and offer no other.
    unittest.main(verbosity=2, warnings="ignore")
