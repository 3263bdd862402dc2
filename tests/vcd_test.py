#!/usr/bin/env python3
"""Has sigrok-cli decode the pins of tapforge-replay: vcd_test.py [EMULATOR ...] TAPFORGE-REPLAY

Its jtag decoder knows signals of one bit and tells each scan when the TAP enters Update."""
import pathlib, re, shutil, subprocess, sys, tempfile

EXAMPLES = pathlib.Path(__file__).resolve().parent.parent / "examples"
OWN = """TRST ON; TRST OFF; STATE RESET; ENDDR DRPAUSE; ENDIR IRPAUSE; FREQUENCY 33E3 HZ;
SIR 4 TDI (A) TDO (5); RUNTEST IRPAUSE 1 SEC; SDR 70 TDI (2A0123456789ABCDEF) TDO (0) MASK (1);
FREQUENCY 40E6 HZ; SDR 9 TDI (155) TDO (0AA); TRST ON; SDR 9 TDI (0AA) TDO (155); STATE IDLE;"""
LISTED = re.compile(r": scan \d+ (..) (\d+) TDI (\w+)(?: SMASK \w+)?(?: TDO (\w+) MASK (\w+))?")
# A path through Update without a shift has 0 bits.
DECODED = re.compile(r"(..) TDI: \d+ \(0x(\w+)\), ([^0]\d*) bits\n.*TDO: \d+ \(0x(\w+)\)")


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


if not shutil.which("sigrok-cli"):
    sys.exit("skipped=1: sigrok-cli is not installed")
with tempfile.TemporaryDirectory() as folder:
    own, pins = pathlib.Path(folder, "own.svf"), pathlib.Path(folder, "pins")
    own.write_text(OWN)
    for file in [own, *EXAMPLES.glob("*.svf")]:
        scans = [(which, int(tdi, 16), bits, int(tdo or "0", 16) & int(mask or "0", 16))
                 for which, bits, tdi, tdo, mask in LISTED.findall(output(*sys.argv[1:], file))]
        output(*sys.argv[1:], "-w", "-vcd", pins, file)
        seen = output("sigrok-cli", "-I", "vcd:compress=100", "-i", pins,
                      "-P", "jtag:tck=tck:tms=tms:tdi=tdi:tdo=tdo_expected:trst=trst",
                      "-A", "jtag=bitstring-tdi:bitstring-tdo")
        decoded = [(which, int(tdi, 16), bits, int(tdo, 16))
                   for which, tdi, bits, tdo in DECODED.findall(seen)]
        assert decoded == scans, f"{file}: {decoded} instead of {scans}"
