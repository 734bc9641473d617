#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# The package as its users meet it: installed into an empty folder, moved, then built against through
# pkg-config and through find_package. Environment: VELLUM_BUILD, VELLUM_SOURCE, VELLUM_VERSION,
# VELLUM_GENERATOR, VELLUM_LEGACY (1: with the legacy font service), VELLUM_COMPANION (1: with the companion), CMAKE, CC, CXX.
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

BUILD, SOURCE, VERSION, GENERATOR, CMAKE, CC, CXX = (
    os.environ[name] for name in ("VELLUM_BUILD", "VELLUM_SOURCE", "VELLUM_VERSION", "VELLUM_GENERATOR",
                                  "CMAKE", "CC", "CXX"))
LEGACY = os.environ["VELLUM_LEGACY"] == "1"
COMPANION = os.environ["VELLUM_COMPANION"] == "1"
HERE = pathlib.Path(__file__).resolve().parent
FONT = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
EXPECTED = "file public.truetype-ttf-font\n"


def run(*command, **options):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, **options)
    if done.returncode:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}")
    return done.stdout


class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.scratch = pathlib.Path(folder.name)
        run(CMAKE, "--install", BUILD, "--prefix", cls.scratch / "first")
        # Nothing that is installed may know where it was installed to.
        cls.prefix = cls.scratch / "a prefix"
        (cls.scratch / "first").rename(cls.prefix)
        cls.pkgconfig = cls.only("vellum.pc").parent
        cls.libraries = cls.pkgconfig.parent

    @classmethod
    def only(cls, pattern):
        found = list(cls.prefix.rglob(pattern))
        assert len(found) == 1, f"{pattern}: {found}"
        return found[0]

    def user_environment(self, **more):
        """What a user's program runs in: no path of the build, a home of its own."""
        home = self.scratch / "home"
        home.mkdir(exist_ok=True)
        return {"PATH": os.environ["PATH"], "HOME": str(home), "LC_ALL": "C.UTF-8", **more}

    def run_consumer(self, program, **environment):
        return run(program, FONT, env=self.user_environment(**environment))

    def pkg_config(self, *options):
        environment = self.user_environment(PKG_CONFIG_PATH=str(self.pkgconfig))
        return run("pkg-config", *options, "vellum", env=environment)

    def build_by_pkg_config(self, compiler, source, *options):
        program = self.scratch / f"{source}.program"
        flags = self.pkg_config("--cflags", "--libs")
        # The flags are quoted for a shell: the prefix has a space in it.
        run("sh", "-c", f'"$@" {flags.strip()}', "sh", compiler, *options, "-Wall", "-Wextra", "-Werror",
            HERE / source, "-o", program)
        return program

    def test_pkg_config_tells_the_version(self):
        self.assertEqual(self.pkg_config("--modversion"), VERSION + "\n")

    def test_a_c_program_builds_by_pkg_config_and_runs(self):
        program = self.build_by_pkg_config(CC, "consumer.c", "-std=c11")
        self.assertEqual(self.run_consumer(program, LD_LIBRARY_PATH=str(self.libraries)), EXPECTED)

    def test_a_c_plus_plus_program_builds_by_pkg_config_and_runs(self):
        program = self.build_by_pkg_config(CXX, "consumer.cpp", "-std=c++20")
        self.assertEqual(self.run_consumer(program, LD_LIBRARY_PATH=str(self.libraries)), EXPECTED)

    def configure_consumer(self, folder, version):
        return run(CMAKE, "-S", HERE, "-B", folder, "-G", GENERATOR, f"-DCMAKE_PREFIX_PATH={self.prefix}",
                   f"-DCMAKE_C_COMPILER={CC}", f"-DCMAKE_CXX_COMPILER={CXX}",
                   f"-DVELLUM_WANTED_VERSION={version}", env=self.user_environment())

    def test_programs_build_by_find_package_and_run(self):
        folder = self.scratch / "by-cmake"
        self.configure_consumer(folder, VERSION)
        run(CMAKE, "--build", folder)
        for program in ("consumer_c", "consumer_cpp"):
            self.assertEqual(self.run_consumer(folder / program), EXPECTED)

    def test_find_package_refuses_a_version_that_is_not_compatible(self):
        with self.assertRaisesRegex(AssertionError, "requested version"):
            self.configure_consumer(self.scratch / "too-new", "99.0")

    def test_the_tool_finds_the_library_beside_it(self):
        tool = self.prefix / "bin/vellum"
        resolved = run("ldd", tool, env=self.user_environment())
        self.assertIn(str(self.libraries / "libvellum.so.1"), resolved.replace("bin/../", ""))
        self.assertIn("inspect", run(tool, "--help", env=self.user_environment()))

    @unittest.skipUnless(LEGACY, "built without the legacy font service")
    def test_the_legacy_font_service_finds_the_library_above_it(self):
        bundle = self.libraries / "vellum/Fount.framework/Fount.so"
        resolved = run("ldd", bundle, env=self.user_environment())
        self.assertIn(str(self.libraries / "libvellum.so.1"), resolved.replace("vellum/Fount.framework/../../", ""))
        self.assertTrue((bundle.parent / "Resources").is_dir())

    @unittest.skipUnless(LEGACY, "built without the legacy font service")
    def test_the_legacy_font_service_exports_the_functions_of_its_contract_and_nothing_else(self):
        header = pathlib.Path(SOURCE, "include/vellum/fount.h").read_text(encoding="utf-8")
        wanted = set(re.findall(r"\b(Fount\w+)Function\(", header))
        symbols = run("nm", "-D", "--defined-only", self.libraries / "vellum/Fount.framework/Fount.so")
        exported = {line.split()[-1].split("@")[0] for line in symbols.splitlines() if " A " not in line}
        self.assertEqual(len(wanted), 6)
        self.assertEqual(exported, wanted)

    @unittest.skipUnless(COMPANION, "built without the companion")
    def test_the_companion_lies_in_the_resources_and_exports_its_contract_and_nothing_else(self):
        companion = self.libraries / "vellum/Fount.framework/Resources/libGlypharyUI.so"
        resolved = run("ldd", companion.resolve(), env=self.user_environment())
        self.assertIn(str(self.libraries / "libvellum.so.1"), resolved.replace("vellum/../", ""))
        header = pathlib.Path(SOURCE, "include/vellum/glyphary_ui.h").read_text(encoding="utf-8")
        wanted = set(re.findall(r"\b(\w+)Function\(", header))
        symbols = run("nm", "-D", "--defined-only", companion)
        exported = {line.split()[-1].split("@")[0] for line in symbols.splitlines() if " A " not in line}
        self.assertEqual(len(wanted), 3)
        self.assertEqual(exported, wanted)

    def test_every_public_header_is_installed_and_nothing_else(self):
        wanted = {p.name for p in pathlib.Path(SOURCE, "include/vellum").iterdir()}
        self.assertEqual({p.name for p in (self.prefix / "include/vellum").iterdir()}, wanted)

    def test_no_installed_text_names_the_build_or_the_sources(self):
        for path in [*self.prefix.rglob("*.pc"), *self.prefix.rglob("*.cmake"), *self.prefix.rglob("*.h*")]:
            text = path.read_text(encoding="utf-8")
            for place in (BUILD, SOURCE, str(self.scratch)):
                self.assertNotIn(place, text, path)

    def test_the_soname_is_the_one_that_programs_record(self):
        dynamic = run("readelf", "-d", self.libraries / "libvellum.so")
        self.assertIn("[libvellum.so.1]", dynamic)
        self.assertNotIn("RUNPATH", dynamic)
        self.assertNotIn("RPATH", dynamic)


if __name__ == "__main__":
    unittest.main()
