// SPDX-License-Identifier: MIT
// ThreadSanitizer reads this at start-up.

// The HTTP library is not instrumented. ThreadSanitizer does not see the guards of its static
// tables and reports races there. This leaves out only code that the library calls itself.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer's own name.
extern "C" const char* __tsan_default_suppressions() { return "called_from_lib:libcpp-httplib\n"; }
