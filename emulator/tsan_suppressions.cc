// Read by ThreadSanitizer at start-up, in the builds that have it.

// The HTTP library comes without instrumentation, so the guards of its static tables go unseen and
// comparisons in those tables look like races. Only what it calls itself is left out.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer's own name.
extern "C" const char* __tsan_default_suppressions() { return "called_from_lib:libcpp-httplib\n"; }
