// SPDX-License-Identifier: MIT
#include "host/trace_record.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/value.h"
#include "common_stowraapi/platform/ustring.h"
#include "host/json_values.h"

namespace stowra {

using ovrant::internet::TransferError;
using ovrant::internet::TransferEvent;
using ovrant::internet::TransferTimes;
using ovrant::json::Document;
using ovrant::json::Value;
using ovrant::utils::ovrant_ustring;
using Kind = TransferEvent::Kind;

namespace {

// In the order of the enumerators.
constexpr const char* kKinds[] = {"started", "progress",   "ended",    "queued",     "connected",
                                  "request", "first-byte", "response", "redirected", "posted"};
constexpr const char* kErrors[] = {"none",
                                   "bad-url",
                                   "name-not-found",
                                   "not-connected",
                                   "tls",
                                   "silent",
                                   "cut-off",
                                   "malformed",
                                   "too-large",
                                   "encoding",
                                   "too-many-redirects",
                                   "forbidden-redirect",
                                   "dropped",
                                   "out-of-memory",
                                   "body"};

struct Span {
  const char* name;
  double TransferTimes::*seconds;
};
constexpr Span kSpans[] = {
    {"queued", &TransferTimes::queued},         {"name", &TransferTimes::name},
    {"connect", &TransferTimes::connect},       {"tls", &TransferTimes::tls},
    {"first_byte", &TransferTimes::first_byte}, {"total", &TransferTimes::total}};

template <typename Enum, std::size_t kCount>
const char* WordIn(const char* const (&names)[kCount], Enum value) {
  const auto index = static_cast<std::size_t>(value);
  return index < kCount ? names[index] : "unknown";
}

// Returns false if there is no such name.
template <typename Enum, std::size_t kCount>
bool FindIn(const char* const (&names)[kCount], const ovrant_ustring& name, Enum& value) {
  for (std::size_t i = 0; i < kCount; ++i) {
    if (name == names[i]) {
      value = static_cast<Enum>(i);
      return true;
    }
  }
  return false;
}

double ToMicroseconds(double seconds) {
  constexpr double kMicro = 1e6;
  return std::round(seconds * kMicro) / kMicro;
}

Value MakeSeconds(Document& document, double seconds) {
  Value value = document.MakeValue();
  value.SetDouble(seconds);
  return value;
}

Value MakeTimes(Document& document, const TransferTimes& times) {
  Value value = MakeObject(document);
  for (const Span& span : kSpans) {
    value.AddMember(span.name, MakeSeconds(document, times.*span.seconds));
  }
  return value;
}

Value MakeLines(Document& document, const ovrant_ustring& head) {
  Value lines = MakeArray(document);
  for (const ovrant_ustring& line : head.TokenizeToVector("\n")) {
    if (!line.empty()) lines.PushBack(MakeText(document, line));
  }
  return lines;
}

// What only some kinds have.
void AddDetails(Document& document, const TransferEvent& event) {
  const bool has_head = event.kind == Kind::kRequest || event.kind == Kind::kResponse;
  if (event.kind == Kind::kConnected || event.kind == Kind::kEnded) {
    document.AddMember("address", MakeText(document, event.address));
    document.AddMember("port", MakeInt(document, event.port));
    document.AddMember("tls", MakeText(document, event.tls));
    document.AddMember("reused", MakeBool(document, event.is_reused));
  }
  if (has_head || !event.head.empty()) document.AddMember("head", MakeLines(document, event.head));
  if (event.kind == Kind::kRedirected) {
    document.AddMember("redirect_url", MakeText(document, event.redirect_url));
  }
  if (event.kind == Kind::kEnded) {
    document.AddMember("reason", MakeText(document, WordOf(event.reason)));
    document.AddMember("error", MakeText(document, event.error));
  }
  if (event.kind == Kind::kPosted) {
    document.AddMember("notification", MakeText(document, event.notification));
  }
}

// Reads the members of a record. The first bad one makes it fail.
class Reader {
 public:
  Reader(const Document& document, std::string& why) : document_(document), why_(why) {}

  bool good() const { return why_.empty(); }
  bool IsThere(const char* name) const { return document_.HasMember(name); }

  void Read(const char* name, double& number) {
    if (!Has(name, document_[name].IsNumber(), "a number")) return;
    number = document_[name].GetDouble();
    Require(number >= 0, name, "0 or above");
  }

  template <typename Number>
  void ReadCount(const char* name, Number& number) {
    if (!Has(name, document_[name].IsUint64(), "a whole number")) return;
    const unsigned long long wide = document_[name].GetUint64();
    number = static_cast<Number>(wide);
    Require(number >= 0 && static_cast<unsigned long long>(number) == wide, name,
            "a number of this size");
  }

  void Read(const char* name, ovrant_ustring& text) {
    if (Has(name, document_[name].IsString(), "a text")) text = document_[name].GetString();
  }

  template <typename Enum, std::size_t kCount>
  void Read(const char* name, const char* const (&names)[kCount], Enum& value) {
    ovrant_ustring text;
    Read(name, text);
    if (good()) Require(FindIn(names, text, value), name, "a known word");
  }

  void Read(const char* name, bool& flag) {
    if (Has(name, document_[name].IsBool(), "true or false")) flag = document_[name].GetBool();
  }

  void Read(const char* name, TransferTimes& times) {
    if (!Has(name, document_[name].IsObject(), "an object")) return;
    for (const Span& span : kSpans) times.*span.seconds = document_[name][span.name].GetDouble();
  }

  void ReadLines(const char* name, ovrant_ustring& head) {
    if (!Has(name, document_[name].IsArray(), "an array")) return;
    const Value& lines = document_[name];
    for (unsigned int i = 0; i < lines.Size(); ++i) head += lines[i].GetString() + "\n";
  }

 private:
  bool Has(const char* name, bool is_right, const char* type) {
    if (good()) Require(IsThere(name), name, "there");
    if (good()) Require(is_right, name, type);
    return good();
  }

  void Require(bool condition, const char* name, const char* what) {
    if (good() && !condition) why_ = fmt::format("'{}' is not {}", name, what);
  }

  const Document& document_;
  std::string& why_;
};

void ReadDetails(Reader& reader, TransferEvent& event) {
  if (event.kind == Kind::kConnected || event.kind == Kind::kEnded) {
    reader.Read("address", event.address);
    reader.ReadCount("port", event.port);
    reader.Read("tls", event.tls);
    reader.Read("reused", event.is_reused);
  }
  const bool has_head = event.kind == Kind::kRequest || event.kind == Kind::kResponse;
  if (has_head || reader.IsThere("head")) reader.ReadLines("head", event.head);
  if (event.kind == Kind::kRedirected) reader.Read("redirect_url", event.redirect_url);
  if (event.kind == Kind::kEnded) {
    reader.Read("reason", kErrors, event.reason);
    reader.Read("error", event.error);
  }
  if (event.kind == Kind::kPosted) reader.Read("notification", event.notification);
}

}  // namespace

TraceRecord MakeTraceRecord(double time, const TransferEvent& event) {
  TraceRecord record{ToMicroseconds(time), event};
  for (const Span& span : kSpans) {
    double& seconds = record.event.times.*span.seconds;
    seconds = ToMicroseconds(seconds);
  }
  return record;
}

const char* WordOf(Kind kind) { return WordIn(kKinds, kind); }
const char* WordOf(TransferError error) { return WordIn(kErrors, error); }

std::string ToTraceLine(const TraceRecord& record) {
  const TransferEvent& event = record.event;
  Document document;
  document.AddMember("time", MakeSeconds(document, record.time));
  document.AddMember("transfer", MakeSize(document, event.number));
  document.AddMember("event", MakeText(document, WordOf(event.kind)));
  document.AddMember("thread", MakeSize(document, event.thread));
  document.AddMember("method", MakeText(document, event.request_method));
  document.AddMember("url", MakeText(document, event.request_url));
  document.AddMember("request", MakeSize(document, event.request));
  document.AddMember("status", MakeInt(document, event.status));
  document.AddMember("bytes_sent", MakeSize(document, event.bytes_sent));
  document.AddMember("bytes_to_send", MakeSize(document, event.bytes_to_send));
  document.AddMember("wire_bytes_received", MakeSize(document, event.wire_bytes_received));
  document.AddMember("bytes_received", MakeSize(document, event.bytes_received));
  document.AddMember("times", MakeTimes(document, event.times));
  AddDetails(document, event);
  return ToLine(document);
}

bool ReadTraceLine(std::string_view line, TraceRecord& record, std::string& why) {
  Document document;
  if (!document.Load(ovrant_ustring(line.data(), line.size()))) {
    why = "not a line of JSON";
    return false;
  }
  why.clear();
  record = TraceRecord();
  TransferEvent& event = record.event;
  Reader reader(document, why);
  reader.Read("time", record.time);
  reader.ReadCount("transfer", event.number);
  reader.Read("event", kKinds, event.kind);
  reader.ReadCount("thread", event.thread);
  ovrant_ustring method;
  reader.Read("method", method);
  event.request_method = method == "POST" ? "POST" : "GET";
  reader.Read("url", event.request_url);
  reader.ReadCount("request", event.request);
  reader.ReadCount("status", event.status);
  reader.ReadCount("bytes_sent", event.bytes_sent);
  reader.ReadCount("bytes_to_send", event.bytes_to_send);
  reader.ReadCount("wire_bytes_received", event.wire_bytes_received);
  reader.ReadCount("bytes_received", event.bytes_received);
  reader.Read("times", event.times);
  ReadDetails(reader, event);
  return reader.good();
}

}  // namespace stowra
