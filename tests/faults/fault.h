// SPDX-License-Identifier: MIT
// Faults between the library and a server, with the outcome that each must have.

#ifndef TESTS_FAULTS_FAULT_H_
#define TESTS_FAULTS_FAULT_H_

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/faults/ask.h"
#include "tests/faults/fault_table.h"
#include "tests/platform/http/transport_fixture.h"
#include "tests/support/raw_server.h"

namespace stowra_test {

using ovrant::internet::TransferError;

// Every fault's server answers this target with this body.
inline constexpr char kGoodTarget[] = "/good";
inline constexpr char kGoodBody[] = "good";

inline const RawServer::Options kWithoutRecords = {nullptr, true, 0, false};

// The servers of one fault, and the URL at which it occurs.
class Stage {
 public:
  // Adds a server. Transfers go to the last one added. No server records its requests.
  RawServer& AddServer(RawServer::Handler handler, RawServer::Options options = {});

  // Keeps `prop` as long as the servers.
  template <typename Prop>
  Prop& Keep(std::shared_ptr<Prop> prop) {
    props_.push_back(prop);
    return *prop;
  }

  // Waits until the servers' connections are closed. `kept` connections of the last server may stay
  // open. False after kPatience.
  bool WaitUntilQuiet(int kept) const;

  // Gives the URL that was set, else `target` of the last server.
  std::string Url(const char* target = "/") const;

  std::string url;
  TransferDefaults defaults;

  // Called before and after the transfer.
  std::function<void()> before = [] {};
  std::function<void()> after = [] {};

 private:
  std::vector<std::shared_ptr<void>> props_;
  std::vector<std::unique_ptr<RawServer>> servers_;
};

// When a transfer ends, compared with its inactivity timeout.
enum class End {
  kBefore,  // before the timeout
  kAt,      // at the timeout
  kAfter,   // long after the timeout, because there is progress
};

// The blocking and background downloads, all calls, and those that send a body.
std::vector<Way> Downloads();
std::vector<Way> EveryWay();
std::vector<Way> Uploads();

struct Fault {
  const char* name;
  std::function<void(Stage& stage)> set;
  Answer answer;
  std::vector<Way> ways = Downloads();

  // The number of connections that the transfer leaves open.
  int kept_connections = 0;

  End end = End::kBefore;

  // A transfer of kGoodTarget goes first, by the same call, and leaves its connection open.
  bool on_used_connection = false;

  // A reset may overtake the bytes before it. The status is 0 then.
  bool may_lose_status = false;

  std::size_t upload_size = 4;

  int runs = kRuns;
};

// A handler that answers kGoodTarget as usual and anything else with `bytes`. It closes after
// `bytes`.
RawServer::Handler SayThenClose(std::string bytes);

// A handler that answers kGoodTarget as usual and leaves anything else to `handler`.
RawServer::Handler GoodOr(RawServer::Handler handler);

// All faults, by kind.
std::vector<Fault> ConnectionFaults();
std::vector<Fault> ReplyFaults();
std::vector<Fault> RedirectFaults();
std::vector<Fault> TlsFaults();

}  // namespace stowra_test

#endif  // TESTS_FAULTS_FAULT_H_
