// SPDX-License-Identifier: MIT
#include "host/waterfall.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace stowra {

using ovrant::internet::TransferError;
using ovrant::internet::TransferEvent;
using ovrant::internet::TransferTimes;
using Kind = TransferEvent::Kind;

namespace {

// Texts of a trace may hold anything. A URL has room for the bytes of other characters.
std::string ToAscii(const std::string& url) {
  std::string ascii;
  for (const char c : url) {
    const bool is_visible = c > ' ' && c <= '~';
    ascii += is_visible ? std::string(1, c) : fmt::format("%{:02X}", static_cast<unsigned char>(c));
  }
  return ascii;
}

void AddBar(Phase phase, double begin, double end, RequestRow& row) {
  if (end > begin) row.bars.push_back({phase, begin, end});
}

}  // namespace

const char* NameOf(Phase phase) {
  switch (phase) {
    case Phase::kQueued:
      return "queued";
    case Phase::kName:
      return "name";
    case Phase::kConnect:
      return "connect";
    case Phase::kTls:
      return "TLS";
    case Phase::kWait:
      return "waiting";
    case Phase::kReceive:
      break;
  }
  return "receiving";
}

void Waterfall::Add(const TraceRecord& record) {
  last_ = std::max(last_, record.time);
  const Kind kind = record.event.kind;
  const auto found = running_.find(record.event.number);
  if (kind == Kind::kQueued || (kind == Kind::kStarted && found == running_.end())) {
    Begin(record, kind == Kind::kQueued ? Phase::kQueued : Phase::kConnect);
    return;
  }
  if (found == running_.end()) return;
  Transfer& transfer = found->second;
  if (kind == Kind::kStarted) {
    EndPhase(record.time, transfer);
    transfer.phase = Phase::kConnect;
    transfer.phase_begin = record.time;
  } else if (kind == Kind::kConnected) {
    // The transport may ask again after a response.
    if (transfer.phase != Phase::kConnect) EndRequest(record, transfer);
    rows_[transfer.row].is_reused = record.event.is_reused;
    if (!record.event.is_reused) EndConnecting(record, transfer, true);
    transfer.phase = Phase::kWait;
    transfer.phase_begin = record.time;
  } else if (kind == Kind::kFirstByte) {
    EndPhase(record.time, transfer);
    transfer.phase = Phase::kReceive;
    transfer.phase_begin = record.time;
  } else if (kind == Kind::kResponse) {
    transfer.status = record.event.status;
  } else if (kind == Kind::kRedirected || kind == Kind::kEnded) {
    EndRequest(record, transfer);
    if (kind == Kind::kEnded) running_.erase(found);
  }
}

std::vector<RequestRow> Waterfall::Rows() const {
  Waterfall ended = *this;
  for (const auto& [number, transfer] : running_) {
    ended.EndPhase(last_, transfer);
    ended.rows_[transfer.row].result = "unfinished";
    ended.rows_[transfer.row].end = last_;
  }
  return std::move(ended.rows_);
}

void Waterfall::Begin(const TraceRecord& record, Phase phase) {
  RequestRow row;
  row.transfer = record.event.number;
  row.method = record.event.request_method;
  row.url = ToAscii(record.event.request_url.utf8());
  row.begin = record.time;
  running_[record.event.number] = {rows_.size(), phase, record.time, {}, 0};
  rows_.push_back(std::move(row));
}

// The times say how long each phase was. What is left over is the phase that has not ended, or the
// library's own work before a connection that stands.
void Waterfall::EndConnecting(const TraceRecord& record, Transfer& transfer, bool is_connected) {
  const TransferTimes& now = record.event.times;
  const std::pair<Phase, double> phases[] = {
      {Phase::kName, now.name - transfer.before.name},
      {Phase::kConnect, now.connect - transfer.before.connect},
      {Phase::kTls, now.tls - transfer.before.tls}};
  double all = 0;
  Phase open = Phase::kName;
  for (const auto& [phase, seconds] : phases) {
    all += std::max(seconds, 0.0);
    if (seconds > 0) open = phase == Phase::kName ? Phase::kConnect : Phase::kTls;
  }
  const double rest = std::max(record.time - transfer.phase_begin - all, 0.0);
  double begin = transfer.phase_begin + (is_connected ? rest : 0);
  RequestRow& row = rows_[transfer.row];
  for (const auto& [phase, seconds] : phases) {
    const double end = std::min(begin + std::max(seconds, 0.0), record.time);
    AddBar(phase, begin, end, row);
    begin = end;
  }
  if (!is_connected) AddBar(open, begin, record.time, row);
}

void Waterfall::EndRequest(const TraceRecord& record, Transfer& transfer) {
  const TransferEvent& event = record.event;
  if (transfer.phase == Phase::kConnect) {
    EndConnecting(record, transfer, false);
  } else {
    EndPhase(record.time, transfer);
  }
  RequestRow& row = rows_[transfer.row];
  row.method = event.request_method;
  row.has_failed = event.reason != TransferError::kNone;
  const int status = event.kind == Kind::kConnected ? transfer.status : event.status;
  row.result = row.has_failed ? WordOf(event.reason) : fmt::format("{}", status);
  row.end = record.time;
  if (event.kind == Kind::kEnded) return;
  TraceRecord next = record;
  if (event.kind == Kind::kRedirected) next.event.request_url = event.redirect_url;
  Begin(next, Phase::kConnect);
  running_[event.number].before = event.times;
}

void Waterfall::EndPhase(double time, const Transfer& transfer) {
  AddBar(transfer.phase, transfer.phase_begin, time, rows_[transfer.row]);
}

}  // namespace stowra
