// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/redirect.h"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>

#include "common_stowraapi/platform/http/header_text.h"

namespace ovrant::internet {

namespace {

constexpr std::array<std::string_view, 4> kHeadersForAllOrigins = {"Accept", "Accept-Language",
                                                                   "Content-Type", "User-Agent"};

constexpr unsigned int kAnyText = CURLU_URLENCODE | CURLU_ALLOW_SPACE | CURLU_NON_SUPPORT_SCHEME;

struct UrlDeleter {
  void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
struct TextDeleter {
  void operator()(char* text) const { curl_free(text); }
};

// A URL in its parts. Throws std::bad_alloc when memory runs out.
class UrlParts {
 public:
  UrlParts() : url_(curl_url()) {
    if (!url_) throw std::bad_alloc();
  }

  // False when `text` is not a URL. A URL that is set before makes it a relative one.
  bool Set(const std::string& text) { return SetPart(CURLUPART_URL, text.c_str(), kAnyText); }

  bool SetPart(CURLUPart part, const char* text, unsigned int flags = 0) {
    const CURLUcode code = curl_url_set(url_.get(), part, text, flags);
    if (code == CURLUE_OUT_OF_MEMORY) throw std::bad_alloc();
    return code == CURLUE_OK;
  }

  // Empty when the URL has no such part.
  std::string Part(CURLUPart part, unsigned int flags = 0) const {
    char* text = nullptr;
    const CURLUcode code = curl_url_get(url_.get(), part, &text, flags);
    if (code == CURLUE_OUT_OF_MEMORY) throw std::bad_alloc();
    const std::unique_ptr<char, TextDeleter> owner(text);
    return text != nullptr ? text : "";
  }

  std::string Scheme() const { return ToLowerCase(Part(CURLUPART_SCHEME)); }

  std::string Origin() const {
    return Scheme() + "://" + ToLowerCase(Part(CURLUPART_HOST)) + ":" +
           Part(CURLUPART_PORT, CURLU_DEFAULT_PORT);
  }

  void CopyUserFrom(const UrlParts& other) {
    for (const CURLUPart part : {CURLUPART_USER, CURLUPART_PASSWORD}) {
      const std::string text = other.Part(part);
      if (!text.empty()) SetPart(part, text.c_str());
    }
  }
  void RemoveUser() {
    for (const CURLUPart part : {CURLUPART_USER, CURLUPART_PASSWORD}) SetPart(part, nullptr);
  }

 private:
  std::unique_ptr<CURLU, UrlDeleter> url_;
};

bool IsHttp(const std::string& scheme) { return scheme == "http" || scheme == "https"; }

}  // namespace

std::string OriginOf(const std::string& url) {
  UrlParts parts;
  return parts.Set(url) && IsHttp(parts.Scheme()) ? parts.Origin() : "";
}

Failure ResolveRedirect(const std::string& url, const std::string& location, std::string& target) {
  UrlParts from;
  UrlParts to;
  if (!from.Set(url) || !to.Set(url) || !to.Set(location)) {
    return {TransferError::kMalformed, "the redirect's Location is not a URL"};
  }
  if (!IsHttp(to.Scheme())) {
    return {TransferError::kForbiddenRedirect, "a redirect leads to another scheme than http"};
  }
  if (from.Scheme() == "https" && to.Scheme() == "http") {
    return {TransferError::kForbiddenRedirect, "a redirect leads from https to http"};
  }
  if (to.Origin() != from.Origin()) {
    to.RemoveUser();
  } else if (to.Part(CURLUPART_USER).empty()) {
    to.CopyUserFrom(from);
  }
  target = to.Part(CURLUPART_URL);
  return kNoFailure;
}

bool MayLeaveOrigin(std::string_view header_name) {
  return std::any_of(
      kHeadersForAllOrigins.begin(), kHeadersForAllOrigins.end(),
      [header_name](std::string_view allowed) { return EqualsIgnoringCase(header_name, allowed); });
}

}  // namespace ovrant::internet
