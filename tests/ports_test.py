#!/usr/bin/env python3
"""Plays examples and random files on machines that are simulated, and compares their pins with
those of the player on this one: ports_test.py TAPFORGE TAPFORGE-REPLAY"""
import os, pathlib, pty, re, select, shutil, signal, subprocess, sys, tempfile, threading, tty
import time, unittest

from random_svf import random_svf

ROOT = pathlib.Path(__file__).resolve().parent.parent
EXAMPLES = ROOT / "examples"
sys.path.insert(0, str(ROOT / "player"))
import send_ksvf  # noqa: E402

TAPFORGE, REPLAY = map(os.path.abspath, sys.argv[1:3])
del sys.argv[1:3]
REFUSED = ("bare-maximum", "sck")
OPTIONS = ("-kwait -extensions", "-kwait -extensions -r 0", "-fpga -rlen 64", "-useKSDR -r 2",
           "-v2", "-multiple_runtest -kprintsrc 3")
GPIO = pathlib.Path("/usr/include/linux/gpio.h")
SIMAVR = pathlib.Path("/usr/include/simavr/sim_avr.h")
TRACED = "-std=c99 -Iplayer -DKSVF_OWN_WAIT=1 -DKSVF_MAX_BITS=6000 "
PLAYER = " player/ksvf_player.c player/ksvf_report.c"
BOARD = "tools/player/traced_board.c" + PLAYER
ARM = "arm-none-eabi-gcc -mthumb -mcpu=cortex-m0 -Os -nostdlib -ffreestanding " + TRACED


def run(command, check=True, **options):
    """What a command says on both streams; unless it is checked, its status, too."""
    done = subprocess.run(command.split(), cwd=ROOT, check=check, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=60, **options)
    return done.stdout.decode() + f"[{done.returncode}]" * (not check)


class Line(threading.Thread):
    """A serial line that drops what the board has not asked for, loses a byte, and spoils some."""

    def __init__(self, board):
        super().__init__(daemon=True)
        self.board, self.granted, self.dropped, self.count = board, 0, 0, 0
        self.pc, self.end = pty.openpty()
        self.name, self.asked, self.playing = os.ttyname(self.end), b"", threading.Event()
        tty.setraw(self.end)

    def run(self):
        while True:
            ready = select.select([self.board, self.pc], [], [])[0]
            if self.board in ready:
                text = os.read(self.board, 4096)
                self.asked += text
                for request in re.finditer(rb"(check|play) (\d+) (\d+) \d+\n", self.asked):
                    self.granted = int(request[3]) + 3
                    if request[1] == b"play" and int(request[2]) > 0:
                        self.playing.set()
                self.asked = self.asked[self.asked.rfind(b"\n") + 1:]
                os.write(self.pc, text)
            if self.pc in ready:
                data = os.read(self.pc, 4096)
                kept = bytearray(data[:self.granted])
                self.granted -= len(kept)
                self.dropped += len(data) - len(kept)
                before, self.count = self.count, self.count + len(kept)
                if before == 0:
                    time.sleep(0.8)  # too late
                if before // 7000 != self.count // 7000:
                    del kept[-1]
                if before // 5000 != self.count // 5000:
                    kept[len(kept) // 2] ^= 1
                os.write(self.board, kept)


class Ports(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        (cls.folder / "tapforge-replay").symlink_to(REPLAY)
        os.environ["PATH"] = f"{cls.folder}:{os.environ['PATH']}"
        cls.build("cc", TRACED + "-O1 " + BOARD, "traced")
        sources = {path.stem: path.read_text() for path in sorted(EXAMPLES.glob("*.svf"))}
        sources |= {str(seed): random_svf(seed, 80, REFUSED) for seed in range(30)}
        cls.files = [cls.convert(name, text, OPTIONS[i % len(OPTIONS)])
                     for i, (name, text) in enumerate(sources.items())]
        cls.lines = {file: run(f"{cls.folder}/traced", input=file.read_bytes())
                     for file in cls.files}

    @classmethod
    def build(cls, compiler, arguments, name):
        run(f"{compiler} -w -o {cls.folder}/{name} {arguments}")

    @classmethod
    def convert(cls, name, text, options=""):
        source = cls.folder / f"{name}.svf"
        source.write_bytes(text.encode())
        file = source.with_suffix(".ksvf")
        run(f"{TAPFORGE} -ksvf -tck_freq 100000 -w {options} -i {source} -o {file}")
        return file

    @unittest.skipUnless(shutil.which("avr-gcc") and SIMAVR.exists(), "no avr-gcc, no libsimavr")
    def test_avr(self):
        self.build("avr-gcc", "-mmcu=atmega1284p -Os " + TRACED + BOARD, "avr.elf")
        self.build("cc", "tools/player/avr_machine.c -lsimavr -lelf -lm", "avr_machine")
        machine = f"{self.folder}/avr_machine {self.folder}/avr.elf"
        for file, line in self.lines.items():
            told = run(machine, input=file.read_bytes())  # behind what simavr says
            self.assertEqual(told.splitlines(keepends=True)[-1], line, file)

    @unittest.skipUnless(shutil.which("arm-none-eabi-gcc") and shutil.which("qemu-system-arm"),
                         "no gcc-arm-none-eabi, no qemu-system-arm")
    def test_microbit_over_a_serial_line(self):
        self.build(ARM, "-c player/microbit.c -Dksvf_port_clock=microbit_clock", "pins.o")
        self.build(ARM, "-c player/serial_port.c -Dksvf_report_result=traced_result", "serial.o")
        self.build(ARM, "-Wl,-e0,--section-start=.vectors=0,-Ttext=0x100,-Tdata=0x20000000 "
                   f"{self.folder}/pins.o {self.folder}/serial.o {BOARD} -lgcc", "microbit.elf")
        machine = subprocess.Popen(
            "timeout 300 qemu-system-arm -M microbit -display none -monitor none -serial pty "
            f"-kernel {self.folder}/microbit.elf".split(), stdout=subprocess.PIPE)
        self.addCleanup(lambda: (machine.terminate(), machine.communicate()))
        name = machine.stdout.readline().split()[4]
        line = Line(send_ksvf.open_line(name, 115200))
        line.start()
        pc = send_ksvf.open_line(line.name, 115200)
        for file in self.files[:14]:
            phase, text = send_ksvf.serve(pc, 10, file.read_bytes())
            self.assertEqual(f"{phase} {text}\n", f"play {self.lines[file]}", file)
        self.assertEqual(line.dropped, 0)

        # A sender that is killed, and another one with another file.
        sender = f"{sys.executable} player/send_ksvf.py {line.name}"
        line.playing.clear()
        with subprocess.Popen([*sender.split(), self.files[-1]], cwd=ROOT) as first:
            self.assertTrue(line.playing.wait(20))
            first.kill()
        wrong = next(file for file, line in self.lines.items() if line.startswith("mismatch"))
        scan, source = self.lines[wrong].split()[3].rstrip(":"), wrong.with_suffix(".svf")
        statement = run(f"{REPLAY} -scan {scan} {source}")
        self.assertEqual(run(f"{sender} {wrong} -svf {source}", check=False),
                         f"{self.lines[wrong]}{statement}[1]")

        # A file that is refused, and the chain.
        phase, text = send_ksvf.serve(pc, 10, self.files[0].read_bytes()[:-1])
        self.assertRegex(f"{phase} {text}", "check file ends in a command at byte .* 0 00000000")
        self.assertEqual(run(f"{sender} -chain"), "TDO stays 0\n")

    @unittest.skipUnless(GPIO.exists() and "GPIO_V2_GET_LINE_IOCTL" in GPIO.read_text(),
                         "no version 2 of the GPIO interface")
    def test_linux_gpio(self):
        trace = "-std=gnu99 -Iplayer -Dsimulated_tap_clock=plain_tap_clock -c "
        self.build("cc", trace + "player/simulated_tap.c", "tap.o")
        parts = f" {self.folder}/tap.o tests/fake_gpio.c" + PLAYER
        self.build("cc", "-Iplayer player/example_board.c" + parts, "board")
        self.build("cc", "-std=c99 -Iplayer player/linux_gpio.c" + parts, "linux_gpio")
        board = f"{self.folder}/board "
        lines = f"{self.folder}/linux_gpio -f 1e9 -r 7 /dev/null 11 25 10 9 "
        self.assertEqual(run(lines), run(board + "-chain"))
        hasty = self.convert("hasty", re.sub("RUNTEST.*", "", (EXAMPLES / "board.svf").read_text()))
        random = [self.convert(f"plain{seed}", random_svf(seed, 80, REFUSED), "-s")
                  for seed in range(3)]
        for file in [hasty, *random, *self.files[:6]]:
            told = run(lines + str(file), check=False)
            self.assertEqual(told, run(board + str(file), check=False), file)
            self.assertRegex(told, r"(done|mismatch).*\n\d+ ")


if __name__ == "__main__":
    unittest.main()
