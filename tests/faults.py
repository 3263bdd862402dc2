#!/usr/bin/env python3
"""Faults from outside the program: faults.py PROGRAM

Full and failing files, pipes, closed streams, little memory, lengths that no
machine can hold. Each must end in a clear message and status 1, or in a whole
output and status 0; never in a crash, a hang or a silent loss."""
import os, pathlib, resource, subprocess, sys, tempfile, unittest

PROGRAM = str(pathlib.Path(sys.argv.pop(1)).resolve())
MANY = b"SIR 8 TDI (01);\nSDR 32 TDI (01234567) TDO (0) MASK (f);\n" * 20000
MIB = 1024 * 1024
# Sanitizers need more address space than any limit here leaves.
SANITIZED = bool(os.environ.get("TAPFORGE_SANITIZE"))


class Faults(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.at = pathlib.Path(folder.name)
        (self.at / "in.svf").write_bytes(MANY)

    def run_it(self, *options, status, says="", limit=None, **streams):
        """Runs the program in the folder; `limit` is a resource and its most."""
        def restrict():
            if limit and not (SANITIZED and limit[0] == resource.RLIMIT_AS):
                resource.setrlimit(limit[0], (limit[1], limit[1]))
        pipes = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "stdin": subprocess.DEVNULL}
        done = subprocess.run([PROGRAM, *options], cwd=self.at, timeout=60, preexec_fn=restrict,
                              **pipes | streams)
        text = (done.stdout or b"").decode("latin-1")
        self.assertEqual(done.returncode, status, text[-500:] + (done.stderr or b"").decode("latin-1"))
        self.assertIn(says, text)
        return text

    def test_full_disk(self):
        runs = [("-w", "-o", "/dev/full"), ("-w", "-tapbus", "-o", "/dev/full"),
                ("-w", "-l", "/dev/full", "-o", "out"), ("-ksvf", "-w", "-o", "/dev/full"),
                ("-ksvf", "-w", "-a", "/dev/full", "-o", "out"),
                ("-ksvf", "-w", "-l", "/dev/full", "-o", "out")]
        for options in runs:
            with self.subTest(options):
                self.run_it(*options, "-i", "in.svf", status=1, says="Error  : /dev/full file error")

    def test_file_that_may_grow_no_more(self):
        # Not at the first write but in the middle, and what was written stays.
        for mode in ["-tapbus", "-ksvf"]:
            with self.subTest(mode):
                self.run_it(mode, "-w", "-o", "out", "-i", "in.svf", status=1, says="Error  : out file error",
                            limit=(resource.RLIMIT_FSIZE, 200 * 1024))
                self.assertGreater((self.at / "out").stat().st_size, 128 * 1024)

    def test_closed_pipe_as_output(self):
        reading, writing = os.pipe()
        os.close(reading)
        self.run_it("-w", "-o", f"/dev/fd/{writing}", "-i", "in.svf", status=1, says="file error", pass_fds=[writing])

    def test_standard_output_that_takes_nothing(self):
        with open("/dev/full", "wb") as full:
            self.run_it("-w", "-o", "out", "-i", "in.svf", status=1, stdout=full)
        whole = (self.at / "out").read_bytes()
        closed = f"umask 027; exec '{PROGRAM}' -z 1 -w -o closed -i in.svf >&- 2>&- <&-"
        self.assertEqual(subprocess.run(["sh", "-c", closed], cwd=self.at).returncode, 0)
        self.assertEqual((self.at / "closed").read_bytes(), whole)
        self.assertEqual((self.at / "closed").stat().st_mode & 0o777, 0o640)

    def test_output_after_the_banner_on_one_pipe(self):
        self.run_it("-w", "-o", "out", "-i", "in.svf", status=0)
        text = self.run_it("-w", "-o", "/dev/stdout", "-i", "in.svf", status=0)
        banner, _, output = text.partition("All rights reserved.\n\n\n")
        self.assertTrue(banner.startswith("\n****** Ondrel"), text[:100])
        self.assertEqual(output, (self.at / "out").read_text())

    def test_input_that_cannot_be_read(self):
        self.run_it("-w", "-o", "out", "-i", "/proc/self/mem", status=1, says="Error  : /proc/self/mem file error")
        for mode in ["-tapbus", "-ksvf"]:
            self.run_it(mode, "-i", ".", "-o", "out", status=1, says="cannot open [.]")

    def test_input_from_a_pipe(self):
        os.mkfifo(self.at / "pipe")
        for mode in ["-c", "-ksvf"]:
            with self.subTest(mode):
                self.run_it(mode, "-w", "-i", "in.svf", "-o", "expected", status=0)
                writer = subprocess.Popen(["cp", "in.svf", "pipe"], cwd=self.at)
                self.run_it(mode, "-w", "-i", "pipe", "-o", "out", status=0)
                self.assertEqual(writer.wait(), 0)
                self.assertEqual((self.at / "out").read_bytes(), (self.at / "expected").read_bytes())

    def test_floods(self):
        memory = (resource.RLIMIT_AS, 64 * MIB)
        for mode in ["-c", "-ksvf"]:
            with self.subTest(mode):
                (self.at / "in.svf").write_bytes(bytes(4 * MIB))
                self.run_it(mode, "-w", "-i", "in.svf", "-o", "out", status=1, says="Unknown SVF keyword [\0]", limit=memory)
                (self.at / "in.svf").write_bytes(b"!" + b"x" * 100 * MIB)
                self.run_it(mode, "-w", "-i", "in.svf", "-o", "out", status=0, limit=memory)
                (self.at / "in.svf").write_bytes(b" " * 50 * MIB + b"SIR 4 TDI (" + b"0" * 50 * MIB)
                self.run_it(mode, "-w", "-i", "in.svf", "-o", "out", status=1, says="EOF", limit=memory)

    @unittest.skipIf(SANITIZED, "memory is limited by address space")
    def test_scan_that_does_not_fit(self):
        for mode in ["-tapbus", "-ksvf"]:
            with self.subTest(mode):
                (self.at / "in.svf").write_text("SIR 8 TDI (5a); SDR 2000000000 TDI (0);")
                self.run_it(mode, "-w", "-i", "in.svf", "-o", "out", status=1, says="Null Ptr [pData NULL]",
                            limit=(resource.RLIMIT_AS, 100 * MIB))
                (self.at / "in.svf").write_text("SDR 9223372036854775807 TDI (0);")
                self.run_it(mode, "-w", "-i", "in.svf", "-o", "out", status=1, says="Null Ptr [pData NULL]")
                # Without a value a length needs no memory, and is no scan yet.
                (self.at / "in.svf").write_text("HDR 100000000000; SDR 8 TDI (0);")
                self.run_it(mode, "-w", "-i", "in.svf", "-o", "out", status=1, says="SVF rule violation",
                            limit=(resource.RLIMIT_AS, 100 * MIB))


unittest.main()
