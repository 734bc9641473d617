#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# The include checker must find what it is there for: each case plants one include in an otherwise
# clean tree.
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECKER = pathlib.Path(__file__).with_name("check_includes.py")

CLEAN = {
    "src/platform/val/object.hpp": "#pragma once\n#include <vellum/values.h>\n#include <glib.h>\n",
    "src/platform/font/face.cpp": '#include "platform/val/object.hpp"\n#include FT_FREETYPE_H\n#include <hb.h>\n',
    "src/values/text.hpp": '#include "platform/val/object.hpp"\n#include <string>\n',
    "src/ipc/stream/stream.hpp": '#include "values/text.hpp"\n',
    "src/describe/entity.hpp": '#include "values/text.hpp"\n#include "ipc/stream/stream.hpp"\n',
    "src/frame/registry/base.hpp": '#include "values/text.hpp"\n',
    "src/store/index.hpp": '#include "frame/registry/base.hpp"\n#include "describe/entity.hpp"\n',
    "src/store/index.cpp": '#include "store/index.hpp"\n',
    "src/query/match.cpp": '// #include "tools/own.hpp"\n/*\n#include "tools/own.hpp"\n*/\n'
                           '#include "store/index.hpp"\n',
    "src/frame/exports/api.cpp": '#include "store/index.hpp"\n#include <vellum/values.h>\n',
    "src/tools/own.hpp": "#include <vellum/values.h>\n",
    "src/tools/main.cpp": '#include "tools/own.hpp"\n#include <CLI/CLI.hpp>\n#include <sys/ioctl.h>\n',
    "include/vellum/values.h": "#include <stddef.h>\n",
    "include/vellum/values.hpp": "#include <vellum/values.h>\n#include <utility>\n",
}

# (file, line that is added to it, a part of what must be said)
PLANTED = [
    ("src/store/index.hpp", '#include "frame/exports/api.cpp"', "upward from frame/exports/"),
    ("src/values/text.hpp", '#  include "describe/entity.hpp"', "upward from describe/"),
    ("src/platform/val/object.hpp", '#include "values/text.hpp"', "upward from values/"),
    ("src/describe/entity.hpp", '#include "frame/registry/base.hpp"', "sideways from frame/registry/"),
    ("src/frame/registry/base.hpp", '#include "describe/entity.hpp"', "sideways from describe/"),
    ("src/tools/main.cpp", '#include "values/text.hpp"', "<vellum/...> only"),
    ("src/frame/exports/api.cpp", '#include "tools/own.hpp"', "upward from tools/"),
    ("src/values/text.hpp", '#include "text.hpp"', "no file under src/"),
    ("src/values/text.hpp", '#include "../values/text.hpp"', "no file under src/"),
    ("src/values/text.hpp", '#include "values/gone.hpp"', "no file under src/"),
    ("src/values/text.hpp", "#include <glib.h>", "<glib.h>"),
    ("src/values/text.hpp", "#include <glib/gstdio.h>", "<glib/gstdio.h>"),
    ("src/describe/entity.hpp", "#include <hb.h>", "<hb.h>"),
    ("src/describe/entity.hpp", "#include <hb-ot.h>", "<hb-ot.h>"),
    ("src/tools/main.cpp", "#include <ft2build.h>", "<ft2build.h>"),
    ("src/store/index.cpp", "#include <ft2build.h>", "<ft2build.h>"),
    ("src/store/index.cpp", "#include FT_FREETYPE_H", "macro FT_FREETYPE_H"),
    ("src/store/index.cpp", "#include <expat.h>", "<expat.h>"),
    ("src/store/index.cpp", "#include <sys/stat.h>", "<sys/stat.h>"),
    ("src/store/index.cpp", "#include <nlohmann/json.hpp>", "<nlohmann/json.hpp>"),
    ("src/attic/old.cpp", "", "no known room"),
    ("src/frame/loose.cpp", "", "no known room"),
    ("src/loose.cpp", "", "no known room"),
    ("include/vellum/values.h", '#include "values.h"', "with <...> only"),
    ("include/vellum/values.h", "#include <glib.h>", "no standard header"),
    ("include/vellum/values.h", "#include <sys/types.h>", "no standard header"),
    ("include/vellum/values.h", "#include <vellum/gone.h>", "no public header"),
]


class CheckIncludes(unittest.TestCase):
    def run_on(self, files):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                path = pathlib.Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            done = subprocess.run([sys.executable, CHECKER, folder], capture_output=True, text=True)
            return done.returncode, done.stdout + done.stderr

    def test_a_clean_tree_passes(self):
        self.assertEqual(self.run_on(CLEAN), (0, f"{len(CLEAN)} files read, 0 faults\n"))

    def test_an_empty_tree_fails(self):
        self.assertEqual(self.run_on({})[0], 1)

    def test_each_planted_fault_is_found_alone(self):
        for file, line, said in PLANTED:
            with self.subTest(file=file, line=line):
                files = dict(CLEAN)
                files[file] = files.get(file, "") + line + "\n"
                status, output = self.run_on(files)
                self.assertEqual(status, 1)
                self.assertIn(said, output)
                self.assertIn("1 faults", output)
                self.assertIn(file, output)


if __name__ == "__main__":
    unittest.main()
