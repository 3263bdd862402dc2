#!/usr/bin/env python3
"""Runs what becomes of the examples in a Tcl shell: tcl_test.py TAPFORGE ...

With -tapbus -c a script runs to its end and does every scan, move and wait of its source, in their
order; the tapbus commands are stubs that print what they do. Without -c a Tcl shell stops in it."""
import pathlib, re, shutil, subprocess, sys, tempfile, unittest

PROGRAM, sys.argv[1:] = sys.argv[1:], []  # an emulator may stand in front
EXAMPLES = pathlib.Path(__file__).resolve().parent.parent / "examples"
STUBS = """
proc step {word names arguments} {
  foreach {name value} $arguments { if {$name ni $names} { error "$word has no option $name" } }
  puts $word
}
proc scan_ir_tapbus {bits args} { step "SIR $bits" {-tdi -tdo -mask} $args }
proc scan_dr_tapbus {bits args} { step "SDR $bits" {-tdi -tdo -mask} $args }
proc runtest_tapbus args { step RUNTEST {-wait -tck -end_state} $args }
proc run_state_tapbus args { puts STATE }
proc set_property {name value object} { if {$object ne "cable"} { error "no object $object" } }
set current_tapbus cable
"""
STATEMENT = re.compile(r"(?m)(?:^|;)\s*(?:((?:SIR|SDR)\s+\d+)|(STATE|RUNTEST))\b")


@unittest.skipUnless(shutil.which("tclsh"), "tclsh is not installed (package tcl)")
class Scripts(unittest.TestCase):
    def run_script(self, example, *options):
        with tempfile.TemporaryDirectory() as folder:
            script = pathlib.Path(folder, "example.tcl")
            subprocess.run([*PROGRAM, "-tapbus", *options, "-i", example, "-o", script], check=True,
                           stdout=subprocess.DEVNULL)
            script.write_text(STUBS + script.read_text())
            return subprocess.run(["tclsh", script], text=True, capture_output=True)

    def test_examples(self):
        examples = list(EXAMPLES.glob("*.svf"))
        self.assertGreater(len(examples), 3)
        for example in examples:
            with self.subTest(example.name):
                source = re.sub(r"(?m)(!|//).*$", "", example.read_text())
                steps = [" ".join((scan or move).split())
                         for scan, move in STATEMENT.findall(source)]
                done = self.run_script(example, "-c", "-max_rti_tck", "1000000")
                self.assertEqual((done.stderr, done.stdout.splitlines()), ("", steps))
                self.assertNotEqual(self.run_script(example).returncode, 0)


if __name__ == "__main__":
    unittest.main()
