#!/usr/bin/env python3
"""Hold every #include under src/ against the arrows declared in src/CMakeLists.txt.

usage: check_arrows.py SOURCE_DIR ARROWS_FILE

Each line of ARROWS_FILE reads "folder qt-level: used folders". Exits 1 and names file and line of
each include of a folder that the including one does not use, of a Qt header above its Qt level, and
of each folder that holds sources without being declared.
"""
import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s+([<"])([^>"]+)[>"]')
WIDGET_HEADERS = re.compile(
    r"Q(Widget|Application|Painter|Pixmap|Image|Icon|Color|Font|Palette|PlainTextEdit|TextEdit|Label|"
    r"PushButton|ToolButton|Layout|VBoxLayout|HBoxLayout|MessageBox|Svg\w*|Window|Screen|GuiApplication|"
    r"Accessible\w*|KeyEvent|MouseEvent|Style\w*|Text(Document|Layout|Cursor|Block))$")


def read_arrows(path):
    arrows = {}
    for line in path.read_text().splitlines():
        head, _, uses = line.partition(":")
        folder, level = head.split()
        arrows[folder] = (level, set(uses.split()))
    return arrows


def folder_of(relative, folders):
    """The longest declared folder that the path lies in, or None."""
    parts = pathlib.PurePosixPath(relative).parent.parts
    while parts:
        candidate = "/".join(parts)
        if candidate in folders:
            return candidate
        parts = parts[:-1]
    return None


def complaints(source, arrows):
    for path in sorted([*source.rglob("*.h"), *source.rglob("*.cpp")]):
        relative = path.relative_to(source).as_posix()
        folder = folder_of(relative, arrows)
        if folder is None or folder != pathlib.PurePosixPath(relative).parent.as_posix():
            yield f"{relative}: lies in no declared module"
            continue
        level, uses = arrows[folder]
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            kind, name = match.groups()
            if kind == "<":
                if level == "none" and re.match(r"Q[A-Z]|Qt", name):
                    yield f"{relative}:{number}: {folder} is free of Qt but includes <{name}>"
                if level == "Core" and WIDGET_HEADERS.match(name):
                    yield f"{relative}:{number}: {folder} has no windows but includes <{name}>"
                continue
            target = folder_of(name, arrows)
            if target is None:
                if not name.endswith(".moc"):
                    yield f'{relative}:{number}: "{name}" is not in a declared module'
            elif target != folder and target not in uses:
                yield f"{relative}:{number}: {folder} does not use {target}, yet includes \"{name}\""


def main():
    source, arrows_file = map(pathlib.Path, sys.argv[1:3])
    arrows = read_arrows(arrows_file)
    found = list(complaints(source, arrows))
    for line in found:
        print(line)
    print(f"{len(arrows)} modules, {len(found)} includes against the arrows")
    return 1 if found or not arrows else 0


if __name__ == "__main__":
    sys.exit(main())
