#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# The library exports exactly what the public headers declare and the version script lists: nothing
# missing, nothing more, each symbol under the script's own version node.
# check_exports.py LIBRARY MAP HEADER-FOLDER
import pathlib
import re
import subprocess
import sys

from declarations import exported_declarations

MAP_COMMENT = re.compile(r"/\*.*?\*/|#[^\n]*", re.DOTALL)
NODE = re.compile(r"(\w[\w.]*)\s*\{(.*?)\}\s*(?:\w[\w.]*)?\s*;", re.DOTALL)


def declared_symbols(folder):
    """{name: is_function} of every header in the folder."""
    found = {}
    for header in sorted(folder.glob("*.h*")):
        for declaration in exported_declarations(header.read_text(encoding="utf-8")):
            found[declaration.name] = declaration.is_function
    return found


def listed_symbols(text):
    """{name: node} of a version script, and the faults of the script itself."""
    text = MAP_COMMENT.sub(" ", text)
    found, faults = {}, []
    for node, body in NODE.findall(text):
        is_global = True
        for word in re.findall(r"[^\s;]+", body):
            if word in ("global:", "local:"):
                is_global = word == "global:"
            elif not is_global:
                if word != "*":
                    faults.append(f"map: {node} lists {word} as local; only * belongs there")
            elif not re.fullmatch(r"\w+", word):
                faults.append(f"map: {node} lists {word}, which is no plain name")
            elif word in found:
                faults.append(f"map: {word} is listed twice")
            else:
                found[word] = node
    if not re.search(r"local:\s*\*\s*;", text):
        faults.append("map: no node says local: *")
    return found, faults


def exported_symbols(library):
    """{name: (node or None, is_function)} of the dynamic symbols that a library defines."""
    table = subprocess.run(["readelf", "--dyn-syms", "--wide", library], check=True,
                           capture_output=True, text=True, env={"LC_ALL": "C", "PATH": "/usr/bin:/bin"})
    found = {}
    for line in table.stdout.splitlines():
        fields = line.split()
        if len(fields) < 8 or not fields[0].rstrip(":").isdigit():
            continue
        kind, section, symbol = fields[3], fields[6], fields[7]
        if section in ("UND", "ABS") or kind in ("SECTION", "FILE"):
            continue  # ABS: the version nodes themselves
        name, _, node = symbol.partition("@")
        found[name] = (node.lstrip("@") or None, kind in ("FUNC", "IFUNC"))
    return found


def compare(declared, listed, exported):
    for name in sorted(set(declared) | set(listed) | set(exported)):
        places = {"declared in a public header": name in declared, "listed in the map": name in listed,
                  "exported by the library": name in exported}
        if not all(places.values()):
            yield (f"{name}: {' and '.join(p for p, is_there in places.items() if is_there)}, but not "
                   f"{' and not '.join(p for p, is_there in places.items() if not is_there)}")
            continue
        node, is_function = exported[name]
        if node != listed[name]:
            yield f"{name}: exported under {node}, listed under {listed[name]}"
        if is_function != declared[name]:
            kinds = {True: "a function", False: "a constant"}
            yield f"{name}: declared as {kinds[declared[name]]}, exported as {kinds[is_function]}"


def main():
    if len(sys.argv) != 4:
        sys.exit("usage: check_exports.py LIBRARY MAP HEADER-FOLDER")
    library, version_script, headers = sys.argv[1:]
    declared = declared_symbols(pathlib.Path(headers))
    listed, faults = listed_symbols(pathlib.Path(version_script).read_text(encoding="utf-8"))
    faults += compare(declared, listed, exported_symbols(library))
    print("".join(fault + "\n" for fault in faults), end="")
    print(f"{len(declared)} declarations, {len(faults)} faults")
    sys.exit(1 if faults or not declared else 0)


if __name__ == "__main__":
    main()
