// Figures as people read them.

#ifndef BENCHMARKS_REPORT_FIGURE_TEXT_H_
#define BENCHMARKS_REPORT_FIGURE_TEXT_H_

#include <string>

#include "benchmarks/report/verdict.h"

namespace stowra_bench {

// Three digits and a unit from "ns" to "s".
std::string TimeText(double nanoseconds);

// Digits in groups of three.
std::string CountText(double count);

// A median of the row: a time, a number of instructions or a value in the row's unit.
std::string MedianText(double median, const Row& row);

// The figure that is judged, such as "0.934x" (the other's time), "2.310 times as fast" or "12.5
// MiB", which requires that it was measured; and its bound.
std::string FigureText(const Verdict& verdict);
std::string BoundText(const Row& row);

}  // namespace stowra_bench

#endif  // BENCHMARKS_REPORT_FIGURE_TEXT_H_
