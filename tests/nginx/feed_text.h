// SPDX-License-Identifier: MIT
// Documents of a content service.

#ifndef TESTS_NGINX_FEED_TEXT_H_
#define TESTS_NGINX_FEED_TEXT_H_

#include <string>

namespace stowra_test {

// The title (UTF-8) and the download URL of the model at `index`.
std::string ModelTitle(int index);
std::string ModelDownload(int index);

// A page of search results with `models` models.
std::string FeedText(const std::string& title, int models);

// An upload configuration with one file for `upload_url`.
std::string UploadConfigText(const std::string& upload_url);

}  // namespace stowra_test

#endif  // TESTS_NGINX_FEED_TEXT_H_
