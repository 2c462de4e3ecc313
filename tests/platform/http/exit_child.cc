// SPDX-License-Identifier: MIT
// A program that exits while transfers run. Usage: exit_child MODE URL [CA_FILE].
//
// It starts transfers of URL and waits for a line on its input. Then it says "leaving" and exits as
// the mode says, with kExitChildCode. The server answers only in the modes that say so.

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/internet_data_delegate.h"
#include "common_stowraapi/platform/notification_center.h"
#include "tests/platform/http/exit_child.h"
#include "tests/support/notification_recorder.h"

// ThreadSanitizer would wait a second at process exit.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options();
const char* __tsan_default_options() { return "atexit_sleep_ms=0"; }

namespace stowra_test {

void WaitForWord() {
  char line[16];
  if (std::fgets(line, sizeof(line), stdin) == nullptr) std::abort();
}

void Say(const char* text) {
  std::puts(text);
  std::fflush(stdout);
}

int Leave() {
  Say(kExitChildLeaving);
  return kExitChildCode;
}

int WaitAndLeave() {
  WaitForWord();
  return Leave();
}

namespace {

using ovrant::internet::InternetData;
using ovrant::internet::InternetDataDelegate;
using ovrant::internet::TransferDefaults;
using ovrant::internet::TransferEvent;

constexpr char kEnded[] = "ExitChildEnded";

std::string url;

// The objects that are alive when the process ends.
struct Transfers {
  InternetDataDelegate delegate{nullptr, 1, kEnded, 2, kEnded};
  std::vector<std::unique_ptr<InternetData>> transports;

  void Start() {
    for (int i = 0; i < kExitChildTransfers; ++i) {
      transports.push_back(std::make_unique<InternetData>(url.c_str()));
      if (!transports.back()->DownloadWithDelegate(&delegate, nullptr)) std::abort();
    }
  }
};

// Never deleted, but still reachable.
Transfers* held = nullptr;

void StartHeld() {
  held = new Transfers;
  held->Start();
}

// Runs a function at the end of each transfer, from now on.
void Observe(const std::function<void()>& function) {
  static const auto* const recorder = new NotificationRecorder({kEnded}, function);
  static_cast<void>(recorder);
}

[[noreturn]] void Sleep() {
  while (true) pause();
}

int Return() {
  StartHeld();
  return WaitAndLeave();
}

int ReturnAndDestroy() {
  Transfers transfers;
  transfers.Start();
  return WaitAndLeave();
}

// Younger than the library's static objects, so it is destroyed before them.
int ReturnWithYoungStatic() {
  static Transfers young;
  young.Start();
  return WaitAndLeave();
}

// Destroyed after the library's own objects.
struct OldStatic {
  std::unique_ptr<Transfers> transfers;
  bool is_user = false;

  ~OldStatic() {
    if (!is_user) return;
    // No background transfer can start any more. Blocking transfers still work.
    InternetData late((url + "late").c_str());
    if (late.DownloadWithDelegate(&transfers->delegate, nullptr)) std::abort();
    if (!late.Download()) std::abort();
    transfers.reset();
    CNotificationCenter::Default()->SendNotification(kEnded, nullptr);
  }
} old_static;

int ReturnWithOldStatic() {
  old_static.transfers = std::make_unique<Transfers>();
  old_static.transfers->Start();
  old_static.is_user = true;
  return WaitAndLeave();
}

int Exit() {
  Transfers transfers;
  transfers.Start();
  std::exit(WaitAndLeave());
}

int ExitFromAnotherThread() {
  StartHeld();
  std::thread([] { std::exit(WaitAndLeave()); }).detach();
  Sleep();
}

// The server answers after the word.
int ExitInsideANotification() {
  Observe([] { std::exit(Leave()); });
  StartHeld();
  WaitForWord();
  Sleep();
}

int ExitInsideTheListener() {
  StartHeld();
  WaitForWord();
  InternetData::SetTransferListener([](const TransferEvent&) { std::exit(Leave()); });
  InternetData another(url.c_str());
  another.DownloadWithDelegate(&held->delegate, nullptr);
  Sleep();
}

[[noreturn]] void Hang() {
  Say(kExitChildReady);
  Sleep();
}

// The server answers at once. The observer of the first transfer never returns.
int ReturnWhileAnObserverHangs() {
  Observe(Hang);
  return Return();
}

// The listener of the first transfer never returns.
int ReturnWhileTheListenerHangs() {
  InternetData::SetTransferListener([](const TransferEvent&) { Hang(); });
  return Return();
}

// Destroyed after the library has given up waiting for the observer. Only then does the observer
// return.
struct LateEnd {
  std::promise<void> library_has_stopped;
  std::promise<void> called_again;
  std::atomic<int> calls{0};
  bool is_user = false;

  void OnCall() {
    if (++calls > 1) return called_again.set_value();
    Say(kExitChildReady);
    library_has_stopped.get_future().wait();
  }

  ~LateEnd() {
    if (!is_user) return;
    library_has_stopped.set_value();
    const auto again = called_again.get_future();
    if (again.wait_for(std::chrono::milliseconds(200)) == std::future_status::ready) _exit(1);
  }
} late_end;

// The server answers at once. The observer of the first transfer is the last one called.
int ReturnWhileAnObserverIsSlow() {
  late_end.is_user = true;
  Observe([] { late_end.OnCall(); });
  return Return();
}

int ReturnDuringABlockingDownload() {
  StartHeld();
  std::thread([blocking = url + "blocking"] {
    InternetData transport(blocking.c_str());
    transport.Download();
  }).detach();
  return WaitAndLeave();
}

// The server answers at once. The completions are queued and never run.
int ReturnWithQueuedCompletions() {
  static auto* const mutex = new std::mutex;
  static std::vector<std::function<void()>> queue;
  InternetData::SetCompletionExecutor([](std::function<void()> completion) {
    const std::lock_guard<std::mutex> lock(*mutex);
    queue.push_back(std::move(completion));
    if (queue.size() == kExitChildTransfers) Say(kExitChildReady);
  });
  return Return();
}

// The exit status of a child when it has ended, or -1.
int StatusOf(pid_t child) {
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Starts this program with `mode`, and returns its exit status.
int RunAgain(const char* self, const char* mode) {
  const pid_t child = fork();
  if (child == 0) {
    execl(self, self, mode, static_cast<char*>(nullptr));
    _exit(1);
  }
  return StatusOf(child);
}

int CountDescriptors(bool (*counts)(int descriptor)) {
  int count = 0;
  for (int descriptor = 0; descriptor < 1024; ++descriptor) count += counts(descriptor);
  return count;
}

bool IsConnection(int descriptor) {
  sockaddr_in address = {};
  socklen_t length = sizeof(address);
  return getpeername(descriptor, reinterpret_cast<sockaddr*>(&address), &length) == 0 &&
         address.sin_family == AF_INET;
}

// A program that is started during the transfers inherits none of their connections.
int ForkAndExec(const char* self) {
  StartHeld();
  WaitForWord();
  if (CountDescriptors(IsConnection) != kExitChildTransfers) return 1;
  if (RunAgain(self, "count-connections") != 0) return 2;
  return Leave();
}

// Registered before the library's own exit functions, so it runs after them.
std::atomic<bool> is_forked_child{false};
std::chrono::steady_clock::time_point exit_began;

void EndForkedChild() {
  if (!is_forked_child) return;
  const auto time = std::chrono::steady_clock::now() - exit_began;
  _exit(time < kExitChildForkedExit ? 0 : 1);
}

bool ForkedChildExitsAtOnce() {
  const pid_t child = fork();
  if (child == 0) {
    exit_began = std::chrono::steady_clock::now();
    is_forked_child = true;
    std::exit(3);
  }
  return StatusOf(child) == 0;
}

// A child that was forked during the transfers exits without waiting for them. They go on here. On
// a busy machine, only the fastest of several children tells.
int ForkAndExit() {
  StartHeld();
  WaitForWord();
  int tries = 5;
  while (!ForkedChildExitsAtOnce()) {
    if (--tries == 0) return 2;
  }
  return Leave();
}

// Each libcurl multi handle has a pair of local sockets that other programs may inherit. They are
// not used here and do not count.
bool IsOpen(int descriptor) {
  if (fcntl(descriptor, F_GETFD) < 0) return false;
  sockaddr_storage address = {};
  socklen_t length = sizeof(address);
  return getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length) != 0 ||
         address.ss_family != AF_UNIX;
}

// A program that is started during the transfers has as many descriptors as this one had at first.
// The server answers after the second word, and the transfers end as usual.
int ForkAndExecThenEnd(const char* self, int descriptors_at_first) {
  static std::promise<void> all_ended;
  static std::atomic<int> ended{0};
  Observe([] {
    if (++ended == kExitChildTransfers) all_ended.set_value();
  });
  StartHeld();
  WaitForWord();
  if (RunAgain(self, "count-descriptors") != descriptors_at_first) return 3;
  Say(kExitChildReady);
  all_ended.get_future().wait();
  for (const auto& transport : held->transports) {
    if (transport->status_code() != 200) return 4;
  }
  return Leave();
}

int Run(const std::string& mode, const char* self, int descriptors_at_first) {
  const std::map<std::string, std::function<int()>> modes = {
      {"return", Return},
      {"return-and-destroy", ReturnAndDestroy},
      {"return-with-young-static", ReturnWithYoungStatic},
      {"return-with-old-static", ReturnWithOldStatic},
      {"exit", Exit},
      {"exit-from-another-thread", ExitFromAnotherThread},
      {"exit-inside-a-notification", ExitInsideANotification},
      {"exit-inside-the-listener", ExitInsideTheListener},
      {"return-while-an-observer-hangs", ReturnWhileAnObserverHangs},
      {"return-while-the-listener-hangs", ReturnWhileTheListenerHangs},
      {"return-while-an-observer-is-slow", ReturnWhileAnObserverIsSlow},
      {"return-during-a-blocking-download", ReturnDuringABlockingDownload},
      {"return-with-queued-completions", ReturnWithQueuedCompletions},
      {"fork-and-exit", ForkAndExit},
      {"fork-and-exec", [self] { return ForkAndExec(self); }},
      {"fork-and-exec-then-end", [=] { return ForkAndExecThenEnd(self, descriptors_at_first); }},
  };
  const auto found = modes.find(mode);
  return found == modes.end() ? RunWithRequests(mode, url) : found->second();
}

}  // namespace
}  // namespace stowra_test

int main(int count, char** arguments) {
  if (count < 2 || std::atexit(stowra_test::EndForkedChild) != 0) return 2;
  const int descriptors = stowra_test::CountDescriptors(stowra_test::IsOpen);
  const std::string mode = arguments[1];
  if (mode == "count-descriptors") return descriptors;
  if (mode == "count-connections") return stowra_test::CountDescriptors(stowra_test::IsConnection);
  if (count < 3) return 2;
  stowra_test::url = arguments[2];
  if (count > 3) {
    stowra_test::TransferDefaults defaults;
    defaults.ca_file = arguments[3];
    stowra_test::InternetData::SetDefaults(defaults);
  }
  return stowra_test::Run(mode, arguments[0], descriptors);
}
