"""Installs the build, moves the tree, and uses it as strangers do: nothing outside of it but the system's packages.

install_test.py CMAKE BUILD C_COMPILER CXX_COMPILER
"""
import ctypes
import json
import math
import os
import re
import shlex
import subprocess
import sys
import tempfile
import unittest

CMAKE, BUILD, CC, CXX = sys.argv[1:5]
SOURCES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "host")


def run(*command, **options):
    # A loader path in the environment would hide a tree that does not find its own libraries.
    environment = {name: value for name, value in os.environ.items() if name != "LD_LIBRARY_PATH"}
    done = subprocess.run(command, capture_output=True, text=True, env=environment | options.pop("env", {}), **options)
    if done.returncode:
        raise AssertionError(f"{command} ended with {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


class InstalledTree(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        first = os.path.join(cls.folder.name, "first")
        cls.tree = os.path.join(cls.folder.name, "moved")
        run(CMAKE, "--install", BUILD, "--prefix", first)
        os.rename(first, cls.tree)
        cls.program = os.path.join(cls.tree, "bin", "wavedeck")

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def find(self, name):
        found = [os.path.join(at, name) for at, _, files in os.walk(self.tree) if name in files]
        self.assertEqual(len(found), 1, f"{name}: {found}")
        return found[0]

    def check_host(self, path):
        figures, message = run(path).splitlines()
        self.assertEqual(figures, "found mean 3 median 2")
        self.assertEqual(json.loads(message)["signals"][0]["channel"][0]["data"], [1, 2, 6])

    def check_peaks(self, path):
        # Sample and value, the strongest first; an end of the frame is no peak.
        self.assertEqual(run(path).splitlines(), ["3 3", "1 1"])

    def check_simulation(self, path):
        message = json.loads(run(path))
        [channel] = message["signals"][0]["channel"]
        # Two frames of four samples; the simulation begins at 2 s.
        self.assertEqual((channel["time"], channel["data"]), ([2 + 0.25 * i for i in range(8)], [1, 2, 3, 4, 5, 6, 7, 20]))
        self.assertEqual((message["simulation"]["framesProcessed"], message["simulation"]["simTime"]), (2, 3))

    def test_nothing_refers_to_the_build(self):
        libraries = [self.find(name) for name in ("libwavedeck.so", "libdspwavedecksimpl.so", "libfftbridge.so")]
        for package in ("wavedeck", "wavedeck-dev"):
            self.assertTrue(os.path.exists(os.path.join(self.tree, "share", "doc", package, "copyright")), package)
        texts = [self.find(name) for name in ("wavedeckTargets.cmake", "wavedeckConfig.cmake", "wavedeck.pc")]
        for path in [self.program, *libraries]:
            self.assertNotIn(BUILD, run("readelf", "-d", path), path)
            for library in re.findall(r"lib(?:wavedeck|fftbridge)\.so => (\S+)", run("ldd", path)):
                self.assertTrue(library.startswith(self.tree), f"{path}: {library}")
        for path in texts:
            with open(path, encoding="utf-8") as text:
                self.assertNotIn(os.path.dirname(BUILD), text.read(), path)

    def test_program_measures_and_serves(self):
        played = [self.program, "play", "gen:tone?duration=1&rate=8000&frequency=1000", "--deck", "spectrum"]
        strongest = json.loads(run(*played, "--report", "json"))["decks"][0]["peaks"]["peaks"][0]
        self.assertAlmostEqual(strongest["level"]["value"], 30 + 10 * math.log10(0.5), places=6)
        served = subprocess.Popen([*played, "--serve", "0"], stdout=subprocess.DEVNULL,
                                  stderr=subprocess.PIPE, text=True)
        try:
            address = re.search(r"http://\S+", served.stderr.readline())[0]
            page = run(sys.executable, "-c", "import sys, urllib.request as u;"
                       "print(u.urlopen(sys.argv[1]).read().decode())", address)
            self.assertIn("js/app.js", page)
        finally:
            served.terminate()
            served.communicate()

    def test_hosts_by_cmake(self):
        work = os.path.join(self.folder.name, "cmake")
        run(CMAKE, "-G", "Ninja", "-S", SOURCES, "-B", work, f"-DCMAKE_PREFIX_PATH={self.tree}",
            f"-DCMAKE_C_COMPILER={CC}", f"-DCMAKE_CXX_COMPILER={CXX}")
        run(CMAKE, "--build", work)
        self.check_host(os.path.join(work, "host"))
        self.check_peaks(os.path.join(work, "peaks"))
        self.check_simulation(os.path.join(work, "simulation"))

    def test_hosts_by_pkg_config(self):
        found = {"env": {"PKG_CONFIG_PATH": os.path.dirname(self.find("wavedeck.pc"))}}
        flags = shlex.split(run("pkg-config", "--cflags", "--libs", "wavedeck", **found))
        library = run("pkg-config", "--variable=stage_library", "wavedeck", **found).strip()
        loader = f"-Wl,-rpath,{os.path.dirname(library)}"
        for compiler, source, extra, check in (
                (CXX, "host.cpp", ["-std=c++20"], self.check_host),
                (CC, "peaks.c", ["-std=c11", "-lm"], self.check_peaks),
                (CXX, "peaks.c", ["-xc++", "-std=c++20"], self.check_peaks)):
            path = os.path.join(self.folder.name, "by_pkg_config")
            run(compiler, *extra, os.path.join(SOURCES, source), "-o", path, *flags, loader)
            check(path)

    def test_query_from_another_language(self):
        host = ctypes.CDLL(self.find("libwavedeck.so"))
        for name in ("open_library", "new_client", "new_options", "query", "field", "doubles"):
            getattr(host, "wavedeck_" + name).restype = ctypes.c_void_p
        host.wavedeck_error.restype = host.wavedeck_update.restype = ctypes.c_char_p
        pointer = ctypes.c_void_p

        class Signal(ctypes.Structure):
            _fields_ = [("channels", ctypes.c_int), ("is_complex", ctypes.c_int), ("sample_time", ctypes.c_double),
                        ("frame_size", ctypes.c_int), ("is_input_port", ctypes.c_int)]

        library = pointer(host.wavedeck_open_library(b"libdspwavedecksimpl.so"))
        self.assertTrue(library, host.wavedeck_error())
        client = pointer(host.wavedeck_new_client(library, b"python", b"dsp_wavedeck_frame_data_strategy",
                                                  ctypes.byref(Signal(1, 0, 1.0, 5)), ctypes.c_size_t(1)))
        options = pointer(host.wavedeck_new_options())
        host.wavedeck_add_logicals(options, b"peakFinderEnabled", (ctypes.c_int * 1)(1), ctypes.c_size_t(1))
        done = [host.wavedeck_add_stage(client, b"magnitude_phase_filter", None),
                host.wavedeck_add_stage(client, b"peak_finder_filter", options), host.wavedeck_setup(client),
                host.wavedeck_frame(client, (ctypes.c_double * 5)(0, 0, 7, 0, 0), ctypes.c_size_t(5))]
        self.assertEqual(done, [1, 1, 1, 1], host.wavedeck_error())
        peaks = pointer(host.wavedeck_query(client, b"getPeakFinderDataImpl"))
        value = pointer(host.wavedeck_field(peaks, ctypes.c_size_t(0), b"Value"))
        self.assertEqual(ctypes.c_double.from_address(host.wavedeck_doubles(value)).value, 7.0)
        self.assertIn("peaks", json.dumps(json.loads(host.wavedeck_update(client))))
        self.assertIsNone(host.wavedeck_query(None, b"getPeakFinderDataImpl"))
        self.assertEqual(host.wavedeck_error(), b"no client was given")
        host.wavedeck_free_array(peaks)
        host.wavedeck_free_client(client)

    def test_manual_page_tells_all_options(self):
        with open(self.find("wavedeck.1"), encoding="utf-8") as text:
            page = text.read().replace("\\-", "-")
        helps = [run(self.program, *command, "--help") for command in ([], ["play"], ["run"], ["options"])]
        options = set(re.findall(r"--[a-z-]+", "".join(helps)))
        self.assertGreater(len(options), 10)
        for option in options:
            self.assertIn(option, page)
        self.assertIn("Usage: wavedeck play [OPTIONS]", helps[1])

    def test_completion(self):
        script = next(os.path.join(at, "wavedeck") for at, _, _ in os.walk(self.tree) if at.endswith("completions"))

        def completed(*words):
            quoted = " ".join(map(shlex.quote, ("wavedeck", *words)))
            return run("bash", "-c", f"source {shlex.quote(script)}; COMP_WORDS=({quoted}) COMP_CWORD={len(words)};"
                       "_wavedeck; printf '%s\\n' \"${COMPREPLY[@]}\"").split()

        self.assertEqual(completed("pl"), ["play"])
        self.assertEqual(completed("play", "--dec"), ["--deck"])
        self.assertEqual(completed("play", "--measure", "stats,pea"), ["stats,peaks"])
        self.assertEqual(completed("play", "--format", "cs1"), ["cs16", "cs16_be"])
        self.assertEqual(completed("play", "gen", ":", "mult"), ["multitone"])
        self.assertEqual(completed("play", "--set", "trigger_filter.hyst"), ["trigger_filter.hysteresis="])
        self.assertIn("trigger_filter", completed("options", "tr"))
        # The words are those that the program itself allows, all of them and no others.
        for option, other in (("--deck", []), ("--measure", ["none"])):
            refused = subprocess.run([self.program, "play", "gen:tone", option, "?"], capture_output=True, text=True)
            allowed = refused.stderr.split(" is none of ")[1].split()
            self.assertEqual(sorted(completed("play", option, "")), sorted(allowed + other))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
