#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Each public header compiles alone, in every language that it is for, without a warning; included
# twice as well as once. check_headers.py INCLUDE-FOLDER C-COMPILER C++-COMPILER
import concurrent.futures
import os
import pathlib
import subprocess
import sys

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Wsign-conversion", "-Werror"]

# (name, arguments, suffixes of the headers that are for this language)
LANGUAGES = [
    ("C11", ["-x", "c", "-std=c11", "-Wstrict-prototypes"], {".h"}),
    ("C17", ["-x", "c", "-std=c17", "-Wstrict-prototypes"], {".h"}),
    ("C++20", ["-x", "c++", "-std=c++20"], {".h", ".hpp"}),
]


def compile_header(include, header, language, compilers):
    """(label, what the compiler said or None) for one header in one language."""
    name, arguments, _ = language
    c_compiler, cxx_compiler = compilers
    compiler = cxx_compiler if name.startswith("C++") else c_compiler
    line = f"#include <{header.relative_to(include).as_posix()}>\n"
    # ISO C wants a declaration in every translation unit, which a header of macros alone has not.
    done = subprocess.run([compiler, *arguments, *WARNINGS, "-fsyntax-only", "-I", include, "-"],
                          input=line * 2 + "extern int a_declaration;\n", text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env={**os.environ, "LC_ALL": "C"})
    return f"{header.name} as {name}", done.stdout if done.returncode or done.stdout else None


def check_headers(include, compilers):
    headers = sorted(p for p in include.rglob("*.h*") if p.suffix in {".h", ".hpp"})
    jobs = [(include, header, language, compilers)
            for header in headers for language in LANGUAGES if header.suffix in language[2]]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return list(pool.map(lambda job: compile_header(*job), jobs))


def main():
    if len(sys.argv) != 4:
        sys.exit("usage: check_headers.py INCLUDE-FOLDER C-COMPILER C++-COMPILER")
    results = check_headers(pathlib.Path(sys.argv[1]), sys.argv[2:4])
    faults = [(label, said) for label, said in results if said is not None]
    for label, said in faults:
        print(f"{label}:\n{said}")
    print(f"{len(results)} compiled, {len(faults)} faults")
    sys.exit(1 if faults or not results else 0)


if __name__ == "__main__":
    main()
