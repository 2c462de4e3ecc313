// A program that unloads its user of the platform library while transfers run. Usage: unload_child
// PLUGIN URL. The platform library stays.

#include <dlfcn.h>

#include <cstdio>

#include "tests/platform/http/exit_child.h"

// Read by the thread sanitizer, which by itself waits a second at a process's exit.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options();
const char* __tsan_default_options() { return "atexit_sleep_ms=0"; }

namespace {

// Kept for the leak checker: nobody reads it.
void* volatile held = nullptr;

// Names that are posted are never freed, so they are not the plugin's.
constexpr char kName[] = "UnloadChildEnded";

// False at the end of the input.
bool WaitForWord() {
  char line[16];
  return std::fgets(line, sizeof(line), stdin) != nullptr;
}

void Say(const char* text) {
  std::puts(text);
  std::fflush(stdout);
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) return 2;
  void* const plugin = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
  if (plugin == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 3;
  }
  using Start = void*(const char* url, const char* name);
  auto* const start = reinterpret_cast<Start*>(dlsym(plugin, "StartTransfers"));
  held = start != nullptr ? start(arguments[2], kName) : nullptr;
  if (held == nullptr) return 4;
  if (!WaitForWord()) return 5;
  if (dlclose(plugin) != 0) return 6;
  if (dlopen(arguments[1], RTLD_NOW | RTLD_NOLOAD) != nullptr) return 8;
  Say(stowra_test::kUnloadChildUnloaded);
  // The transfers may be answered now, or not.
  if (!WaitForWord()) return 5;
  Say(stowra_test::kExitChildLeaving);
  return stowra_test::kExitChildCode;
}
