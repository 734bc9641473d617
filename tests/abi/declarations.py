# SPDX-License-Identifier: MIT
# What the public headers declare for export: every VL_EXPORT and VAL_EXPORT declaration, by name.
import re
from typing import NamedTuple

EXPORT = re.compile(r"\b(?:VL|VAL)_EXPORT\b")
COMMENT = re.compile(r"/\*.*?\*/|//[^\n]*", re.DOTALL)
DIRECTIVE = re.compile(r"^[ \t]*#(?:[^\n\\]|\\.|\\\n)*", re.MULTILINE)


class Declaration(NamedTuple):
    name: str
    line: int
    is_function: bool


def _blank(match):
    return re.sub(r"[^\n]", " ", match.group())


def without_comments(text):
    """The text with comments and preprocessor lines blanked; places and lines stay."""
    return DIRECTIVE.sub(_blank, COMMENT.sub(_blank, text))


def _name_in(declaration):
    """(name, whether it is a function) of one declaration, without its export macro and semicolon."""
    function = re.search(r"\b(\w+)\s*\(", declaration)
    if function:
        return function.group(1), True
    variable = re.search(r"(\w+)\s*(?:\[[^\]]*\]\s*)*$", declaration)
    return (variable.group(1), False) if variable else (None, False)


def exported_declarations(text):
    """Every exported declaration of a header, in its order. Raises ValueError for one not understood."""
    code = without_comments(text)
    found = []
    for match in EXPORT.finditer(code):
        end = code.find(";", match.end())
        name, is_function = _name_in(code[match.end():end].strip()) if end >= 0 else (None, False)
        line = code.count("\n", 0, match.start()) + 1
        if name is None:
            raise ValueError(f"line {line}: no declaration that this test understands")
        found.append(Declaration(name, line, is_function))
    return found
