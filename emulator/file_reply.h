// SPDX-License-Identifier: MIT
// Responses that hold a file.

#ifndef EMULATOR_FILE_REPLY_H_
#define EMULATOR_FILE_REPLY_H_

#include <httplib.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "emulator/content/upload_store.h"

namespace stowra_emulator {

struct FileReply {
  std::string type;
  std::string etag;     // With its quotation marks.
  std::string updated;  // Such as 2024-01-31T09:00:00Z.
  std::uint64_t size = 0;

  // Copies bytes from `offset` on. Returns how many, 0 after an error. Runs after the handler.
  std::function<std::size_t(std::uint64_t offset, char* data, std::size_t size)> read;
};

// Set `size` and `read`.
void SetBytes(FileReply& reply, std::string bytes);
void SetFile(FileReply& reply, UploadStore::File file, std::uint64_t size);

// Answers with the file, or with the part that the request asks for.
void AnswerFile(const httplib::Request& request, const FileReply& reply,
                httplib::Response& response);

}  // namespace stowra_emulator

#endif  // EMULATOR_FILE_REPLY_H_
