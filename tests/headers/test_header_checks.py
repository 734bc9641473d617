#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# The header checks must find what they are there for: small headers, each with one fault planted.
# Environment: CC and CXX, the compilers.
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
COMPILERS = os.environ.get("CC", "cc"), os.environ.get("CXX", "c++")

GOOD_C = """#ifndef GOOD_H
#define GOOD_H
#include <stddef.h>
#define VL_EXPORT
/* ---- a banner ---- */

/*
 * One.

 * Its comment has a blank line inside.
 */
VL_EXPORT size_t VLOne(void);
VL_EXPORT size_t
    VLOneMore(size_t size); /* beside */

/* A group. */
typedef int VLNumber;
VL_EXPORT VLNumber VLTwo(void);
#endif
"""
GOOD_CXX = "#pragma once\n#include <good.h>\n#include <string>\nnamespace good { inline std::string text; }\n"


class Case(unittest.TestCase):
    def run_on(self, script, files, *arguments):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                pathlib.Path(folder, name).write_text(text)
            done = subprocess.run([sys.executable, HERE / script, folder, *arguments],
                                  capture_output=True, text=True)
            return done.returncode, done.stdout + done.stderr

    def assert_found(self, said, result):
        status, output = result
        self.assertEqual(status, 1, output)
        self.assertIn(said, output)


class Headers(Case):
    def run_with(self, **files):
        headers = {"good.h": GOOD_C, "good.hpp": GOOD_CXX}
        headers.update({name.replace("_", "."): text for name, text in files.items()})
        return self.run_on("check_headers.py", headers, *COMPILERS)

    def test_headers_that_stand_alone_pass(self):
        self.assertEqual(self.run_with(), (0, "4 compiled, 0 faults\n"))

    def test_no_header_at_all_fails(self):
        self.assertEqual(self.run_on("check_headers.py", {}, *COMPILERS)[0], 1)

    def test_a_header_that_needs_another_is_found(self):
        self.assert_found("bad.h as C11", self.run_with(bad_h="size_t VLBad(void);\n"))

    def test_a_header_without_a_guard_is_found(self):
        self.assert_found("bad.h as C++20", self.run_with(bad_h="struct Bad { int a; };\n"))

    def test_a_name_that_c_plus_plus_reserves_is_found(self):
        status, output = self.run_with(bad_h="void VLBad(int class);\n")
        self.assertEqual((status, output.count(" as ")), (1, 1), output)
        self.assertIn("bad.h as C++20", output)

    def test_a_feature_newer_than_c11_is_found(self):
        self.assert_found("bad.h as C11", self.run_with(bad_h="enum VLBad : int { kVLBad };\n"))

    def test_a_warning_is_found(self):
        self.assert_found("bad.h as C17", self.run_with(bad_h="void VLBad();\n"))

    def test_a_fault_in_a_c_plus_plus_header_is_found(self):
        self.assert_found("bad.hpp as C++20", self.run_with(bad_hpp="#pragma once\ninline std::string text;\n"))


class Docs(Case):
    def run_with(self, text):
        return self.run_on("check_docs.py", {"good.h": GOOD_C, "more.h": text})

    def test_documented_declarations_and_groups_pass(self):
        self.assertEqual(self.run_with(""), (0, "3 declarations, 0 faults\n"))

    def test_headers_that_declare_nothing_fail(self):
        self.assertEqual(self.run_on("check_docs.py", {"more.h": "/* Nothing. */\n"})[0], 1)

    def test_a_declaration_without_a_comment_is_found(self):
        self.assert_found("more.h:2: VLBare", self.run_with("\nVL_EXPORT int VLBare(void);\n"))

    def test_a_declaration_past_a_blank_line_is_found(self):
        self.assert_found("more.h:4: VLBare", self.run_with(
            "/* Good. */\nVL_EXPORT int VLGood(void);\n\nVL_EXPORT int VLBare(void);\n"))

    def test_a_banner_documents_nothing(self):
        self.assert_found("more.h:2: VLBare", self.run_with("/* ---- banner ---- */\nVL_EXPORT int VLBare(void);\n"))

    def test_a_comment_behind_the_declaration_documents_nothing(self):
        self.assert_found("more.h:1: VLBare", self.run_with("VL_EXPORT int VLBare(void); /* Beside it. */\n"))

    def test_a_comment_beside_the_line_above_documents_nothing(self):
        self.assert_found("more.h:2: VLBare", self.run_with("int other; /* Of that. */\nVL_EXPORT int VLBare(void);\n"))


if __name__ == "__main__":
    unittest.main()
