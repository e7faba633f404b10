"""The archive and the keyboard through the real program: find, walk, edit and delete without the mouse."""
import json
import os
import random
import time

from journey import Journey, main
from virtual_desktop import await_value

TEXTS = ("Oldest note #home", "Printer is broken #work", "Buy milk", "Newest note about Anna #work #home")


class ArchiveJourney(Journey):
    def open_archive(self, texts=TEXTS):
        for text in texts:
            self.desktop.notlet("add", text)
        self.open()
        self.desktop.keys("ctrl+s", "a")
        self.desktop.control("list", "Notlets")

    def selected(self):
        """The text of the selected row, as assistive technology reads it."""
        rows = [row for row in self.desktop.controls("list item") if self.desktop.has_state(row, "SELECTED")]
        return rows[0].get_name() if rows else None

    def await_selected(self, text):
        await_value(lambda: (self.selected() or "").startswith(text), f"{text!r} to be selected")

    def rows(self):
        return [row.get_name() for row in self.desktop.controls("list item")]

    def await_rows(self, *beginnings):
        def agrees():
            rows = self.rows()
            return len(rows) == len(beginnings) and all(map(str.startswith, rows, beginnings))
        await_value(agrees, f"the rows {beginnings}")

    def test_the_leader_opens_archive_and_notlet(self):
        self.open_archive()
        self.await_rows("Newest", "Buy", "Printer", "Oldest")
        self.desktop.keys("ctrl+s", "j")
        self.desktop.type("typed at once")
        self.await_text("typed at once")

    def test_what_a_key_opens_gets_the_keys_after_it_but_not_its_repeats(self):
        self.open_archive()
        self.desktop.keys("ctrl+s", "j")
        self.desktop.hold("x")
        await_value(lambda: self.desktop.text(self.editor()).startswith("xx"), "the key to repeat")
        self.desktop.keys("Escape")
        self.desktop.type("/anna", delay=0)
        self.await_rows("Newest")
        self.desktop.keys("Escape", "Down")
        self.desktop.hold("e")
        self.assertEqual(self.desktop.text(self.desktop.control("text", "Edit notlet")), TEXTS[-1])

    def test_keys_are_found_on_other_layouts(self):
        self.open_archive()
        self.addCleanup(self.desktop.output, "setxkbmap", "us")
        field = self.desktop.control("text", "Search notlets")
        for layout, search in (("ru", "61"), ("de", "shift+16")):
            self.assertEqual(self.desktop.output("setxkbmap", layout), "")
            self.desktop.keys("44")  # As the keys are numbered: what types "j" elsewhere.
            self.await_selected("Newest")
            self.desktop.keys(search)
            await_value(lambda: self.desktop.has_state(field, "FOCUSED"), "the search")
            self.desktop.keys("Escape", "Up")

    def test_the_leader_and_its_key_never_reach_the_editor(self):
        self.open()
        self.desktop.type("some text")
        self.desktop.keys("ctrl+s", "a")
        self.desktop.control("label", "No notlets yet")
        self.desktop.keys("ctrl+s", "j")
        self.await_text("some text")

    def test_the_leader_runs_out(self):
        self.open()
        self.desktop.keys("ctrl+s")
        time.sleep(1.4)  # The real time-out of 1.2 seconds is what is tried.
        self.desktop.type("a")
        self.await_text("a")
        self.assertFalse(self.desktop.controls("list", "Notlets"))

    def test_walking_with_letters_and_arrows(self):
        self.open_archive()
        self.desktop.keys("j")
        self.await_selected("Newest")
        self.desktop.keys("j", "Down")
        self.await_selected("Printer")
        self.desktop.keys("k", "Up", "k")
        # Up from the first row leaves the list and keeps the selection.
        self.await_selected("Newest")
        self.desktop.keys("Right", "Return")
        await_value(lambda: len(self.rows()) == 2, "a filter by hashtag")
        self.desktop.keys("Escape")
        await_value(lambda: len(self.rows()) == 4, "all rows")

    def test_searching_by_keyboard(self):
        self.open_archive()
        self.desktop.keys("slash")
        self.desktop.type("anna")
        self.await_rows("Newest")
        self.desktop.keys("ctrl+a", "Delete")
        self.desktop.type("nothing like this")
        self.desktop.control("label", "No results")
        self.desktop.control("push button", "Clear search")

    def test_editing_in_place(self):
        self.open_archive()
        self.desktop.keys("j", "j", "e")
        self.desktop.control("text", "Edit notlet")
        self.desktop.keys("ctrl+End")
        self.desktop.type(" and j k e d #wo")
        self.desktop.control("push button", "Use hashtag work")
        self.desktop.type("rk")
        self.desktop.keys("Return")
        await_value(lambda: self.stored()[1]["content"] == "Buy milk and j k e d #work", "the edit")
        self.assertIsNotNone(self.stored()[1]["updatedAt"])

    def test_deleting_asks_first(self):
        self.open_archive()
        self.desktop.keys("j", "d")
        self.desktop.control("label", "Delete this notlet?")
        self.desktop.keys("Escape")
        self.assertEqual(len(self.stored()), 4)
        self.desktop.keys("d")
        self.desktop.control("label", "Delete this notlet?")
        self.desktop.keys("Tab", "Return")
        await_value(lambda: len(self.stored()) == 3, "the deletion")

    def test_the_shortcut_file_is_read_again_on_return(self):
        self.open_archive()
        file = self.desktop.place(".config", "notlet", "config.json")
        with open(file) as text:
            config = json.load(text)
        config["archiveNavigation"]["nextAlternate"] = "n"
        self.leave_and_change(file, json.dumps(config))
        self.desktop.keys("n")
        self.await_selected("Newest")
        self.leave_and_change(file, "{ broken")
        await_value(lambda: any(label.get_name().startswith("Notlet could not load the shortcut config: ")
                                for label in self.desktop.controls("label")), "the message")
        self.desktop.keys("n")
        self.await_selected("Buy")
        with open(file) as text:
            self.assertEqual(text.read(), "{ broken")

    def leave_and_change(self, file, text):
        other = self.desktop.start(["xmessage", "-center", "in front"])
        await_value(lambda: self.desktop.active_window_name() == "xmessage", "the other window")
        with open(file, "w") as config:
            config.write(text)
        time.sleep(0.6)  # The toolkit takes a shorter absence for none.
        self.desktop.end(other)
        await_value(lambda: self.desktop.active_window_name() == "Notlet", "the window to be active again")

    def test_thousands_of_random_keys_break_nothing(self):
        self.open_archive()
        random.seed(11)
        keys = ("j", "k", "e", "d", "slash", "Escape", "Return", "Up", "Down", "Left", "Right", "space", "BackSpace",
                "Tab", "shift+Tab", "ctrl+s", "a", "w", "numbersign", "Home", "End", "Prior", "Next", "shift+Return")
        for _ in range(50):
            self.desktop.keys(*random.choices(keys, k=100))
            self.assertIsNone(self.program.poll(), self.desktop.log())
        for entry in self.stored():
            self.assertEqual(entry["content"], entry["content"].strip())
        self.assertEqual(os.path.exists(self.desktop.place("data", "notlet", "Notlet.store")), True)


if __name__ == "__main__":
    main()
