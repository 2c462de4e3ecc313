# SPDX-License-Identifier: MIT
"""Tests what judge.py accepts and what it rejects."""

import unittest

from judge import Line, Listed, judge, read_lines, read_list


def lines_of(path, count):
    return [Line(path, number, "f%d();" % number, True, 2, 2) for number in range(1, count + 1)]


def well_tested():
    paths = ["platform/text/case.cc", "platform/notify/gate.cc", "platform/http/url.cc", "platform/http/loop.cc",
             "platform/xml/tree.cc", "json/node.cc", "request/base.cc", "services/item_map.cc",
             "content/multipart_upload.cc", "content/content_helpers.cc"]
    return [line for path in paths for line in lines_of(path, 20)]


def replaced(path, number, **changes):
    return [line._replace(**changes) if (line.path, line.number) == (path, number) else line for line in well_tested()]


class JudgeTest(unittest.TestCase):
    def expect_problem(self, text, lines, entries):
        problems = judge(lines, entries)[1]
        self.assertEqual(len(problems), 1, problems)
        self.assertIn(text, problems[0])

    def test_accepts_code_that_is_fully_executed(self):
        self.assertEqual(judge(well_tested(), [])[1], [])

    def test_requires_reason_for_unexecuted_line(self):
        lines = replaced("platform/http/url.cc", 7, is_executed=False, taken=0)
        self.expect_problem("url.cc:7: f7(); (not executed", lines, [])
        self.assertEqual(judge(lines, [Listed("platform/http/url.cc", "f7();", "why")])[1], [])

    def test_requires_reason_for_branch_only_in_a_piece(self):
        entry = Listed("json/node.cc", "f7();", "why")
        self.expect_problem("node.cc:7: f7(); (a branch", replaced("json/node.cc", 7, taken=1), [])
        self.assertEqual(judge(replaced("json/node.cc", 7, taken=1), [entry])[1], [])
        self.assertEqual(judge(replaced("platform/http/url.cc", 7, taken=1), [])[1], [])

    def test_allows_chance_line_to_be_executed_or_not(self):
        entry = Listed("platform/http/url.cc", "f7();", "by chance: why")
        self.assertEqual(judge(well_tested(), [entry])[1], [])
        self.assertEqual(judge(replaced("platform/http/url.cc", 7, is_executed=False, taken=0), [entry])[1], [])

    def test_requires_reason_for_each_of_two_equal_lines(self):
        lines = [line._replace(is_executed=False, text="same")
                 if line.path == "platform/http/url.cc" and line.number < 3 else line for line in well_tested()]
        entry = Listed("platform/http/url.cc", "same", "why")
        # 38 of the room's 40 lines are executed, which is just enough.
        self.expect_problem("url.cc:2: same", lines, [entry])
        self.assertEqual(judge(lines, [entry, entry])[1], [])

    def test_rejects_listed_line_that_is_executed_or_gone(self):
        self.expect_problem("listed but", well_tested(), [Listed("json/node.cc", "f7();", "why")])
        self.expect_problem("listed but", well_tested(), [Listed("json/gone.cc", "f7();", "why")])

    def test_rejects_room_below_a_limit(self):
        def half(path):
            return [line._replace(taken=1) if line.path == path and line.number < 10 else line
                    for line in well_tested()]
        self.expect_problem("services: covers less", half("services/item_map.cc"), [])

        lines = replaced("services/item_map.cc", 1, is_executed=False)
        entries = [Listed("services/item_map.cc", "f1();", "why")]
        self.assertEqual(judge(lines, entries)[1], [])
        lines = [line._replace(is_executed=False) if line.path == "services/item_map.cc" and line.number < 3 else line
                 for line in lines]
        entries.append(Listed("services/item_map.cc", "f2();", "why"))
        self.expect_problem("services: covers less", lines, entries)

    def test_rejects_room_or_piece_without_code(self):
        without = [line for line in well_tested() if not line.path.startswith("request/")]
        self.expect_problem("request: covers less", without, [])
        without = [line for line in well_tested() if not line.path.startswith("content/multipart")]
        self.expect_problem("multipart: no such code", without, [])

    def test_reads_json_of_gcovr(self):
        coverage = {"files": [{"file": "common_stowraapi/json/node.cc", "lines": [
            {"line_number": 1, "count": 3, "branches": [{"count": 0}, {"count": 3}]},
            {"line_number": 2, "count": 0, "branches": [], "gcovr/noncode": True},
            {"line_number": 3, "count": 0, "branches": []}]}, {"file": "tests/a.cc", "lines": []}]}
        lines = read_lines(coverage, lambda path: ["if (a) {", "}", "  b();"])
        self.assertEqual(lines, [Line("json/node.cc", 1, "if (a) {", True, 2, 1),
                                 Line("json/node.cc", 3, "b();", False, 0, 0)])

    def test_reads_list_and_rejects_entry_without_reason(self):
        self.assertEqual(read_list("# why\n\njson/a.cc | if (a | b) { | too large\n"),
                         [Listed("json/a.cc", "if (a | b) {", "too large")])
        for line in ["json/a.cc | f();", "json/a.cc | f(); | ", "json/a.cc"]:
            self.assertRaises(ValueError, read_list, line)


if __name__ == "__main__":
    unittest.main()
