#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Holds the house together: reads every #include under src/ and include/, and fails on one that runs
# upward, sideways, to a file that is not there, or past the platform to an outside library.
# check_includes.py ROOT
import pathlib
import re
import sys

# The rooms of src/ and their floors. A room includes from itself and from lower floors; two rooms
# of one floor do not know each other.
FLOORS = {
    "platform": 0,
    "values": 1,
    "ipc/encoding": 2,
    "ipc/messages": 2,
    "ipc/session": 2,
    "ipc/stream": 2,
    "describe": 3,
    "frame/registry": 3,
    "store": 4,
    "query": 5,
    "ipc/client": 6,
    "ipc/notify": 6,
    "frame/handles": 7,
    "autoactivation": 8,
    "service": 8,
    "frame/exports": 9,
    "server": 9,
    "beacon": 9,
    "tools": 10,
}

# The tool is the library's first user: it sees what every user sees.
OUTSIDERS = {"tools"}

# Headers of the outside world, and the only rooms that may know them.
OUTSIDE_HEADERS = [
    (re.compile(r"gio/gio\.h$"), {"platform", "service", "server"}),
    (re.compile(r"(glib|gmodule|gobject)([-./].*)?$|glib\.h$"), {"platform"}),
    (re.compile(r"hb(-[\w-]+)?\.h$|harfbuzz/"), {"platform", "tools"}),
    (re.compile(r"ft2build\.h$|freetype/|freetype2/"), {"platform"}),
    (re.compile(r"expat\w*\.h$"), {"platform", "tools"}),
    (re.compile(r"archive(_entry)?\.h$"), {"tools"}),
    (re.compile(r"unicode/"), {"platform"}),
    (re.compile(r"sys/"), {"platform", "tools", "service", "server", "beacon"}),
    (re.compile(r"sqlite3\.h$"), {"service", "server", "beacon"}),
    (re.compile(r"CLI/|nlohmann/"), {"tools"}),
]

SOURCES = {".c", ".cc", ".cpp", ".h", ".hpp", ".inc", ".ipp"}
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"\n]+)"|<([^>\n]+)>|(\w+))', re.MULTILINE)
COMMENT = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"', re.DOTALL)


def without_comments(text):
    """The text with comments blanked and its lines kept; strings (and so includes) stay."""
    def blank(match):
        found = match.group()
        return found if found.startswith('"') else re.sub(r"[^\n]", " ", found)
    return COMMENT.sub(blank, text)


def includes_of(path):
    """(line, quoted, angled, macro) of every include in a file; two of the last three are None."""
    text = without_comments(path.read_text(encoding="utf-8"))
    for match in INCLUDE.finditer(text):
        yield text.count("\n", 0, match.start()) + 1, *match.groups()


def room_of(relative):
    """The room that a path relative to src/ lies in, or None."""
    parts = pathlib.PurePosixPath(relative).parts
    for depth in (1, 2):
        room = "/".join(parts[:depth])
        if len(parts) > depth and room in FLOORS:
            return room
    return None


def quoted_fault(source, room, target):
    """Why a file in `room` may not include "target", or None."""
    if ".." in pathlib.PurePosixPath(target).parts or not (source / target).is_file():
        return f'"{target}" is no file under src/; includes are given from there'
    other = room_of(target)
    if other is None:
        return f'"{target}" lies in no known room'
    if other == room:
        return None
    if room in OUTSIDERS:
        return f'{room}/ includes "{target}", but may use <vellum/...> only'
    if FLOORS[other] >= FLOORS[room]:
        where = "upward" if FLOORS[other] > FLOORS[room] else "sideways"
        return (f'{room}/ (floor {FLOORS[room]}) includes {where} from {other}/ '
                f'(floor {FLOORS[other]}): "{target}"')
    return None


def angled_fault(room, target):
    """Why a file in `room` may not include <target>, or None."""
    for pattern, rooms in OUTSIDE_HEADERS:
        if pattern.match(target) and room not in rooms:
            return f"{room}/ includes <{target}>, which is for {' and '.join(sorted(rooms))} only"
    return None


def check_source(source, path):
    relative = path.relative_to(source).as_posix()
    room = room_of(relative)
    if room is None:
        yield f"src/{relative}: lies in no known room; rooms and floors stand in {__file__}"
        return
    for line, quoted, angled, macro in includes_of(path):
        if quoted is not None:
            fault = quoted_fault(source, room, quoted)
        elif angled is not None:
            fault = angled_fault(room, angled)
        else:
            fault = None if room == "platform" else f"{room}/ includes through the macro {macro}"
        if fault:
            yield f"src/{relative}:{line}: {fault}"


def check_public_header(include, path):
    """A public header stands on the standard library and on other public headers alone."""
    relative = path.relative_to(include).as_posix()
    for line, quoted, angled, macro in includes_of(path):
        of_ours = angled is not None and angled.startswith("vellum/")
        if quoted is not None or macro is not None:
            yield f"include/{relative}:{line}: a public header includes with <...> only"
        elif of_ours and not (include / angled).is_file():
            yield f"include/{relative}:{line}: <{angled}> is no public header"
        elif not of_ours and "/" in angled or any(p.match(angled) for p, _ in OUTSIDE_HEADERS):
            yield f"include/{relative}:{line}: <{angled}> is no standard header"


def files_under(folder):
    return sorted(p for p in folder.rglob("*") if p.suffix in SOURCES and p.is_file())


def check_tree(root):
    """Every fault of a project tree, and how many files were read."""
    source, include = root / "src", root / "include"
    sources, headers = files_under(source), files_under(include)
    faults = [fault for path in sources for fault in check_source(source, path)]
    faults += [fault for path in headers for fault in check_public_header(include, path)]
    return faults, len(sources) + len(headers)


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: check_includes.py ROOT")
    faults, count = check_tree(pathlib.Path(sys.argv[1]))
    print("".join(fault + "\n" for fault in faults), end="")
    print(f"{count} files read, {len(faults)} faults")
    sys.exit(1 if faults or count == 0 else 0)


if __name__ == "__main__":
    main()
