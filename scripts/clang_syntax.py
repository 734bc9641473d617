#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Has clang read every file that another compiler built, warnings as errors, and makes nothing of it:
# clang_syntax.py build/release/compile_commands.json [COMPILER-SUFFIX]
import concurrent.futures
import json
import os
import shlex
import subprocess
import sys

# Arguments that name what is written, or a precompiled header, without which every file must do;
# each is followed by one more.
OPTIONS_WITH_NAMES = {"-o", "-MF", "-MT", "-MQ", "-include"}
DROPPED_OPTIONS = {"-c", "-MD", "-MMD", "-Winvalid-pch"}


def clang_arguments(entry, suffix):
    """The arguments of a compile command, as clang takes them to check the file only."""
    words = entry.get("arguments") or shlex.split(entry["command"])
    compiler = "clang" if entry["file"].endswith(".c") else "clang++"
    result = [compiler + suffix, "-fsyntax-only", "-Werror"]
    words = iter(words[1:])
    for word in words:
        if word in OPTIONS_WITH_NAMES:
            next(words, None)
        elif word not in DROPPED_OPTIONS:
            result.append(word)
    return result


def read_with_clang(entry, suffix):
    done = subprocess.run(clang_arguments(entry, suffix), cwd=entry["directory"], text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return entry["file"], done.returncode, done.stdout


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        entries = json.load(file)
    suffix = sys.argv[2] if len(sys.argv) > 2 else "-14"
    # A file that several targets compile is the same to clang: once is enough.
    entries = list({entry["file"]: entry for entry in entries}.values())
    bad = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for path, status, output in pool.map(lambda entry: read_with_clang(entry, suffix), entries):
            if status or output:
                bad += 1
                print(f"{path}:\n{output}")
    print(f"clang read {len(entries)} files, {bad} of them with something to say")
    return 1 if bad or not entries else 0


if __name__ == "__main__":
    sys.exit(main())
