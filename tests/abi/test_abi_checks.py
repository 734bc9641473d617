#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# The export and load checks must find what they are there for: small libraries are built, each with
# one fault planted. Environment: CC and CXX, the compilers.
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
CC = os.environ.get("CC", "cc")
CXX = os.environ.get("CXX", "c++")

HEADER = """
#define VL_EXPORT __attribute__((visibility("default")))
/* VL_EXPORT int VLInAComment(void); */
VL_EXPORT int VLOne(int (*callback)(void *),
                    void *context);
VL_EXPORT extern const int *const kVLTwo;
VL_EXPORT extern const char kVLThree[4];
"""
SOURCE = HEADER + """
static const int two = 2;
int VLOne(int (*callback)(void *), void *context) { return callback ? callback(context) : 1; }
const int *const kVLTwo = &two;
const char kVLThree[4] = "abc";
"""
MAP = "# VLNone;\nVELLUM_1 { global: VLOne; /* VLNone; */ kVLTwo; kVLThree; local: *; };\n"


class Case(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "include").mkdir()

    def build(self, name, source, *options, compiler=CC, language="c"):
        path = self.folder / name
        subprocess.run([compiler, "-shared", "-fPIC", "-x", language, "-", "-x", "none", "-o", path, *options],
                       input=source, text=True, check=True)
        return path

    def run_script(self, script, *arguments):
        done = subprocess.run([sys.executable, HERE / script, *arguments], capture_output=True, text=True)
        return done.returncode, done.stdout + done.stderr


class Exports(Case):
    def run_on(self, header=HEADER, source=SOURCE, built_map=MAP, read_map=None):
        (self.folder / "include/api.h").write_text(header)
        version_script = self.folder / "api.map"
        version_script.write_text(built_map)
        library = self.build("libapi.so", source, f"-Wl,--version-script={version_script}")
        version_script.write_text(read_map or built_map)
        return self.run_script("check_exports.py", library, version_script, self.folder / "include")

    def assert_found(self, said, **planted):
        status, output = self.run_on(**planted)
        self.assertEqual(status, 1, output)
        self.assertIn(said, output)
        self.assertIn("1 faults", output)

    def test_three_lists_that_agree_pass(self):
        self.assertEqual(self.run_on(), (0, "3 declarations, 0 faults\n"))

    def test_headers_that_declare_nothing_fail(self):
        self.assertEqual(self.run_on(header="", source="", built_map="VELLUM_1 { local: *; };")[0], 1)

    def test_a_symbol_exported_and_listed_but_not_declared_is_found(self):
        self.assert_found("VLMore: listed in the map and exported by the library, but not declared",
                          source=SOURCE + "int VLMore(void) { return 0; }",
                          built_map=MAP.replace("VLOne;", "VLOne; VLMore;"))

    def test_a_symbol_exported_but_not_listed_is_found(self):
        self.assert_found("VLLeak: exported by the library, but not",
                          source=SOURCE + "int VLLeak(void) { return 0; }",
                          built_map=MAP.replace("VLOne;", "VLOne; VLLeak;"), read_map=MAP)

    def test_a_declaration_that_is_neither_listed_nor_exported_is_found(self):
        self.assert_found("VLGone: declared in a public header, but not",
                          header=HEADER + "VL_EXPORT void VLGone(void);\n")

    def test_a_listed_symbol_that_nothing_defines_is_found(self):
        self.assert_found("VLGone: declared in a public header and listed in the map, but not exported",
                          header=HEADER + "VL_EXPORT void VLGone(void);\n",
                          built_map=MAP.replace("VLOne;", "VLOne; VLGone;"))

    def test_a_symbol_under_another_node_is_found(self):
        self.assert_found("kVLTwo: exported under VELLUM_2, listed under VELLUM_1",
                          built_map="VELLUM_1 { global: VLOne; kVLThree; local: *; };\n"
                                    "VELLUM_2 { global: kVLTwo; } VELLUM_1;\n", read_map=MAP)

    def test_a_function_declared_as_a_constant_is_found(self):
        self.assert_found("kVLTwo: declared as a constant, exported as a function",
                          source=SOURCE.replace("VL_EXPORT extern const int *const kVLTwo;", "")
                          .replace("const int *const kVLTwo = &two;", "int kVLTwo(void) { return two; }"))

    def test_a_wildcard_in_the_map_is_found(self):
        self.assert_found("lists VL*, which is no plain name", read_map=MAP.replace("VLOne;", "VLOne; VL*;"))

    def test_a_map_that_hides_nothing_is_found(self):
        self.assert_found("no node says local: *", read_map=MAP.replace("local: *;", ""))


class Needed(Case):
    def check(self, library):
        return self.run_script("check_needed.py", library, CC)

    def assert_found(self, said, library):
        status, output = self.check(library)
        self.assertEqual(status, 1, output)
        self.assertIn(said, output)

    def test_a_plain_library_passes(self):
        status, output = self.check(self.build("libplain.so", "int a(void) { return 1; }"))
        self.assertEqual(status, 0, output)

    def test_a_c_plus_plus_library_without_static_objects_passes(self):
        status, output = self.check(self.build(
            "libplain.so", "#include <string>\nstd::string a() { return {}; }", "-static-libgcc",
            compiler=CXX, language="c++"))
        self.assertEqual(status, 0, output)

    def test_a_library_off_the_list_is_found(self):
        other = self.build("libother.so", "int other(void) { return 1; }", "-Wl,-soname,libother.so.7")
        self.assert_found("needs libother.so.7",
                          self.build("libuser.so", "int other(void); int a(void) { return other(); }", other))

    def test_a_constructor_is_found_by_name(self):
        self.assert_found("starts_early", self.build(
            "libinit.so", "int x; __attribute__((constructor)) static void starts_early(void) { x = 1; }"))

    def test_a_destructor_is_found(self):
        self.assert_found(".fini_array", self.build(
            "libfini.so", "int x; __attribute__((destructor)) static void ends_late(void) { x = 1; }"))

    def test_a_static_object_with_work_is_found(self):
        self.assert_found(".init_array", self.build(
            "libobject.so", "#include <string>\nstd::string text(getenv(\"HOME\"));", compiler=CXX, language="c++"))

    def test_a_thread_local_object_that_is_plain_passes(self):
        status, output = self.check(self.build(
            "libplain.so", "constinit thread_local int *x = nullptr; int **a() { return &x; }", "-std=c++20",
            "-static-libgcc", compiler=CXX, language="c++"))
        self.assertEqual(status, 0, output)

    def test_an_object_destroyed_with_a_thread_is_found(self):
        self.assert_found("thread_local objects with destructors", self.build(
            "libthread.so", "#include <memory>\nint *a() { static thread_local std::unique_ptr<int> x; return x.get(); }",
            compiler=CXX, language="c++"))

    def test_the_stream_header_is_found(self):
        self.assert_found(".init_array", self.build("libstream.so", "#include <iostream>\n",
                                                    compiler=CXX, language="c++"))

    def test_code_in_the_init_section_is_found(self):
        self.assert_found(".init has", self.build(
            "libsection.so", '__asm__(".section .init,\\"ax\\",@progbits\\nnop\\nnop\\n.text\\n");'))


if __name__ == "__main__":
    unittest.main()
