#!/usr/bin/env python3
"""Runs Tcl in a Tcl shell: tcl_test.py [EMULATOR ...] TAPFORGE TAPFORGE-REPLAY

With -tapbus -c a script runs to its end and does every scan, move and wait of its source, in their
order; the tapbus commands are stubs that print what they do. Without -c a Tcl shell stops in it.
tapforge-replay lists what the shell does, and refuses what stops the shell or is changed by it."""
import pathlib, re, shutil, subprocess, sys, tempfile, unittest

*EMULATOR, TAPFORGE, REPLAY = sys.argv[1:]
del sys.argv[1:]
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
RUN = ["""# [exit] $x " { ; scan_ir_tapbus 1 -tdi 1
\tscan_ir_tapbus  8 -tdi {2C} -mask "FF";;run_state_tapbus Idle\r\n; # run_state_tapbus IDLE\v
puts "--- line 3";scan_dr_tapbus 4 -tdi 0""",
       "# \\\r\nrun_state_tapbus IDLE\rrun_state_tapbus\vRESET\r", """# C:\\work\\
scan_ir_tapbus 8 -tdi 01
# C:\\\\
scan_ir_tapbus 9 -tdi 01 -tdo 01
set_property ENDSTATE_DR {DRPAUSE} $current_tapbus
runtest_tapbus -wait DRPAUSE -tck 7 -tck 8 -end_state idle"""]
REFUSED = ["scan_ir_tapbus 8 -tdi 01 # x", "run_state_tapbus IDLE ! pause \"x", "SIR 8 TDI (01);",
           "SCAN_IR_TAPBUS 8 -tdi 01", "scan_ir_tapbus 8 -TDI 01", "scan_ir_tapbus 8 -tdi (01)",
           "runtest_tapbus -tck [llength x]", "runtest_tapbus -tck $x", "runtest_tapbus -tck {1}2",
           "runtest_tapbus \\\n-tck 1", "set_property hir_length {4} {$current_tapbus}",
           "set_property hir_length {4} $current_tapbus ! x", "runtest_tapbus -tck 1 -wait"]
STATEMENT = re.compile(r"(?m)(?:^|;)\s*(?:((?:SIR|SDR)\s+\d+)|(STATE|RUNTEST))\b")


@unittest.skipUnless(shutil.which("tclsh"), "tclsh is not installed (package tcl)")
class Scripts(unittest.TestCase):
    def run_script(self, svf, options=""):
        """What a shell says against the script of an SVF text, and what this prints."""
        with tempfile.TemporaryDirectory() as folder:
            source, script = (pathlib.Path(folder, name) for name in ("in.svf", "out.tcl"))
            source.write_text(svf)
            command = [*EMULATOR, TAPFORGE, "-tapbus", *options.split(), "-i", source, "-o", script]
            subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
            script.write_text(STUBS + script.read_text())
            done = subprocess.run(["tclsh", script], text=True, capture_output=True)
            return done.stderr, done.stdout.splitlines()

    def test_examples(self):
        examples = list(EXAMPLES.glob("*.svf"))
        self.assertGreater(len(examples), 3)
        for example in examples:
            with self.subTest(example.name):
                text = example.read_text()
                source = re.sub(r"(?m)(!|//).*$", "", text)
                steps = [" ".join((scan or move).split())
                         for scan, move in STATEMENT.findall(source)]
                self.assertEqual(self.run_script(text, "-c -max_rti_tck 1000000"), ("", steps))
                self.assertNotEqual(self.run_script(text)[0], "")
                if "PIO" in source:
                    continue
                # Comments that would stop a shell, or be run by it.
                odd = text.replace(";\n", ";! $x [exit] \"{ \x1a\\\n") + "\n"
                done = self.run_script(odd, "-exact -max_rti_tck 1000000 -tck_freq 1000000")
                self.assertEqual(done, ("", steps))

    def test_replay(self):
        kinds = {"wait": "RUNTEST", "move": "STATE"}
        with tempfile.TemporaryDirectory() as folder:
            script, stubs = pathlib.Path(folder, "script.tcl"), pathlib.Path(folder, "stubs.tcl")
            stubs.write_text(STUBS + f"source {{{script}}}")
            for text in RUN + REFUSED:
                script.write_bytes(("#\n" + text).encode())
                done, listed = (subprocess.run(command, text=True, capture_output=True)
                                for command in (["tclsh", stubs], [*EMULATOR, REPLAY, script]))
                lines = [line.split()[2:] for line in listed.stdout.splitlines()
                         if " end " not in line]
                steps = [kinds.get(words[0], "S" + " ".join(words[2:4])) for words in lines]
                with self.subTest(text):
                    self.assertEqual(listed.returncode, 2 if text in REFUSED else 0, listed.stderr)
                    if text in RUN:
                        shell = [line for line in done.stdout.splitlines() if line[:2] != "--"]
                        self.assertEqual((done.stderr, shell), ("", steps))


if __name__ == "__main__":
    unittest.main()
