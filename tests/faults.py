#!/usr/bin/env python3
"""Faults from outside the program: faults.py PROGRAM

Full and failing files, pipes, closed streams, little memory, lengths that no
machine can hold. Each must end in a clear message and status 1, or in a whole
output and status 0; never in a crash, a hang or a silent loss."""
import datetime, os, pathlib, re, resource, subprocess, sys, tempfile, time, unittest

PROGRAM = str(pathlib.Path(sys.argv.pop(1)).resolve())
MANY = b"SIR 8 TDI (01);\nSDR 32 TDI (01234567) TDO (0) MASK (f);\n" * 20000
MIB = 1024 * 1024
# Sanitizers need more address space than any limit here leaves.
SANITIZED = bool(os.environ.get("TAPFORGE_SANITIZE"))
LITTLE = {"limit": (resource.RLIMIT_AS, 20 * MIB)}
SECONDS = 100  # of processor time, which no run here needs


class Faults(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.at = pathlib.Path(folder.name)
        (self.at / "in.svf").write_bytes(MANY)

    def run_it(self, options, status=0, says="", limit=None, **streams):
        """What the program, run in the folder, prints; `limit` is a resource and its most."""
        def restrict():
            resource.setrlimit(resource.RLIMIT_CPU, (SECONDS, SECONDS))
            if limit and not (SANITIZED and limit[0] == resource.RLIMIT_AS):
                resource.setrlimit(limit[0], (limit[1], limit[1]))
        pipes = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "stdin": subprocess.DEVNULL}
        done = subprocess.run([PROGRAM, "-w", *options.split()], cwd=self.at, preexec_fn=restrict,
                              **pipes | streams)
        text = ((done.stdout or b"") + (done.stderr or b"")).decode("latin-1")
        self.assertEqual(done.returncode, status, text[-500:])
        self.assertIn(says, text)
        return text

    def convert(self, svf, **wanted):
        """Runs the program on a text, in both modes."""
        (self.at / "in.svf").write_bytes(svf)
        for mode in ["-c", "-ksvf"]:
            with self.subTest(mode, svf=svf[:50]):
                self.run_it(f"{mode} -i in.svf -o out", **wanted)

    def test_full_disk(self):
        for options in ("-o /dev/full", "-tapbus -o /dev/full", "-l /dev/full -o out",
                        "-ksvf -o /dev/full", "-ksvf -l /dev/full -o out",
                        "-ksvf -a /dev/full -o out"):
            with self.subTest(options):
                self.run_it(f"{options} -i in.svf", 1, "Error  : /dev/full file error")
        (self.at / "in.svf").write_text("FOO;\n" * 9000)  # more messages than wait for a log
        self.assertEqual(self.run_it("-z 1 -l /dev/full -i in.svf -o out", 1).count("Finish"), 1)

    def test_file_that_may_grow_no_more(self):
        # Not at the first write but in the middle, and what was written stays.
        self.convert(MANY, status=1, says="Error  : out file error",
                     limit=(resource.RLIMIT_FSIZE, 200 * 1024))
        self.assertGreater((self.at / "out").stat().st_size, 128 * 1024)

    def test_closed_pipe_as_output(self):
        reading, writing = os.pipe()
        os.close(reading)
        self.run_it(f"-o /dev/fd/{writing} -i in.svf", 1, "file error", pass_fds=[writing])

    def test_standard_output_that_takes_nothing(self):
        with open("/dev/full", "wb") as full:
            self.run_it("-o out -i in.svf", 1, "tapforge: standard output file error", stdout=full)
        closed = f"umask 027; exec '{PROGRAM}' -z 1 -w -o closed -i in.svf >&- 2>&- <&-"
        self.assertEqual(subprocess.run(["sh", "-c", closed], cwd=self.at).returncode, 0)
        self.assertEqual((self.at / "closed").read_bytes(), (self.at / "out").read_bytes())
        self.assertEqual((self.at / "closed").stat().st_mode & 0o777, 0o640)

    def test_output_after_the_banner_on_one_pipe(self):
        self.run_it("-o out -i in.svf")
        banner, _, output = self.run_it("-o /dev/stdout -i in.svf").partition("reserved.\n\n\n")
        self.assertTrue(banner.startswith("\n****** Ondrel"), banner[:100])
        self.assertEqual(output, (self.at / "out").read_text())

    def test_input_that_cannot_be_read(self):
        self.run_it("-o out -i /proc/self/mem", 1, "Error  : /proc/self/mem file error")
        for mode in ["-tapbus", "-ksvf"]:
            self.run_it(f"{mode} -i . -o out", 1, "cannot open [.]")

    def from_pipe(self, options, seconds, **streams):
        """Runs the program on a pipe that gives in.svf after a while."""
        os.mkfifo(self.at / "pipe")
        writer = subprocess.Popen(["sh", "-c", f"exec >pipe; sleep {seconds}; cat in.svf"],
                                  cwd=self.at)
        self.addCleanup(writer.wait)
        text = self.run_it(f"{options} -i pipe -o out", **streams)
        (self.at / "pipe").unlink()
        return text

    def test_input_from_a_pipe(self):
        for mode in ["-c", "-ksvf"]:
            self.run_it(f"{mode} -i in.svf -o expected")
            self.from_pipe(mode, 0)
            self.assertEqual((self.at / "out").read_bytes(), (self.at / "expected").read_bytes())

    def test_times_are_local_and_now(self):
        begin = int(time.time())
        text = self.from_pipe("-z 1", 1.2, env={**os.environ, "TZ": "HERE-05:30"})
        seconds = range(begin, int(time.time()) + 1)
        times = [time.asctime(time.gmtime(each + 5.5 * 3600)) for each in seconds]
        start, finish = [times.index(each) for each in re.findall(r"(?:Start |Finish): (.*)", text)]
        elapsed = str(datetime.timedelta(seconds=finish - start)).zfill(8)
        self.assertIn(f"Elapsed time ({elapsed})", text)
        self.assertGreater(finish, start)

    def test_floods(self):
        self.convert(bytes(4 * MIB), status=1, says="Unknown SVF keyword [\0]", **LITTLE)
        self.convert(b"!" + b"x" * 30 * MIB, **LITTLE)
        digits = b"SIR 4 TDI (" + b"0" * 12 * MIB
        self.convert(b" " * 12 * MIB + digits, status=1, says="EOF", **LITTLE)

    @unittest.skipIf(SANITIZED, "memory is limited by address space")
    def test_what_does_not_fit(self):
        much = {"status": 1, "says": "Null Ptr [pData NULL]"}
        self.convert(b"SIR 8 TDI (5a); SDR 2000000000 TDI (0);", **much, **LITTLE)
        self.convert(b"SDR 9223372036854775807 TDI (0);", **much)
        # Without a value a length needs no memory, and is no scan yet.
        self.convert(b"HDR 100000000000; SDR 8 TDI (0);", status=1, says="SVF rule", **LITTLE)
        pins = b"".join(b"IN p%090d\n" % number for number in range(200000))
        self.convert(b"PIOMAP (" + pins + b");", status=1, says=": Null Ptr [memory]", **LITTLE)


unittest.main()
