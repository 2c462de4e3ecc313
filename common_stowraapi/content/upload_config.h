// SPDX-License-Identifier: MIT
// Reads where to send the files of an upload.

#ifndef COMMON_STOWRAAPI_CONTENT_UPLOAD_CONFIG_H_
#define COMMON_STOWRAAPI_CONTENT_UPLOAD_CONFIG_H_

#include <cstdint>
#include <vector>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::stowraapiclient {

// One file of an upload: what the configuration says about it, and the local file that the host
// chooses. Copying may throw std::bad_alloc. The order and the types of the members are part of the
// binary interface.
struct STOWRA_EXPORT UploadFile {
  UploadFile();
  UploadFile(const UploadFile& other);
  UploadFile& operator=(const UploadFile& other);
  virtual ~UploadFile();

  ovrant::utils::ovrant_ustring upload_url_;  // its query also holds form values (see SetupPayload)
  ovrant::utils::ovrant_ustring type_;
  bool zipped_ = false;  // send zipped_file_path_, not file_path_
  ovrant::utils::ovrant_ustring name_;
  ovrant::utils::ovrant_ustring format_;
  int width_ = 0;
  int height_ = 0;
  ovrant::utils::ovrant_ustring file_path_;         // set by the host
  std::uint64_t opaque_value_ = 0;                  // the host's; the library only copies it
  ovrant::utils::ovrant_ustring zipped_file_path_;  // set by the host
};

// The upload configuration, an XML document without namespaces. It names an upload URL for each
// file and two URLs that the host opens after a success or a failure.
//
// For one thread at a time; SynchronousQuery blocks it for the whole download. Only Init and
// copying throw std::bad_alloc. The order and the types of the members are part of the binary
// interface.
class STOWRA_EXPORT UploadConfig {
 public:
  UploadConfig();
  ~UploadConfig();

  UploadConfig(const UploadConfig& other);
  UploadConfig& operator=(const UploadConfig& other);

  // Sets the URL of the configuration and clears the results. std::bad_alloc changes nothing.
  void Init(const ovrant::utils::ovrant_ustring& url);

  // Empties the results; the URL stays.
  void Clear();

  // Reads the configuration in `data`: `length` bytes, which stay the caller's, in an encoding that
  // Get_IXMLInput reads. Replaces each of the two URLs that it has and appends its files, complete
  // or not, to those already here. Each file takes the memory of an UploadFile, however short its
  // element.
  //
  // True when the document has both URLs and a list of files, which may be empty, and each file has
  // an upload URL and a type. False otherwise, also when memory runs out; the results then hold
  // what was read. False, with nothing changed, for a null `data` and for a `length` of 0 or above
  // INT_MAX.
  bool ParseResponse(unsigned char* data, unsigned long length);

  // Downloads the configuration and parses the body, whatever the HTTP status. Does not clear
  // first: call Init before each query. False, with empty results, when the download or
  // ParseResponse fails or memory runs out.
  bool SynchronousQuery();

  ovrant::utils::ovrant_ustring url_;
  ovrant::utils::ovrant_ustring success_url_;
  ovrant::utils::ovrant_ustring failure_url_;
  std::vector<UploadFile> files_;  // in the order of the document
};

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_UPLOAD_CONFIG_H_
