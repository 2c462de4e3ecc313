// What can go wrong between the library and a server, and what the library is to make of it.

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

// The target that every fault's own server answers in order, and the body of that answer.
inline constexpr char kGoodTarget[] = "/good";
inline constexpr char kGoodBody[] = "good";

// The servers of one fault, and where to meet it.
class Stage {
 public:
  // The last one added is the one to ask. None keeps a record of its requests.
  RawServer& AddServer(RawServer::Handler handler, RawServer::Options options = {});

  // Keeps something as long as the servers.
  template <typename Prop>
  Prop& Keep(std::shared_ptr<Prop> prop) {
    props_.push_back(prop);
    return *prop;
  }

  // Whether each server's connections are closed within kPatience, but for `kept` of the one to
  // ask.
  bool WaitUntilQuiet(int kept) const;

  // Of the server to ask, where none is set.
  std::string Url(const char* target = "/") const;
  void set_url(std::string url) { url_ = std::move(url); }

  TransferDefaults& defaults() { return defaults_; }

  // Called when the transfer has ended.
  void set_after(std::function<void()> after) { after_ = std::move(after); }
  void NoteEnd() const {
    if (after_) after_();
  }

 private:
  TransferDefaults defaults_;
  std::string url_;
  std::function<void()> after_;
  std::vector<std::shared_ptr<void>> props_;
  std::vector<std::unique_ptr<RawServer>> servers_;
};

// When a transfer ends, by its inactivity timeout.
enum class End {
  kBefore,  // without waiting for it
  kAt,      // by it, and at most a second late
  kAfter,   // long after: there is progress
};

struct Fault {
  Fault(const char* its_name, std::function<void(Stage& stage)> its_set, Answer its_answer);

  const char* name;
  std::function<void(Stage& stage)> set;
  Answer answer;

  End end = End::kBefore;
  std::vector<Way> ways = {Way::kDownload, Way::kDownloadWithDelegate};

  // A transfer of kGoodTarget goes before each, the same way, and leaves its connection.
  bool on_used_connection = false;

  // How many connections to the server the transfer leaves open for the next one.
  int kept_connections = 0;

  // A reset may reach the library before what went ahead of it: then the status is 0.
  bool may_lose_status = false;

  std::size_t upload_size = 4;

  // Many more than what libcurl may keep of the last ones has blocks, or a leak would not show.
  int runs = 400;
  int kept_blocks = kKeptBlocks;
};

// All ways there are, and those that send a body.
std::vector<Way> EveryWay();
std::vector<Way> Uploads();

// A handler that answers kGoodTarget in order, and anything else with `bytes`; then it closes.
RawServer::Handler SayThenClose(std::string bytes);

// A handler that answers kGoodTarget in order, and leaves anything else to `handler`.
RawServer::Handler GoodOr(RawServer::Handler handler);

// The faults by kind.
std::vector<Fault> ConnectionFaults();
std::vector<Fault> ReplyFaults();
std::vector<Fault> RedirectFaults();
std::vector<Fault> TlsFaults();

}  // namespace stowra_test

#endif  // TESTS_FAULTS_FAULT_H_
