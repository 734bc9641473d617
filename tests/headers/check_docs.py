#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Every exported declaration is documented: a comment stands right above it, or above the group of
# lines that it is in (a blank line ends a group). A banner line documents nothing.
# check_docs.py HEADER-FOLDER
import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "abi"))
from declarations import exported_declarations  # noqa: E402

BANNER = re.compile(r"/\*\s*-{3,}.*-{3,}\s*\*/", re.DOTALL)
COMMENT = re.compile(r"/\*.*?\*/|//[^\n]*", re.DOTALL)


def mark_comments(text):
    """The text by lines, with each comment's lines, blank ones too, turned into marks.

    A line that a comment stands on its own on is "#"; a banner's is empty, as if a gap stood there.
    """
    def mark(match):
        found = match.group()
        filler = "" if BANNER.fullmatch(found) else "#"
        return "\n".join(filler for _ in found.split("\n"))
    return COMMENT.sub(mark, text).split("\n")


def is_documented(lines, number):
    """Whether the declaration on a line (from 1) has a comment above it in its group."""
    for line in reversed(lines[:number - 1]):
        line = line.strip()
        if not line:
            return False
        if set(line) == {"#"}:
            return True
    return False


def undocumented(text):
    lines = mark_comments(text)
    return [d for d in exported_declarations(text) if not is_documented(lines, d.line)]


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: check_docs.py HEADER-FOLDER")
    headers = sorted(pathlib.Path(sys.argv[1]).glob("*.h*"))
    faults = 0
    declarations = 0
    for header in headers:
        text = header.read_text(encoding="utf-8")
        declarations += len(exported_declarations(text))
        for declaration in undocumented(text):
            faults += 1
            print(f"{header.name}:{declaration.line}: {declaration.name} has no comment above it or its group")
    print(f"{declarations} declarations, {faults} faults")
    sys.exit(1 if faults or not declarations else 0)


if __name__ == "__main__":
    main()
