#!/usr/bin/env python3
r"""Runs the examples of pages and compares all that they print and leave behind.

An example is a block that is indented by four spaces. It starts in an empty folder. The files that
it needs stand before its first command, all that a command gives after it:

    in.svf:
      SIR 8 TDI (2C);
    $ tapforge -w -i in.svf -o out.svf
    out.svf:
      SIR 8
          TDI (2c) ;

A command gives what it prints, "stderr:", every file that was made or written, and the exit status
as [1] unless it is 0. A function that it defines holds to the end of the page.

    a, b:            files with the same content; "as before", "empty" and "gone" tell of a file
    \r  \t  \x07     characters; x\{70} is 70 times x, and line\{10 lines} ten such lines
    \                at the end of a line: it goes on in the next; at the very end: no line end
    <time>           dates and times; the banner, with the empty line behind it, is left out
    out.ksvf:        its bytes as a listing, so that it stands with the listing when they agree
    KSDRSIZE | KSDR  what prepares a command stands on its line; so do the steps of a path
    no KREPEAT       KREPEAT 0x20 and KCOMPLETE around a listing are shown where one is missing

"<!-- needs WORD -->" before an example, in a manual ".\" needs WORD", has --without WORD leave it
out.

In a ```console or .Bd block of a document a command is followed by what a terminal shows, without
the banner, and succeeds; the status of one that fails is shown by an echo. Files stay from block to
block, and examples/ and player/ are there. Relative links must lead to a file."""
import argparse, concurrent.futures, difflib, os, pathlib, re, shutil, subprocess, sys, tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
EXAMPLE = re.compile(r"(?m)^(?:<!-- needs (\w+) -->\n\n)?( {4}.*\n(?:\n* {4}.*\n)*)")
TERMINAL = re.compile(r"(?ms)^(?:(?:\.\\\"|<!--) needs (\w+)(?: -->\n)?\n)?"
                      r"(?:```console|\.Bd -literal[^\n]*)\n(.*?)^(?:```|\.Ed)")
INPUT = re.compile(r"(?m)^(\S.*):(?: empty)?\n((?:  .*\n|\n)*)")
COMMAND = re.compile(r"[^\n]*\n(?:> [^\n]*\n)*")
LINK = re.compile(r"\]\((?!\w+:)([^)#]*)#?([^)]*)\)")
BANNER = re.compile(r"\n\*{6} .*\n  \*{4} .*\n    \*\* .*\n\n\n(\n(?!\*{6} ))?")
MASKS = [(r"(?m)^(  \*{4} Build date : )\w{3} [ \d]\d \d{4}-\d\d:\d\d:\d\d$", r"\1<date>"),
         (r"(?m)^((?:Start|Finish) {0,2}: )\w{3} \w{3} [ \d]\d \d\d:\d\d:\d\d \d{4}$", r"\1<time>"),
         (r"(?m)^( +Elapsed [Tt]ime \()\d\d:\d\d:\d\d(?=\))", r"\1<elapsed>"),
         (r"(?m)^(- Date is                : \[)[^]%\n]+(?=\]$)", r"\1<time>")]
# A page shows these on the line of the scan that they prepare, and a path as one line.
PREPARES = re.compile(r"(?m)^((?:KRUNTEST|KSDRSIZE|KTDOMASK) \w+(?=\nK)|KSTATE \w+(?=\nKSTATE))\n")
# Documents that are known to have no examples; any other page without one has lost them.
BARE = {"CHANGELOG.md", "bench/README.md", "docs/architecture.md", "docs/performance.md",
        "docs/platforms.md", "docs/reliability.md"}
FOLD = re.compile(r"(?=.{95})(.{50,91}\| |.{50,92} |[^\\\n]{93})")  # no line of a page is longer
SPECIAL = {"\n": "\\n", "\r": "\\r", "\t": "\\t", "\\": "\\\\"}
# The operands of each KSVF command: the bytes of a number, "v" for a vector.
COMMANDS = {0: ("KCOMPLETE", ""), 1: ("KTDOMASK", "v"), 2: ("KSIR", "1v"), 3: ("KSDR", "v"),
            4: ("KRUNTEST", "4"), 7: ("KREPEAT", "1"), 8: ("KSDRSIZE", "4"), 9: ("KSDRTDO", "vv"),
            12: ("KSDRB", "v"), 13: ("KSDRC", "v"), 14: ("KSDRE", "v"), 15: ("KSDRTDOB", "vv"),
            16: ("KSDRTDOC", "vv"), 17: ("KSDRTDOE", "vv"), 18: ("KSTATE", "1"),
            19: ("KENDIR", "1"), 20: ("KENDDR", "1"), 21: ("KSIR2", "2v"),
            22: ("KCOMMENT", ""), 23: ("KWAIT", "114")}


def listing(data):
    """The listing that these bytes of KSVF must have; from a broken command on, the bytes."""
    lines, at, size = [], 0, 0
    while at < len(data):
        start, at, bits = at, at + 1, size
        name, operands = COMMANDS.get(data[start], ("", "v"))
        words = [name]
        for kind in operands:
            count = (bits + 7) // 8 if kind == "v" else int(kind)
            digits, at = data[at:at + count].hex(), at + count
            bits = bits if kind == "v" else int(digits or "0", 16)
            words.append("0x" + (digits if kind == "v" or name == "KSTATE" else digits.upper()))
        if name == "KCOMMENT":
            at = data.find(b"\0", start) + 1
            words.append(data[start + 1:at - 1].decode("latin-1"))
        size = bits if name == "KSDRSIZE" else size
        if not name or not start < at <= len(data):
            words, at = ["bytes", data[start:].hex(" ")], len(data)
        lines.append(" ".join(words) + "\n")
    return "".join(lines).replace("SIZE 0x00000000\nKSDR 0x\n", "SIZE 00000000\nKSDR\n")


def brief(text):
    """A listing as a page shows it."""
    whole = re.fullmatch(r"KREPEAT 0x20\n(.+)KCOMPLETE\n", text, re.S)
    marked = "" if not text or text.startswith("KREPEAT ") else "no KREPEAT\n"
    return PREPARES.sub(r"\1 | ", whole[1] if whole else marked + text)


def shown(text):
    """Text as a page shows it, without its last line end."""
    def visible(match):
        char = match[0][0]
        plain = " " < char <= "~" and char != "\\"
        times = f"\\{{{len(match[0])}}}" if match[1] else ""
        return (char if plain else SPECIAL.get(char, f"\\x{ord(char):02x}")) + times

    def repeated(match):
        return f"{match[1][:-1]}\\{{{len(match[0]) // len(match[1])} lines}}\n"

    for pattern, mask in MASKS:
        text = re.sub(pattern, mask, text)
    text = re.sub(r"(?m)([^\n])\1{64,}|[^\n -~]|\\| $|(?:(?<=\n)|\A)\n\Z", visible, text)
    text = FOLD.sub("\\1\\\\\n", re.sub(r"(?m)^(.*\n)\1{9,}", repeated, text))
    return text[:-1] if text.endswith("\n") else text + "\\" * bool(text)


def given(text):
    """The text that a page shows so."""
    def plain(match):
        code, back = match[1], {code: char for char, code in SPECIAL.items()} | {"\\": ""}
        char = chr(int(code[2:], 16)) if code[:2] == "\\x" else back.get(code, code)
        return char * int(match[2] or 1)

    text = re.sub(r"(?<!\\)((?:\\\\)*)\\\n(?=.)", r"\1", text)
    text = re.sub(r"(?m)^(.*)\\\{(\d+) lines\}$", lambda m: "\n".join([m[1]] * int(m[2])), text)
    whole = not text.replace("\\\\", "").endswith("\\")
    return re.sub(r"(\\x..|\\[nrt\\]|\\\Z|.)(?:\\\{(\d+)\})?", plain, text) + "\n" * whole


def body(text):
    return re.sub("(?m)^(?=.)", "  ", "\n" + shown(text)) if text else " empty"


class Page:
    def __init__(self, path, folder, options):
        self.path, self.folder, self.without = path, folder, options.without
        self.functions, self.examples = "ulimit -f 200000; ulimit -t 60\n", 0
        for part in ("examples", "player"):
            shutil.copytree(ROOT / part, folder / "terminal" / part)
        (folder / "bin").mkdir()
        for name, tool in [("tapforge", options.program), *options.tool]:
            command = f"exec {options.emulator} '{pathlib.Path(tool).resolve()}' \"$@\""
            (folder / "bin" / name).write_text(f"#!/bin/sh\n{command}\n")
            (folder / "bin" / name).chmod(0o755)

    def run(self, command, folder, apart=True):
        """What a command prints on each stream, as Latin-1 without the banner, and its status."""
        env = {**os.environ, "PATH": f"{self.folder}/bin{os.pathsep}{os.environ['PATH']}",
               "LC_ALL": "C", "LOCPATH": str(self.folder)}
        with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
            done = subprocess.run(["sh", "-c", self.functions + re.sub("(?m)^> ", "", command)],
                                  cwd=folder, env=env, stdin=subprocess.DEVNULL, stdout=out,
                                  stderr=err if apart else out)
            texts = [(stream.seek(0), stream.read())[1].decode("latin-1") for stream in (out, err)]
            return BANNER.sub("" if apart else r"\1", texts[0]), texts[1], done.returncode

    def outcome(self, command, folder):
        """All that a command of an example gives, as the page must show it."""
        if re.match(r"\w+\(\) \{", command):
            self.functions += re.sub("(?m)^> ", "", command)
            return ""
        before = contents(folder)
        for name in before:
            os.utime(folder / name, (1, 1))
        printed, errors, status = self.run(command, folder)
        seen = contents(folder)
        listings = [listing(data) for name, data in seen.items() if name.endswith(".ksvf")]
        parts = {"stderr": body(errors)} if errors else {}
        for name, data in seen.items():
            if name not in before or (folder / name).stat().st_mtime != 1:
                text = listing(data) if name.endswith(".ksvf") else data.decode("latin-1")
                text = brief(text) if text in listings else text
                parts[name] = " as before" if before.get(name) == data else body(text)
        parts |= {name: " gone" for name in before if name not in seen}
        lines = [shown(printed)] * bool(printed)
        for part in dict.fromkeys(parts.values()):
            lines.append(", ".join(name for name in parts if parts[name] == part) + ":" + part)
        return "".join(line + "\n" for line in lines + [f"[{status}]"] * bool(status))

    def example(self, match):
        head, *parts = re.split(r"(?m)^\$ ", re.sub("(?m)^ {4}", "", match[2]))
        self.examples += bool(parts)
        if not parts or match[1] in self.without:
            return match[0]
        folder = self.folder / str(self.examples)
        folder.mkdir()
        for names, text in INPUT.findall(head):
            text = given(re.sub("(?m)^  ", "", text)[:-1]) if text else ""
            for name in names.split(", "):
                (folder / name).write_bytes(text.encode("latin-1"))
        for part in parts:
            command = COMMAND.match(part)[0]
            head += "$ " + command + self.outcome(command, folder)
        return match[0][:match.start(2) - match.start()] + re.sub("(?m)^(?=.)", "    ", head)

    def terminal(self, match):
        head, *parts = re.split(r"(?m)^\$ ", match[2])
        self.examples += len(parts)
        if match[1] in self.without:
            return match[0]
        roff = self.path.suffix == ".1"
        for part in parts:
            text = part.replace(r"\&", "").replace(r"\e", "\\") if roff else part
            command = COMMAND.match(text)[0]
            printed, _, status = self.run(command, self.folder / "terminal", apart=False)
            printed = printed.rstrip("\n") + f"\n[{status}]" * (status != 0)
            if printed != text[len(command):].rstrip("\n"):
                printed = printed.replace("\\", r"\e") if roff else printed
                part = COMMAND.match(part)[0] + printed + "\n" * bool(printed)
            head += "$ " + part
        return match[0].replace(match[2], head)


def contents(folder):
    return {str(file.relative_to(folder)): file.read_bytes()
            for file in sorted(folder.rglob("*")) if file.is_file()}


def dead_links(path):
    """A fault for each relative link of a document that leads to no file or no heading there."""
    for file, anchor in LINK.findall(path.read_text()) if path.suffix == ".md" else []:
        target = path.parent / file if file else path
        titles = re.findall(r"(?m)^#+ (.+)", target.read_text()) if anchor else []
        anchors = [re.sub(r"[^-\w ]", "", title).lower().replace(" ", "-") for title in titles]
        if not target.exists() or anchor and anchor not in anchors:
            yield f"{path}: dead link {file}{anchor and '#'}{anchor}\n"


def check(path, options):
    """The faults of a page; --update writes what was seen into it."""
    text = path.read_text()
    with tempfile.TemporaryDirectory() as folder:
        page = Page(path, pathlib.Path(folder), options)
        seen = TERMINAL.sub(page.terminal, EXAMPLE.sub(page.example, text))
    faults = list(dead_links(path))
    if (page.examples == 0) != (str(path.resolve()).removeprefix(f"{ROOT}/") in BARE):
        faults.append(f"{path}: {page.examples} examples; BARE lists the documents without any\n")
    if options.update and seen != text:
        path.write_text(seen)
    elif seen != text:
        lines = [each.splitlines(keepends=True) for each in (text, seen)]
        faults += difflib.unified_diff(*lines, f"{path}", f"{path}, as seen")
    return faults or [f"{path}: {page.examples} examples\n"], bool(faults)


def main():
    form = argparse.RawDescriptionHelpFormatter
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=form)
    parser.add_argument("--update", action="store_true", help="write what was seen into the pages")
    parser.add_argument("--emulator", default="", help="command that runs PROGRAM and the tools")
    parser.add_argument("--without", action="append", default=[], metavar="WORD")
    parser.add_argument("--tool", action="append", default=[], metavar="NAME=PATH",
                        type=lambda text: text.split("=", 1))
    parser.add_argument("program", metavar="PROGRAM", help="called tapforge in the examples")
    parser.add_argument("pages", nargs="+", type=pathlib.Path, metavar="PAGE")
    options = parser.parse_args()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(lambda path: check(path, options), options.pages))
    print(*(line for lines, _ in results for line in lines), sep="", end="")
    return any(bad for _, bad in results)


if __name__ == "__main__":
    sys.exit(main())
