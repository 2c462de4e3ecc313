// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/curl_handles.h"

#include <curl/curl.h>

#include <new>

#include "common_stowraapi/platform/http/header_text.h"

namespace ovrant::internet {

namespace {

template <typename Handle>
Handle Checked(typename Handle::pointer handle) {
  if (handle == nullptr) throw std::bad_alloc();
  return Handle(handle);
}

}  // namespace

void EasyDeleter::operator()(void* easy) const { curl_easy_cleanup(easy); }
void MultiDeleter::operator()(void* multi) const { curl_multi_cleanup(multi); }
void HeaderListDeleter::operator()(void* list) const {
  curl_slist_free_all(static_cast<curl_slist*>(list));
}

void EnsureCurl() {
  // After a failure the next call tries again.
  [[maybe_unused]] static const bool is_done = [] {
    if (curl_global_init(CURL_GLOBAL_ALL) != CURLE_OK) throw std::bad_alloc();
    return true;
  }();
}

bool ShowsTlsMessages() {
  static const bool shows = [] {
    const char* const name = curl_version_info(CURLVERSION_NOW)->ssl_version;
    return name != nullptr && StartsWithIgnoringCase(name, "OpenSSL/");
  }();
  return shows;
}

EasyHandle MakeEasyHandle() { return Checked<EasyHandle>(curl_easy_init()); }
MultiHandle MakeMultiHandle() { return Checked<MultiHandle>(curl_multi_init()); }

void AppendHeaderLine(const char* line, HeaderList& list) {
  curl_slist* const longer = curl_slist_append(static_cast<curl_slist*>(list.get()), line);
  if (longer == nullptr) throw std::bad_alloc();
  static_cast<void>(list.release());
  list.reset(longer);
}

}  // namespace ovrant::internet
