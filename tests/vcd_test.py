#!/usr/bin/env python3
"""Has sigrok-cli decode the pins that tapforge-replay writes: vcd_test.py TAPFORGE-REPLAY ...

Its jtag decoder knows one-bit signals only, starts in Run-Test/Idle, and tells each scan when the
TAP enters Update."""
import pathlib, re, shutil, subprocess, sys, tempfile, unittest

PROGRAM, sys.argv[1:] = sys.argv[1:], []  # an emulator may stand in front
EXAMPLES = pathlib.Path(__file__).resolve().parent.parent / "examples"
OWN = """TRST ON; TRST OFF; STATE RESET; ENDDR DRPAUSE; ENDIR IRPAUSE; FREQUENCY 33E3 HZ;
SIR 4 TDI (A) TDO (5); RUNTEST IRPAUSE 1 SEC; SDR 70 TDI (2A0123456789ABCDEF) TDO (0) MASK (1);
FREQUENCY 40E6 HZ; SDR 9 TDI (155) TDO (0AA); TRST ON; SDR 9 TDI (0AA) TDO (155); STATE IDLE;"""
LISTED = re.compile(r": scan \d+ (\w+) (\d+) TDI (\w+)(?: SMASK \w+)?(?: TDO (\w+) MASK (\w+))?")
DECODED = re.compile(r"(\w+) (TD[IO]): \d+ \(0x(\w+)\), (\d+) bits")


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


@unittest.skipUnless(shutil.which("sigrok-cli"), "sigrok-cli is not installed")
class Pins(unittest.TestCase):
    def test_examples(self):
        with tempfile.TemporaryDirectory() as folder:
            own, pins = pathlib.Path(folder, "own.svf"), pathlib.Path(folder, "pins")
            own.write_text(OWN)
            for file in [own, *EXAMPLES.glob("*.svf")]:
                scans = []
                for register, bits, tdi, tdo, mask in LISTED.findall(output(*PROGRAM, file)):
                    expected = int(tdo or "0", 16) & int(mask or "0", 16)
                    scans += [(register, "TDI", f"{int(tdi, 16):x}", bits),
                              (register, "TDO", f"{expected:x}", bits)]
                output(*PROGRAM, "-w", "-vcd", pins, file)
                seen = output("sigrok-cli", "-I", "vcd:compress=100", "-i", pins, "-A", "jtag",
                              "-P", "jtag:tck=tck:tms=tms:tdi=tdi:tdo=tdo_expected:trst=trst")
                with self.subTest(file.name):  # a path through Update without a shift has 0 bits
                    self.assertEqual([scan for scan in DECODED.findall(seen) if scan[3] != "0"], scans)


if __name__ == "__main__":
    unittest.main()
