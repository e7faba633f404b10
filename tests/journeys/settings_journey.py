"""The settings through the real program: another leader, a broken file, a recorded key."""
import json
import os

from journey import Journey, main
from virtual_desktop import await_value

WINDOW = "Notlet Settings"


class SettingsJourney(Journey):
    def open_settings(self):
        self.open()
        self.show_settings()
        self.desktop.press(self.desktop.control("push button", "Shortcuts", within=WINDOW))
        return self.field("Shortcut")

    def show_settings(self):
        self.desktop.keys("ctrl+comma")
        self.await_active(WINDOW)

    def await_active(self, name):
        await_value(lambda: self.desktop.active_window_name() == name, f"the window {name!r} to be active")

    def field(self, name):
        return self.desktop.control("text", name, within=WINDOW)

    def fill(self, name, text):
        self.desktop.click(self.field(name))
        self.desktop.keys("ctrl+a", "Delete")
        self.desktop.type(text)
        self.desktop.control("text", name, text)

    def record(self, name, *keys):
        self.desktop.click(self.desktop.control("push button", f"Record key for {name}"))
        self.desktop.control("push button", f"Press the key for {name}")
        self.desktop.keys(*keys)

    @property
    def file(self):
        return self.desktop.place(".config", "notlet", "config.json")

    def config(self):
        with open(self.file) as text:
            return json.load(text)

    def await_leader(self, leader):
        await_value(lambda: self.config()["leader"] == leader, f"the file to hold the leader {leader!r}")

    def leave(self):
        self.desktop.keys("Escape")
        self.await_active("Notlet")

    def test_another_leader_works_at_once(self):
        self.open_settings()
        self.fill("Shortcut", "ctrl+k")
        self.desktop.keys("Return")
        self.await_leader("ctrl+k")
        self.leave()
        self.desktop.keys("ctrl+k", "a")
        self.desktop.control("label", "No notlets yet")

    def test_escape_keeps_what_is_not_saved(self):
        self.open_settings()
        self.fill("Shortcut", "")
        self.desktop.keys("Return")
        self.desktop.control("label", "The leader must include a key, for example control+s.")
        self.desktop.keys("Return")
        self.await_active(WINDOW)
        self.desktop.type("ctrl+o")
        self.desktop.keys("Escape", "Escape")
        self.desktop.control("text", "Shortcut", "ctrl+o")
        self.assertEqual(self.config()["leader"], "control+s")
        self.desktop.keys("Return")
        self.await_leader("ctrl+o")
        self.leave()

    def test_a_broken_file_is_explained_and_can_be_mended(self):
        self.open()
        with open(self.file, "w") as text:
            text.write("{ broken")
        self.desktop.keys("ctrl+comma")
        self.desktop.control("label", "Shortcut Settings")
        await_value(lambda: any(label.get_name().startswith("Notlet could not load the shortcut config: ")
                                for label in self.desktop.controls("label")), "the reason")
        self.desktop.keys("Return")
        self.await_active(WINDOW)
        with open(self.file) as text:
            self.assertEqual(text.read(), "{ broken")
        self.desktop.press(self.desktop.control("push button", "Shortcuts", within=WINDOW))
        self.desktop.control("text", "Shortcut", "control+s")
        self.desktop.press(self.desktop.control("push button", "Restore Defaults"))
        await_value(lambda: os.path.getsize(self.file) > 100, "the defaults")
        self.assertEqual(self.config()["leader"], "control+s")
        self.leave()

    def test_keys_are_recorded_before_they_do_anything(self):
        self.open_settings()
        self.record("Shortcut", "ctrl+q")
        self.desktop.control("text", "Shortcut", "control+q")
        self.desktop.control("label", "This key then no longer quits Notlet.")
        # The leader in force, and a modifier on its own on the way to it.
        self.record("Shortcut", "ctrl+s")
        self.desktop.control("text", "Shortcut", "control+s")
        self.record("Archive", "Escape")
        self.desktop.control("push button", "Record key for Archive")
        self.record("Archive", "ctrl+b")
        self.desktop.control("label", "Press a single key, without Control, Alt or Super.")
        self.desktop.keys("j")
        self.desktop.control("text", "Archive", "j")
        self.desktop.control("label", "“Notlet” takes this key first.")
        self.record("Archive", "b")
        self.desktop.control("text", "Archive", "b")
        self.desktop.press(self.desktop.control("push button", "Save"))
        await_value(lambda: self.config()["commands"]["archive"] == "b", "the key in the file")
        self.leave()
        self.desktop.keys("ctrl+s", "b")
        self.desktop.control("label", "No notlets yet")

    def test_every_window_opens_them(self):
        self.start_in_background()
        self.open_popover()
        self.desktop.type("kept")
        self.show_settings()
        self.await_draft("popover", "kept")
        self.desktop.keys("ctrl+comma", "Escape")
        self.await_gone(WINDOW)
        self.assert_stays(lambda: self.program.poll() is None)

    def test_a_timeout_in_steps_and_keys_of_the_keyboard_alone(self):
        self.open_settings()
        self.desktop.click(self.field("Shortcut"))
        self.desktop.keys("Tab", "Tab", "Tab", "space", "space", "shift+Tab", "Return")
        self.desktop.control("label", "Timeout: 1300 ms", within=WINDOW)
        self.desktop.click(self.field("Shortcut"))
        self.desktop.keys("Tab", "space")
        self.desktop.control("push button", "Press the key for Shortcut", within=WINDOW)
        self.desktop.keys("ctrl+super+Up", "shift+Tab", "Return")
        await_value(lambda: self.config()["leader"] == "control+command+up", "the key in the file")
        self.assertEqual(self.config()["leaderTimeoutMilliseconds"], 1300)

    def test_what_is_edited_by_hand_meets_an_untouched_form(self):
        self.open_settings()
        config = self.config()
        config["leader"] = "ctrl+y"
        with open(self.file, "w") as text:
            json.dump(config, text)
        self.desktop.press(self.desktop.control("push button", "Reload"))
        self.desktop.control("text", "Shortcut", "ctrl+y")
        self.leave()
        self.desktop.keys("ctrl+y", "a")
        self.desktop.control("label", "No notlets yet")


if __name__ == "__main__":
    main()
