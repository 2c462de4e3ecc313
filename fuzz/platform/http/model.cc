// SPDX-License-Identifier: MIT
#include "fuzz/platform/http/model.h"

#include <zlib.h>

#include <algorithm>

namespace stowra_fuzz {
namespace {

constexpr char kDigits[] = "0123456789";
constexpr char kHexDigits[] = "0123456789abcdefABCDEF";

std::string Lower(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return text;
}

std::string Trimmed(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string::npos) return "";
  return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

// The next line with its line feed, or all the rest.
std::string_view TakeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  const std::size_t size = std::min(line.size() + 1, text.size());
  const std::string_view whole = text.substr(0, size);
  text.remove_prefix(size);
  return whole;
}

bool BeginsWithBlank(std::string_view line) {
  return !line.empty() && (line[0] == ' ' || line[0] == '\t');
}

// The status after "HTTP/", a version and spaces, or 0.
int StatusOf(const std::string& line) {
  const std::size_t space = line.find(' ');
  if (space == std::string::npos || line.find_first_of(kDigits, 5) != 5) return 0;
  const std::size_t begin = line.find_first_not_of(' ', space);
  if (begin == std::string::npos) return 0;
  const std::size_t end = line.find_first_not_of(kDigits, begin);
  const std::string digits = line.substr(begin, end == std::string::npos ? end : end - begin);
  return digits.size() == 3 && digits[0] != '0' ? std::stoi(digits) : 0;
}

// A decimal number of 64 bits.
std::optional<std::uint64_t> NumberIn(const std::string& digits) {
  if (digits.empty() || digits.find_first_not_of(kDigits) != std::string::npos) return std::nullopt;
  std::uint64_t number = 0;
  for (const char digit : digits) {
    const auto value = static_cast<std::uint64_t>(digit - '0');
    if (number > (UINT64_MAX - value) / 10) return std::nullopt;
    number = number * 10 + value;
  }
  return number;
}

Fault ReadLengths(const std::string& list, ReplyHead& head) {
  for (std::string rest = list + ','; !rest.empty();) {
    const auto length = NumberIn(Trimmed(rest.substr(0, rest.find(','))));
    if (!length || (head.length && head.length != length)) return Fault::kMalformed;
    head.length = length;
    rest.erase(0, rest.find(',') + 1);
  }
  return Fault::kNone;
}

bool Frames(const std::string& name) {
  return name == "content-encoding" || name == "transfer-encoding" || name == "content-length";
}

// Reads the framing from all fields anew.
Fault ReadFraming(ReplyHead& head) {
  bool is_identity = false;
  head.is_gzip = head.is_chunked = false;
  head.length.reset();
  for (const auto& [spelt_name, spelt_value] : head.fields) {
    const std::string name = Lower(spelt_name);
    const std::string value = Lower(spelt_value);
    if (name == "content-encoding" && !value.empty() && value != "identity") {
      if (head.is_gzip || (value != "gzip" && value != "x-gzip")) return Fault::kEncoding;
      head.is_gzip = true;
    } else if (name == "transfer-encoding") {
      if (value != "chunked" && value != "identity") return Fault::kEncoding;
      is_identity = value == "identity";
      head.is_chunked = head.is_chunked || value == "chunked";
    } else if (name == "content-length" && ReadLengths(value, head) != Fault::kNone) {
      return Fault::kMalformed;
    }
    if (is_identity && head.length) return Fault::kMalformed;
  }
  return Fault::kNone;
}

Fault ReadField(const std::string& line, ReplyHead& head) {
  if (line.find('\0') != std::string::npos) return Fault::kMalformed;
  if (BeginsWithBlank(line)) {
    if (head.fields.empty() || Frames(Lower(head.fields.back().first))) return Fault::kMalformed;
    head.fields.back().second += ' ' + Trimmed(line);
    return Fault::kNone;
  }
  const std::size_t colon = line.find(':');
  if (colon == std::string::npos || colon == 0) return Fault::kMalformed;
  const std::string name = Trimmed(line.substr(0, colon));
  head.fields.emplace_back(name, Trimmed(line.substr(colon + 1)));
  if (head.location.empty() && Lower(name) == "location") head.location = head.fields.back().second;
  if (!Frames(Lower(name))) return Fault::kNone;
  return name.size() == colon ? ReadFraming(head) : Fault::kMalformed;
}

Fault ReadLine(const std::string& line, ReplyHead& head) {
  head.lines += 1;
  head.bytes += line.size();
  if (head.bytes > kMostHeadBytes) return Fault::kTooLarge;
  if (head.status < 200 && Lower(line.substr(0, 5)) == "http/") {
    ReplyHead next;
    next.lines = head.lines;
    next.bytes = head.bytes;
    next.status = StatusOf(line);
    head = next;
    return head.status == 0 || head.status == 101 ? Fault::kMalformed : Fault::kNone;
  }
  if (head.status == 0) return Fault::kMalformed;
  if (line.find_first_not_of("\r\n") != std::string::npos) return ReadField(line, head);
  head.is_whole = head.status >= 200;
  return Fault::kNone;
}

// A chunked body without its framing.
struct Chunks {
  bool is_broken = false;
  bool is_whole = false;
  std::string payload;
  std::size_t trailer_lines = 0;
  std::size_t trailer_bytes = 0;
};

// The chunk's size, when its line is whole.
std::optional<std::uint64_t> ReadSize(std::string_view line, Chunks& chunks) {
  const std::string_view digits = line.substr(0, line.find_first_not_of(kHexDigits));
  const std::string_view rest = line.substr(digits.size());
  std::uint64_t size = 0;
  bool fits = true;
  for (const char digit : digits) {
    fits = fits && size >> 60 == 0;
    size = size << 4 | static_cast<std::uint64_t>(std::stoi(std::string(1, digit), nullptr, 16));
  }
  const bool ends_well = rest.empty() || (!digits.empty() && rest.find_first_of("\r\n; \t") == 0);
  chunks.is_broken = !fits || !ends_well || line.size() > kMostSizeLine;
  if (chunks.is_broken || line.empty() || line.back() != '\n') return std::nullopt;
  return size;
}

void ReadTrailers(std::string_view text, Chunks& chunks) {
  while (!text.empty() && !chunks.is_broken && !chunks.is_whole) {
    const std::string_view spelt = TakeLine(text);
    chunks.trailer_bytes += spelt.size();
    std::string line(spelt);
    line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
    const std::size_t length = line.size() - (!line.empty() && line.back() == '\n' ? 1 : 0);
    chunks.is_broken = line.find('\0') != std::string::npos || length > kMostTrailerLine;
    if (line.empty() || line.back() != '\n') return;
    const std::size_t colon = line.find(':', 1);
    const bool is_fold = BeginsWithBlank(line) && chunks.trailer_lines > 0;
    chunks.is_whole = line == "\n";
    if (chunks.is_whole) return;
    chunks.is_broken = chunks.is_broken || (colon == std::string::npos && !is_fold);
    chunks.trailer_lines += chunks.is_broken ? 0 : 1;
  }
}

Chunks ReadChunks(std::string_view text) {
  Chunks chunks;
  while (const auto size = ReadSize(TakeLine(text), chunks)) {
    if (*size == 0) {
      ReadTrailers(text, chunks);
      break;
    }
    const std::string_view data = text.substr(0, static_cast<std::size_t>(*size));
    chunks.payload += data;
    text.remove_prefix(data.size());
    if (data.size() < *size || text.empty() || text == "\r") break;
    const std::size_t end = text[0] == '\r' ? 1 : 0;
    chunks.is_broken = text[end] != '\n';
    if (chunks.is_broken) break;
    text.remove_prefix(end + 1);
  }
  return chunks;
}

// Decodes any number of members. False if the stream is corrupt or exceeds the cap.
bool Unzip(const std::string& zipped, std::size_t cap, bool& is_whole, std::string& out) {
  out.assign(cap + 1, '\0');
  std::size_t size = 0;
  int result = Z_STREAM_END;
  for (std::size_t at = 0; at < zipped.size() && result == Z_STREAM_END && size <= cap;) {
    z_stream stream = {};
    if (inflateInit2(&stream, 15 + 16) != Z_OK) return false;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(zipped.data() + at));
    stream.avail_in = static_cast<uInt>(zipped.size() - at);
    stream.next_out = reinterpret_cast<Bytef*>(out.data() + size);
    stream.avail_out = static_cast<uInt>(out.size() - size);
    result = inflate(&stream, Z_SYNC_FLUSH);
    at = zipped.size() - stream.avail_in;
    size = out.size() - stream.avail_out;
    inflateEnd(&stream);
  }
  is_whole = result == Z_STREAM_END;
  out.resize(std::min(size, cap));
  return size <= cap && (is_whole || result == Z_OK || result == Z_BUF_ERROR);
}

}  // namespace

bool ReplyHead::IsRedirect() const {
  const bool has_status =
      status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
  return has_status && !location.empty();
}

ReplyHead ReadHead(std::string_view text) {
  ReplyHead head;
  while (!text.empty() && !head.is_whole && head.fault == Fault::kNone) {
    head.fault = ReadLine(std::string(TakeLine(text)), head);
  }
  return head;
}

ReplyBody ReadBody(const ReplyHead& head, std::string_view rest, bool follows_redirects,
                   std::size_t cap) {
  const bool may_have_body = head.is_whole && !head.HasNoBody();
  Chunks chunks;
  if (may_have_body && head.is_chunked) {
    chunks = ReadChunks(rest);
  } else {
    chunks.payload = rest;
    chunks.is_whole = true;
  }
  const bool is_followed = follows_redirects && head.IsRedirect();
  const bool is_zipped = head.is_gzip && !is_followed;
  const std::uint64_t length = head.IsCounted() ? head.length.value_or(0) : chunks.payload.size();
  ReplyBody body;
  body.payload = chunks.payload.size();
  body.trailer_lines = chunks.trailer_lines;
  body.is_refused = chunks.is_broken || (!may_have_body && !rest.empty()) ||
                    body.payload > length || (!is_zipped && body.payload > cap) ||
                    head.bytes + chunks.trailer_bytes > kMostHeadBytes;
  if (body.is_refused) return body;
  bool is_stream_whole = true;
  if (is_zipped) {
    body.is_refused = !Unzip(chunks.payload, cap, is_stream_whole, body.decoded);
  } else if (!is_followed) {
    body.decoded = chunks.payload;
  }
  const bool has_all = chunks.is_whole && is_stream_whole && body.payload == length;
  body.is_whole = head.is_whole && !body.is_refused && (head.HasNoBody() || has_all);
  return body;
}

}  // namespace stowra_fuzz
