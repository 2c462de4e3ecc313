// SPDX-License-Identifier: MIT
// A stream buffer that writes to a string.

#ifndef HOST_STRING_SINK_H_
#define HOST_STRING_SINK_H_

#include <cstddef>
#include <streambuf>
#include <string>

namespace stowra {

// Appends everything written to it to `text`, which must outlive it.
class StringSink : public std::streambuf {
 public:
  explicit StringSink(std::string& text) : text_(text) {}

 protected:
  std::streamsize xsputn(const char* bytes, std::streamsize count) override {
    text_.append(bytes, static_cast<std::size_t>(count));
    return count;
  }

  int_type overflow(int_type byte) override {
    if (byte != traits_type::eof()) text_ += traits_type::to_char_type(byte);
    return traits_type::not_eof(byte);
  }

 private:
  std::string& text_;
};

}  // namespace stowra

#endif  // HOST_STRING_SINK_H_
