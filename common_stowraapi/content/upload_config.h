// Where the files of an upload are to be sent.

#ifndef COMMON_STOWRAAPI_CONTENT_UPLOAD_CONFIG_H_
#define COMMON_STOWRAAPI_CONTENT_UPLOAD_CONFIG_H_

#include <cstdint>
#include <vector>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::stowraapiclient {

// One file of an upload, as the configuration describes it, and the local file that the host
// chooses for it. The order and the types of the members are part of the binary interface.
struct STOWRA_EXPORT UploadFile {
  UploadFile();
  UploadFile(const UploadFile& other);
  UploadFile& operator=(const UploadFile& other);
  virtual ~UploadFile();

  ovrant::utils::ovrant_ustring upload_url_;  // its query holds the form's values, too
  ovrant::utils::ovrant_ustring type_;
  bool zipped_ = false;  // whether zipped_file_path_ is sent and not file_path_
  ovrant::utils::ovrant_ustring name_;
  ovrant::utils::ovrant_ustring format_;
  int width_ = 0;
  int height_ = 0;
  ovrant::utils::ovrant_ustring file_path_;         // set by the host
  std::uint64_t opaque_value_ = 0;                  // the host's own; only copied
  ovrant::utils::ovrant_ustring zipped_file_path_;  // set by the host
};

// The upload configuration: an XML document without namespaces that names a URL for each file, and
// one to show after a success and after a failure. For one thread at a time; SynchronousQuery
// blocks it for the whole download. The order and the types of the members are part of the binary
// interface.
class STOWRA_EXPORT UploadConfig {
 public:
  UploadConfig();
  ~UploadConfig();

  UploadConfig(const UploadConfig& other);
  UploadConfig& operator=(const UploadConfig& other);

  // Sets the URL of the configuration and clears the results.
  void Init(const ovrant::utils::ovrant_ustring& url);

  // Empties the results; the URL stays.
  void Clear();

  // Adds what the configuration in `data`, which stays the caller's, holds: `length` bytes that
  // Get_IXMLInput opens. The two URLs are replaced where it has them, and its files are appended to
  // those already here, complete or not. True when it has both URLs and a list of files, be it
  // empty, and each file has an upload URL and a type. False otherwise, and for want of memory,
  // with what could be read. Each file takes the memory of an UploadFile, however short its
  // element.
  bool ParseResponse(unsigned char* data, unsigned long length);

  // Downloads the configuration and parses the body, whatever the HTTP status, without clearing
  // first: see Init. False, with the results empty, when nothing was received, ParseResponse gives
  // false, or memory runs out.
  bool SynchronousQuery();

  ovrant::utils::ovrant_ustring url_;
  ovrant::utils::ovrant_ustring success_url_;
  ovrant::utils::ovrant_ustring failure_url_;
  std::vector<UploadFile> files_;  // in the order of the document
};

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_UPLOAD_CONFIG_H_
