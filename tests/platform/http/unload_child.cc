// SPDX-License-Identifier: MIT
// A program that unloads a plugin while transfers run. The plugin uses the platform library, which
// stays loaded. Usage: unload_child PLUGIN URL.

#include <dlfcn.h>

#include <cstdio>

#include "tests/platform/http/exit_child.h"

// ThreadSanitizer would wait a second at process exit.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options();
const char* __tsan_default_options() { return "atexit_sleep_ms=0"; }

namespace {

// Keeps the objects reachable for the leak checker.
void* volatile held = nullptr;

// Posted names must stay valid, so the plugin does not own them.
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
  // The test decides whether the server answers now.
  if (!WaitForWord()) return 5;
  Say(stowra_test::kExitChildLeaving);
  return stowra_test::kExitChildCode;
}
