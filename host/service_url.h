// SPDX-License-Identifier: MIT
// Turns what the user writes into a URL.

#ifndef HOST_SERVICE_URL_H_
#define HOST_SERVICE_URL_H_

#include <string>
#include <string_view>
#include <vector>

namespace stowra {

// Whether `text` begins with http:// or https:// and a host, and has neither blanks nor controls.
bool IsWebUrl(std::string_view text);

// An empty string if IsWebUrl, otherwise an error text.
std::string CheckWebUrl(const std::string& text);

// The URL of `address`. "/x" is a path on the server of `base`, and "?x" is a query of `base`. "x"
// stands below `base`, whether that ends with a slash or not. A URL stays as it is. Without `base`
// so does everything else.
std::string ResolveUrl(const std::string& base, const std::string& address);

// The address of a search for the words, to be resolved.
std::string SearchAddress(const std::vector<std::string>& words);

}  // namespace stowra

#endif  // HOST_SERVICE_URL_H_
