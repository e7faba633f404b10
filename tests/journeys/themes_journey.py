"""The themes through the real program: find one and apply it, make, change and delete one, share them in files."""
import base64
import json
import os

from journey import POPOVER, Journey, main
from virtual_desktop import await_value

MAIN = "Notlet"
EDITOR = "Custom Theme"
SETTINGS = "Notlet Settings"
PAPER = "FAF9F6"
OPTIONS = ("New Custom Theme", "Import JSON", "Export JSON")
ROW_OPTIONS = ("Edit", "Delete")
ROUND_TRIP = ("name", "isDark", "backgroundHex", "surfaceHex", "primaryHex", "secondaryHex", "accentHex",
              "alternateAccentHex")


def theme(identifier, name, **fields):
    return {"id": identifier, "name": name, "category": "Mine", "isDark": True, "followsSystem": False,
            "backgroundHex": "102030", "surfaceHex": "203040", "primaryHex": "F0F0F0", "secondaryHex": "C0C0C0",
            "accentHex": "FF8800", "alternateAccentHex": "0088FF", **fields}


class ThemesJourney(Journey):
    def open_themes(self):
        self.open()
        self.desktop.press(self.desktop.control("push button", "Themes", within=MAIN))
        self.desktop.control("list", "Themes")

    def search(self, text, window=MAIN):
        self.desktop.click(self.desktop.control("text", "Search themes", within=window))
        self.desktop.keys("ctrl+a")
        self.desktop.type(text)
        self.desktop.control("text", "Search themes", text, within=window)

    def row(self, name, window=MAIN):
        return self.desktop.control("list item", name, within=window)

    def await_active(self, name, window=MAIN):
        await_value(lambda: self.desktop.has_state(self.row(name, window), "SELECTED"), f"the row {name!r}")

    def await_window_active(self, name):
        await_value(lambda: self.desktop.active_window_name() == name, f"the window {name!r} to be active")

    def await_ground(self, window, color):
        """The window is painted in the theme with this background."""
        await_value(lambda: self.server.color(self.await_window(window), 24, 6) == color,
                    lambda: f"{window!r} in {color}, which is {self.server.color(self.await_window(window), 24, 6)}")

    def choose_option(self, name):
        self.await_window_active(MAIN)
        self.desktop.press(self.desktop.control("push button", "Theme options"))
        self.choose_in_menu(OPTIONS.index(name))

    def choose_for_row(self, name):
        """Takes what has this name in the menu of the row that the keyboard is on."""
        self.await_window_active(MAIN)
        self.desktop.keys("Menu")
        self.choose_in_menu(ROW_OPTIONS.index(name))

    def choose_in_menu(self, index):
        # The toolkit keeps menus out of the tree that assistive technology walks. A menu bears its window's name.
        await_value(lambda: len(self.server.windows(MAIN)) == 2, "the menu")
        self.desktop.keys(*["Down"] * (index + 1), "Return")

    def fill(self, name, text):
        self.desktop.click(self.desktop.control("text", name, within=EDITOR))
        self.desktop.keys("ctrl+a")
        self.desktop.type(text)
        self.desktop.control("text", name, text, within=EDITOR)

    def choose_file(self, dialog, name):
        self.await_window_active(dialog)
        # At once, as by pasting: the dialog completes what is typed by and by.
        field = self.desktop.control("text", "File name:")
        field.get_editable_text_iface().set_text_contents(name)
        self.desktop.control("text", "File name:", name)
        self.desktop.keys("Return")

    def import_file(self, contents):
        with open(self.desktop.place("themes.json"), "w") as file:
            file.write(contents if isinstance(contents, str) else json.dumps(contents))
        self.choose_option("Import JSON")
        self.choose_file("Import Themes", "themes.json")

    def await_alert(self, title, *words):
        self.desktop.control("label", title)
        labels = [label.get_name() for label in self.desktop.controls("label")]
        self.assertTrue(any(all(word in label for word in words) for label in labels), labels)
        self.desktop.keys("Return")
        self.await_window_active(MAIN)

    @property
    def settings_file(self):
        return self.desktop.place("state", "notlet", "shared-defaults.json")

    def stored_settings(self):
        with open(self.settings_file) as file:
            return json.load(file)

    def own_themes(self):
        entry = self.stored_settings().get("customThemes")
        return json.loads(base64.b64decode(entry["base64"])) if entry else []

    def await_own(self, *names):
        await_value(lambda: [each["name"] for each in self.own_themes()] == list(names),
                    lambda: f"the themes {names} to be stored, and not {[each['name'] for each in self.own_themes()]}")

    def test_a_theme_is_found_and_applied_in_every_window(self):
        self.open()
        self.desktop.keys("ctrl+comma")
        self.await_window_active(SETTINGS)
        self.search("mono", SETTINGS)
        self.desktop.keys("Down", "Down", "Up", "Down")
        self.await_active("Paper, Light", SETTINGS)
        self.desktop.keys("Return")
        self.row("Paper, Light, Selected", SETTINGS)
        for window in (MAIN, SETTINGS):
            self.await_ground(window, PAPER)
        self.open_popover()
        self.await_ground(POPOVER, PAPER)
        self.assertEqual(self.stored_settings()["selectedThemeID"], "paper")

    def test_escape_leaves_the_search_to_the_arrows(self):
        self.open_themes()
        self.search("mono")
        self.desktop.keys("Down", "Up")
        self.desktop.type("x")
        self.desktop.control("label", "No theme matches your search.")
        self.desktop.keys("BackSpace", "Down", "Up", "Escape", "Down", "Down")
        self.await_active("Paper, Light")

    def test_keys_search_the_themes_that_are_in_front(self):
        self.open_themes()
        for window in (MAIN, SETTINGS):
            # From a button that is no part of the screen.
            self.desktop.keys(*["shift+Tab"] * 3, "slash")
            field = self.desktop.control("text", "Search themes", within=window)
            await_value(lambda: self.desktop.has_state(field, "FOCUSED"), f"the search of {window}")
            self.desktop.keys("Escape", "ctrl+comma")
            self.await_window_active(SETTINGS)
        self.desktop.keys("ctrl+s", "a")
        self.assert_stays(lambda: self.desktop.controls("text", "Search themes", within=MAIN))

    def test_a_theme_is_made_changed_and_deleted(self):
        self.open_themes()
        self.choose_option("New Custom Theme")
        self.await_window_active(EDITOR)
        self.desktop.type("  Night  ")
        self.fill("Background code", "#012")
        self.fill("Primary text code", "eeeeee")
        self.desktop.press(self.desktop.control("push button", "Save", within=EDITOR))
        self.await_ground(MAIN, "001122")
        self.await_own("Night")
        self.search("night")
        self.desktop.keys("Down")
        self.await_active("Midnight Mono, Dark")
        self.search("custom")
        self.desktop.keys("Down")
        self.await_active("Night, Dark, Selected")

        self.choose_for_row("Edit")
        self.await_window_active(EDITOR)
        # By the keyboard alone: name, appearance, then a code and a picker for each colour.
        self.desktop.keys("Tab", "Tab")
        self.desktop.type("331100")
        self.desktop.keys("shift+Tab", "shift+Tab")
        self.desktop.type("Ember")
        self.desktop.keys("Return")
        self.await_ground(MAIN, "331100")
        self.await_own("Ember")

        self.await_window_active(MAIN)
        self.choose_for_row("Delete")
        self.await_own()
        await_value(lambda: self.stored_settings()["selectedThemeID"] == "system", "the system's theme")
        self.await_ground(MAIN, "000000")
        self.desktop.control("label", "No theme matches your search.")

    def test_what_is_not_saved_changes_nothing(self):
        self.open_themes()
        before = self.stored_settings()
        self.choose_option("New Custom Theme")
        self.await_window_active(EDITOR)
        self.fill("Background code", "FF0000")
        self.desktop.keys("Escape")
        self.await_window_active(MAIN)
        self.assertEqual(self.stored_settings(), before)

    def test_a_file_is_imported_twice(self):
        self.open_themes()
        mine = theme("custom-" + "1" * 8 + "-2222-4333-8444-" + "5" * 12, "Mine")
        self.import_file([mine, theme("dracula", "From elsewhere")])
        self.await_own("Mine", "From elsewhere")
        first = self.own_themes()
        self.assertTrue(all(each["category"] == "Custom" and each["id"].startswith("custom-") for each in first))
        # A theme of the user's own is known again by its name tag, and anybody else's is one more.
        self.import_file([{**mine, "name": "Mine anew"}, theme("dracula", "From elsewhere")])
        self.await_own("Mine anew", "From elsewhere", "From elsewhere")
        self.assertEqual(len({each["id"] for each in self.own_themes()}), 3)
        self.assertNotEqual(self.stored_settings()["selectedThemeID"], mine["id"])

    def test_a_friend_gets_the_same_themes(self):
        self.open_themes()
        given = [theme("a", "Früh"), theme("b", "Late", isDark=False, backgroundHex="FFFFFF", primaryHex="000000")]
        self.import_file(given)
        self.await_own("Früh", "Late")
        self.choose_option("Export JSON")
        self.await_window_active("Export Themes")
        self.desktop.keys("Return")
        exported = self.desktop.place("notlet-themes.json")
        await_value(lambda: os.path.exists(exported), "the file")
        with open(exported) as file:
            text = file.read()
        self.assertEqual(json.loads(text), self.own_themes())
        self.assertEqual([[each[field] for field in ROUND_TRIP] for each in json.loads(text)],
                         [[each[field] for field in ROUND_TRIP] for each in given])
        self.assertIn('\n    "accentHex"', text)

        sender = self.own_themes()
        self.assertEqual(self.desktop.end(self.program), 0, self.desktop.log())
        self.desktop.environment["XDG_STATE_HOME"] = self.desktop.place("friend")
        self.open_themes()
        self.import_file(text)
        friend = self.desktop.place("friend", "notlet", "shared-defaults.json")
        await_value(lambda: "customThemes" in json.load(open(friend)), "the friend to have them")
        with open(friend) as file:
            self.assertEqual(json.loads(base64.b64decode(json.load(file)["customThemes"]["base64"])), sender)

    def test_a_file_that_cannot_be_taken_is_explained_and_stores_nothing(self):
        self.open_themes()
        before = self.stored_settings()
        good = theme("a", "Good")
        cases = [
            ('[{"id": "x",\n "name": "Broken",}]', ("line 2", "column 19")),
            (json.dumps([good, {**good, "accentHex": 7}]), ("Theme 2", '"accentHex"')),
        ]
        for contents, words in cases:
            with self.subTest(words=words):
                self.import_file(contents)
                self.await_alert("Unable to import themes", *words)
                self.assertEqual(self.stored_settings(), before)

    def test_a_thousand_themes_are_taken_and_walked(self):
        self.open_themes()
        self.import_file([theme(f"t{number}", f"Theme {number}") for number in range(1000)])
        await_value(lambda: len(self.own_themes()) == 1000, "the themes")
        self.search("theme 999")
        self.desktop.keys("Down", "Return")
        self.row("Theme 999, Dark, Selected")
        self.await_ground(MAIN, "102030")

    def test_what_the_disk_does_not_take_is_told_and_stored_at_the_end(self):
        self.open_themes()
        state = self.desktop.place("state", "notlet")
        os.rename(state, state + "-away")
        with open(state, "w"):
            pass
        self.import_file([theme("a", "Mine")])
        await_value(lambda: any("not stored yet" in label.get_name()
                                for label in self.desktop.controls("label", within=MAIN)), "the notice")
        os.remove(state)
        os.rename(state + "-away", state)
        self.assertEqual(self.own_themes(), [])
        self.assertEqual(self.desktop.end(self.program), 0)
        self.await_own("Mine")

    def test_a_place_that_cannot_be_written_is_named(self):
        self.open_themes()
        self.import_file([theme("a", "Mine")])
        self.await_own("Mine")
        self.choose_option("Export JSON")
        self.choose_file("Export Themes", "/nowhere/themes.json")
        self.await_alert("Unable to export themes", "/nowhere/themes.json")


if __name__ == "__main__":
    main()
