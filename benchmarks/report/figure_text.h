// SPDX-License-Identifier: MIT
// Formats figures for people.

#ifndef BENCHMARKS_REPORT_FIGURE_TEXT_H_
#define BENCHMARKS_REPORT_FIGURE_TEXT_H_

#include <string>

#include "benchmarks/report/verdict.h"

namespace stowra_bench {

// Three digits and a unit from "ns" to "s".
std::string TimeText(double nanoseconds);

// The digits are in groups of three.
std::string CountText(double count);

// A median of the row. It is a time, a number of instructions or a value in the row's unit.
std::string MedianText(double median, const Row& row);

// The judged figure and its bound, such as "0.934x", "2.31 times as fast" or "12.5 MiB". FigureText
// requires verdict.is_measured().
std::string FigureText(const Verdict& verdict);
std::string BoundText(const Row& row);

}  // namespace stowra_bench

#endif  // BENCHMARKS_REPORT_FIGURE_TEXT_H_
