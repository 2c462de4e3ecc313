#include "fuzz/platform/http/model.h"

#include <zlib.h>

#include <cstdint>
#include <optional>

namespace stowra_fuzz {
namespace {

using Kind = HttpOutcome::Kind;
using Headers = std::vector<std::pair<std::string, std::string>>;

constexpr char kDigits[] = "0123456789";
constexpr char kTokenCharacters[] =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ!#$%&'*+-.^_`|~";

bool IsMadeOf(const std::string& text, const char* characters) {
  return !text.empty() && text.find_first_not_of(characters) == std::string::npos;
}

std::string Lower(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return text;
}

std::string Trimmed(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(" \t");
  if (begin == std::string::npos) return "";
  return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

// Takes lines that end in CR LF and hold no other CR, LF or NUL.
class Lines {
 public:
  explicit Lines(std::string_view bytes) : rest_(bytes) {}

  std::optional<std::string> Take() {
    const std::size_t end = rest_.find("\r\n");
    if (end == std::string_view::npos) return std::nullopt;
    std::string line(rest_.substr(0, end));
    if (line.find_first_of(std::string("\r\n\0", 3)) != std::string::npos) return std::nullopt;
    rest_.remove_prefix(end + 2);
    return line;
  }

  std::string_view rest() const { return rest_; }
  void Skip(std::size_t size) { rest_.remove_prefix(size); }

 private:
  std::string_view rest_;
};

// The status, or 0 if the line is not plain.
int ReadStatusLine(const std::string& line) {
  const std::string version = line.substr(0, 9);
  if (version != "HTTP/1.1 " && version != "HTTP/1.0 ") return 0;
  const std::string status = line.substr(9, 3);
  if (status.size() != 3 || !IsMadeOf(status, kDigits)) return 0;
  if (line.size() > 12 && line[12] != ' ') return 0;
  return std::stoi(status);
}

// False if a line is not plain. Also takes the empty line at the end.
bool ReadHeaders(Lines& lines, Headers& headers) {
  for (;;) {
    const std::optional<std::string> line = lines.Take();
    if (!line) return false;
    if (line->empty()) return true;
    const std::size_t colon = line->find(':');
    const std::string name = line->substr(0, colon);
    if (colon == std::string::npos || !IsMadeOf(name, kTokenCharacters)) return false;
    headers.emplace_back(name, Trimmed(line->substr(colon + 1)));
  }
}

std::vector<std::string> ValuesOf(const Headers& headers, const std::string& lower_name) {
  std::vector<std::string> values;
  for (const auto& [name, value] : headers) {
    if (Lower(name) == lower_name) values.push_back(value);
  }
  return values;
}

// The body's framing by the headers.
struct Framing {
  bool is_clear = true;
  bool is_refused = false;
  bool is_gzip = false;
  bool is_chunked = false;
  std::optional<std::uint64_t> length;
};

void ReadLengths(const std::string& list, Framing& framing) {
  std::string rest = list + ',';
  while (!rest.empty()) {
    const std::string digits = Trimmed(rest.substr(0, rest.find(',')));
    rest.erase(0, rest.find(',') + 1);
    if (!IsMadeOf(digits, kDigits)) {
      framing.is_refused = true;
      return;
    }
    std::uint64_t length = 0;
    for (const char digit : digits) {
      if (length > std::uint64_t{1} << 40) framing.is_clear = false;
      length = length * 10 + static_cast<std::uint64_t>(digit - '0');
    }
    if (framing.length && *framing.length != length) framing.is_refused = true;
    framing.length = length;
  }
}

Framing ReadFraming(const Headers& headers) {
  Framing framing;
  const auto encodings = ValuesOf(headers, "content-encoding");
  const auto codings = ValuesOf(headers, "transfer-encoding");
  if (encodings.size() > 1 || codings.size() > 1) framing.is_clear = false;
  for (const std::string& value : encodings) {
    framing.is_gzip = Lower(value) == "gzip" || Lower(value) == "x-gzip";
    if (!framing.is_gzip && !value.empty() && Lower(value) != "identity") framing.is_refused = true;
  }
  for (const std::string& value : codings) {
    framing.is_chunked = Lower(value) == "chunked";
    if (Lower(value) == "identity") framing.is_clear = false;
    if (!framing.is_chunked && Lower(value) != "identity") framing.is_refused = true;
  }
  for (const std::string& value : ValuesOf(headers, "content-length")) ReadLengths(value, framing);
  if (!ValuesOf(headers, "upgrade").empty()) framing.is_clear = false;
  return framing;
}

struct Body {
  Kind kind = Kind::kReceived;
  std::string bytes;
};

Body ReadChunks(std::string_view bytes) {
  Body body;
  Lines lines(bytes);
  for (;;) {
    // An incomplete line, or no line at all.
    if (lines.rest().find("\r\n") == std::string_view::npos &&
        lines.rest().find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos) {
      return {Kind::kFailed, ""};
    }
    const std::optional<std::string> line = lines.Take();
    if (!line || !IsMadeOf(*line, "0123456789abcdefABCDEF") || line->size() > 6) {
      return {Kind::kUnclear, ""};
    }
    const auto size = static_cast<std::size_t>(std::stoul(*line, nullptr, 16));
    if (size == 0) break;
    if (lines.rest().size() < size + 2) return {Kind::kFailed, ""};
    body.bytes += lines.rest().substr(0, size);
    lines.Skip(size);
    // Other line ends may be accepted.
    const char end = lines.rest().front();
    if (end != '\r' && end != '\n') return {Kind::kFailed, ""};
    if (lines.Take() != "") return {Kind::kUnclear, ""};
  }
  // Trailers have no effect.
  for (std::optional<std::string> trailer; trailer != "";) {
    trailer = lines.Take();
    const bool is_field = trailer && trailer->find(':') != std::string::npos;
    if (!is_field && trailer != "") return {Kind::kUnclear, ""};
  }
  return body;
}

Body ReadBody(std::string_view bytes, const Framing& framing) {
  if (framing.is_chunked) return ReadChunks(bytes);
  if (!framing.length) return {Kind::kReceived, std::string(bytes)};
  if (bytes.size() < *framing.length) return {Kind::kFailed, ""};
  return {Kind::kReceived, std::string(bytes.substr(0, static_cast<std::size_t>(*framing.length)))};
}

// Decodes any number of members. Gives nothing if they are incomplete or beyond the cap.
std::optional<std::string> Unzipped(const std::string& zipped, std::size_t cap) {
  std::string out(cap + 1, '\0');
  std::size_t size = 0;
  std::size_t at = 0;
  while (at < zipped.size()) {
    z_stream stream = {};
    if (inflateInit2(&stream, 15 + 16) != Z_OK) return std::nullopt;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(zipped.data() + at));
    stream.avail_in = static_cast<uInt>(zipped.size() - at);
    stream.next_out = reinterpret_cast<Bytef*>(out.data() + size);
    stream.avail_out = static_cast<uInt>(out.size() - size);
    const int result = inflate(&stream, Z_FINISH);
    at = zipped.size() - stream.avail_in;
    size = out.size() - stream.avail_out;
    inflateEnd(&stream);
    if (result != Z_STREAM_END || size > cap) return std::nullopt;
  }
  return out.substr(0, size);
}

// A path on the same server.
bool IsPlainPath(const std::string& location) {
  return !location.empty() && location[0] == '/' && location.substr(0, 2) != "//" &&
         IsMadeOf(location, "0123456789abcdefghijklmnopqrstuvwxyz/?=&");
}

HttpOutcome Finish(HttpOutcome outcome, Body body, const Framing& framing, bool follows_redirects,
                   std::size_t cap) {
  const bool has_no_body = outcome.status == 204 || outcome.status == 304;
  if (has_no_body) body = Body();
  const auto locations = ValuesOf(outcome.headers, "location");
  const bool may_redirect = follows_redirects && outcome.status >= 300 && outcome.status <= 399;
  if (may_redirect && !locations.empty()) {
    const bool is_whole =
        body.kind == Kind::kReceived && !framing.is_gzip && (framing.is_chunked || framing.length);
    if (locations.size() == 1 && IsPlainPath(locations[0]) && is_whole && !has_no_body) {
      outcome.kind = Kind::kRedirect;
    }
    return outcome;
  }
  outcome.kind = body.kind;
  if (body.kind != Kind::kReceived) return outcome;
  if (framing.is_gzip && !body.bytes.empty()) {
    const std::optional<std::string> unzipped = Unzipped(body.bytes, cap);
    if (!unzipped) outcome.kind = Kind::kFailed;
    outcome.body = unzipped.value_or("");
  } else {
    if (body.bytes.size() > cap) outcome.kind = Kind::kFailed;
    outcome.body = body.bytes;
  }
  return outcome;
}

}  // namespace

HttpOutcome ReadReply(std::string_view bytes, bool follows_redirects, std::size_t cap) {
  HttpOutcome outcome;
  Lines lines(bytes);
  Framing framing;
  for (;;) {
    const std::optional<std::string> line = lines.Take();
    outcome.status = line ? ReadStatusLine(*line) : 0;
    outcome.headers.clear();
    if (!ReadHeaders(lines, outcome.headers)) return outcome;
    framing = ReadFraming(outcome.headers);
    if (outcome.status >= 200) break;
    const bool is_plain =
        outcome.status == 100 && line->substr(0, 9) == "HTTP/1.1 " && outcome.headers.empty();
    if (!is_plain) return outcome;
    if (lines.rest().empty()) {
      outcome.kind = Kind::kFailed;
      return outcome;
    }
  }
  if (!framing.is_clear) return outcome;
  if (framing.is_refused) {
    outcome.kind = Kind::kFailed;
    return outcome;
  }
  const Body body = ReadBody(lines.rest(), framing);
  return Finish(std::move(outcome), body, framing, follows_redirects, cap);
}

bool HasStatusLine(std::string_view bytes, int status) {
  const std::string text = Lower(std::string(bytes));
  const std::string digits = ' ' + std::to_string(status);
  for (std::size_t at = text.find("http/"); at != std::string::npos;
       at = text.find("http/", at + 1)) {
    const std::string line = text.substr(at, text.find('\n', at) - at);
    if (line.find(digits) != std::string::npos) return true;
  }
  return false;
}

}  // namespace stowra_fuzz
