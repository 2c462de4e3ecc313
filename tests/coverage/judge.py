# SPDX-License-Identifier: MIT
"""judge.py SOURCE_DIR COVERAGE_JSON UNCOVERED: judges the coverage that gcovr has counted.

Prints the coverage of each room and piece, and each uncovered line with its reason. Fails if a room, or all rooms
together, fall below a limit. Also fails if UNCOVERED is not an exact list of the uncovered lines. These are the lines
that no test executes. In a piece they include each line with a branch that no test takes. UNCOVERED has an entry for
each of them:

    path | the line of source, trimmed | why no test gets there

A reason that begins with "by chance: " marks a line that only some runs reach.
"""

import collections
import json
import pathlib
import sys

ROOMS = ["platform/text", "platform/notify", "platform/http", "platform/xml", "json", "request", "services", "content"]
LEAST_LINES = 0.95
LEAST_BRANCHES = 0.90
BY_CHANCE = "by chance: "

# Code whose every branch must be taken, by the beginnings of its paths.
PIECES = {
    "json": ["json/"],
    "XML reader": ["platform/xml/"],
    "multipart": ["content/multipart_upload."],
    "helpers": ["content/content_helpers.", "content/text_search."],
}

ROOT = "common_stowraapi/"

Line = collections.namedtuple("Line", "path number text is_executed branches taken")
Listed = collections.namedtuple("Listed", "path text reason")


def read_lines(coverage, read_source):
    """Returns the lines with code. read_source returns the lines of the file at a path."""
    lines = []
    for file in coverage["files"]:
        path = file["file"]
        if not path.startswith(ROOT):
            continue
        source = read_source(path)
        for line in file["lines"]:
            if line.get("gcovr/noncode"):
                continue
            taken = sum(1 for branch in line["branches"] if branch["count"] > 0)
            number = line["line_number"]
            lines.append(Line(path[len(ROOT):], number, source[number - 1].strip(), line["count"] > 0,
                              len(line["branches"]), taken))
    return lines


def read_list(text):
    entries = []
    for line in text.splitlines():
        if not line or line.startswith("#"):
            continue
        # The source may contain bars too.
        path, _, rest = line.partition(" | ")
        text, _, reason = rest.rpartition(" | ")
        if not path or not text or not reason:
            raise ValueError("not 'path | source | reason': " + line)
        entries.append(Listed(path, text, reason))
    return entries


def starts_with_any(path, beginnings):
    return any(path.startswith(beginning) for beginning in beginnings)


def is_left(line):
    """Whether the line has to be listed."""
    if not line.is_executed:
        return True
    in_piece = any(starts_with_any(line.path, beginnings) for beginnings in PIECES.values())
    return in_piece and line.taken < line.branches


class Share:
    def __init__(self, lines):
        self.lines = len(lines)
        self.executed = sum(line.is_executed for line in lines)
        self.branches = sum(line.branches for line in lines)
        self.taken = sum(line.taken for line in lines)

    def is_enough(self):
        return (self.lines > 0 and self.executed >= LEAST_LINES * self.lines and
                self.taken >= LEAST_BRANCHES * self.branches)

    def row(self, name):
        return "%-16s%s%s" % (name, cell(self.executed, self.lines), cell(self.taken, self.branches))


def cell(part, whole):
    percent = 100 * part / whole if whole else 100
    return "%6d of %5d %6.2f %%" % (part, whole, percent)


def judge(lines, entries):
    """Returns the report and the problems, both as lists of text lines."""
    report = ["%-16s%24s%24s" % ("", "lines", "branches")]
    problems = []
    shares = {room: Share([line for line in lines if line.path.startswith(room + "/")]) for room in ROOMS}
    shares["all rooms"] = Share(lines)
    for name, share in shares.items():
        report.append(share.row(name))
        if not share.is_enough():
            problems.append("%s: covers less than %.0f %% of the lines or %.0f %% of the branches" %
                            (name, 100 * LEAST_LINES, 100 * LEAST_BRANCHES))
    report.append("every branch must be taken, except in listed lines:")
    for name, beginnings in PIECES.items():
        piece = [line for line in lines if starts_with_any(line.path, beginnings)]
        report.append(Share(piece).row(name))
        if not piece:
            problems.append(name + ": no such code")

    listed = collections.defaultdict(list)
    for entry in entries:
        listed[entry.path, entry.text].append(entry.reason)
    report.append("not executed, or a branch not taken:")
    for line in filter(is_left, lines):
        place = "%s:%d: %s" % (line.path, line.number, line.text)
        reasons = listed[line.path, line.text]
        if reasons:
            report.append("  %s\n      %s" % (place, reasons.pop(0)))
        else:
            what = "a branch is not taken" if line.is_executed else "not executed"
            problems.append("%s (%s and not listed)" % (place, what))
    for (path, text), reasons in listed.items():
        for reason in reasons:
            if reason.startswith(BY_CHANCE):
                continue
            problems.append("%s: %s (listed but executed or gone, reason: %s)" % (path, text, reason))
    return report, problems


def main(source_dir, coverage, uncovered):
    root = pathlib.Path(source_dir)
    lines = read_lines(json.loads(pathlib.Path(coverage).read_text()),
                       lambda path: (root / path).read_text().splitlines())
    report, problems = judge(lines, read_list(pathlib.Path(uncovered).read_text()))
    print("\n".join(report))
    for problem in problems:
        print("coverage: " + problem, file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
