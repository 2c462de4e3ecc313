// The documents that a content service would send.

#ifndef TESTS_NGINX_FEED_TEXT_H_
#define TESTS_NGINX_FEED_TEXT_H_

#include <string>

namespace stowra_test {

// The title of the model at `index`, in UTF-8.
std::string ModelTitle(int index);

// The URL from which that model is downloaded.
std::string ModelDownload(int index);

// A page of search results with that title and so many models.
std::string FeedText(const std::string& title, int models);

// An upload configuration with one file, to be sent to `upload_url`.
std::string UploadConfigText(const std::string& upload_url);

}  // namespace stowra_test

#endif  // TESTS_NGINX_FEED_TEXT_H_
