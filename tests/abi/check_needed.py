#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# What loading the library costs every process: it needs only the libraries of a short list, and
# runs nothing at load that an empty library would not run. Nor has it objects that are destroyed with a
# thread: using one for the first time waits for the loader, which another thread may have.
# check_needed.py LIBRARY COMPILER
import os
import re
import subprocess
import sys
import tempfile

NEEDED = {"libc.so.6", "libm.so.6", "libstdc++.so.6"}
LOADER = re.compile(r"ld-linux[\w.-]*\.so\.\d+$")

# The sections whose code, or whose functions, the loader runs.
LOAD_SECTIONS = [".init", ".init_array", ".preinit_array", ".ctors", ".fini", ".fini_array", ".dtors"]


def readelf(library, *options):
    done = subprocess.run(["readelf", "--wide", *options, library], check=True, capture_output=True,
                          text=True, env={"LC_ALL": "C", "PATH": "/usr/bin:/bin"})
    return done.stdout


def needed_libraries(library):
    return re.findall(r"\(NEEDED\).*\[(.*)\]", readelf(library, "--dynamic"))


def load_sections(library):
    """{section: (address, size)} of those sections that run at load or unload."""
    rows = re.findall(r"\]\s+(\.\S+)\s+\S+\s+([0-9a-f]+)\s+[0-9a-f]+\s+([0-9a-f]+)",
                      readelf(library, "--section-headers"))
    return {name: (int(address, 16), int(size, 16)) for name, address, size in rows if name in LOAD_SECTIONS}


def functions_in_array(library, address, size):
    """The names of the functions whose addresses the loader puts into an array, where they are known."""
    targets = {int(addend, 16) for place, addend in
               re.findall(r"^([0-9a-f]+)\s+\S+\s+R_\w+_RELATIVE\s+([0-9a-f]+)", readelf(library, "--relocs"), re.MULTILINE)
               if address <= int(place, 16) < address + size}
    symbols = re.findall(r"^\s*\d+:\s+([0-9a-f]+)\s+\S+\s+FUNC\s+\S+\s+\S+\s+\S+\s+(\S+)",
                         readelf(library, "--symbols"), re.MULTILINE)
    return sorted({name for value, name in symbols if int(value, 16) in targets})


def empty_library(compiler, folder):
    """What the compiler and the C library put into any shared library: one made from nothing."""
    path = os.path.join(folder, "libempty.so")
    subprocess.run([compiler, "-shared", "-fPIC", "-x", "c", os.devnull, "-o", path], check=True)
    return path


def registers_at_threads(library):
    """Whether the library has what is destroyed with a thread: the compiler then asks the C++ or C library for it."""
    return re.search(r"\sUND\s+__cxa_thread_atexit", readelf(library, "--dyn-syms")) is not None


def faults_of(library, compiler):
    if registers_at_threads(library):
        yield "has thread_local objects with destructors"
    for name in needed_libraries(library):
        if name not in NEEDED and not LOADER.match(name):
            yield f"needs {name}, which is not on the list"
    with tempfile.TemporaryDirectory() as folder:
        allowed = load_sections(empty_library(compiler, folder))
    for section, (address, size) in sorted(load_sections(library).items()):
        limit = allowed.get(section, (0, 0))[1]
        if size > limit:
            functions = functions_in_array(library, address, size)
            yield (f"{section} has {size} bytes where an empty library has {limit}: code runs at load or "
                   f"unload{': ' + ', '.join(functions) if functions else ''}")


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: check_needed.py LIBRARY COMPILER")
    faults = list(faults_of(sys.argv[1], sys.argv[2]))
    print("".join(f"{sys.argv[1]}: {fault}\n" for fault in faults), end="")
    print(f"needs {' '.join(needed_libraries(sys.argv[1]))}; {len(faults)} faults")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
