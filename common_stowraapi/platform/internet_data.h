// HTTP transfers, blocking and in the background.

#ifndef COMMON_STOWRAAPI_PLATFORM_INTERNET_DATA_H_
#define COMMON_STOWRAAPI_PLATFORM_INTERNET_DATA_H_

#include <functional>
#include <memory>
#include <utility>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/transfer_types.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::internet {

class InternetDataDelegate;
class RequestBody;
class TransferRecord;
struct HttpReply;
struct HttpRequest;

// One HTTP transfer to one URL, and the response to it.
//
// What an outcome means: a response that arrives whole is a success, whatever its status. Anything
// else is a failure: a URL that is not http or https, no connection, an invalid certificate, a
// reply that breaks off, `inactivity timeout` seconds without a byte in either direction, more than
// 20 redirects or one from https to anything else, a body beyond the cap, a content encoding other
// than gzip. After a failure the status is what was received of it, else 0, and the body is empty.
// There is no limit on the time of a whole transfer.
//
// Redirects are followed: a POST becomes a GET on 301, 302 and 303 and stays one on 307 and 308.
// Connections are reused. Certificates are always verified.
//
// An object belongs to one thread at a time; distinct objects are independent. It may be deleted at
// any moment of a background transfer, before or after the delegate, and from inside the
// notification that the delegate posts: once the destructor has returned, that transfer posts
// nothing more, and a post under way on another thread has ended, unless the destructor runs inside
// a delivery: then it does not wait. It never waits for the network.
//
// Starting a transfer resets status, body and headers, and drops one that still runs: its delegate
// posts nothing. A transfer that runs out of memory fails like any other. What has no way to say so
// throws std::bad_alloc and has changed nothing then.
class STOWRA_EXPORT InternetData {
 public:
  explicit InternetData(ovrant::utils::ovrant_ustring url) : url_(std::move(url)) {}
  virtual ~InternetData();

  InternetData(const InternetData&) = delete;
  InternetData& operator=(const InternetData&) = delete;

  // GET on the calling thread. True when a response was received.
  bool Download();

  // GET in the background. Returns at once; `delegate` stays the caller's. At the end of the
  // transfer it posts its returned name if a response was received, else its failed name. Status,
  // body and headers appear in this object just before the post, on the thread that posts.
  // `user_data` is not used. A hundred transfers run at a time; the others wait, and the time of
  // one that waits has not begun. When there is no memory or no thread to start it, the failed
  // name is posted before this returns, on this thread. False, and nothing will be posted, when
  // `delegate` is null or the process is exiting.
  bool DownloadWithDelegate(InternetDataDelegate* delegate, void* user_data);

  // The same as POST of the send data, or of an empty body where none is set.
  bool UploadWithDelegate(InternetDataDelegate* delegate, void* user_data);

  // Sets the body of later uploads: `length` bytes, which are copied.
  void set_send_data(const unsigned char* data, unsigned long length);

  // Adds one request header for later transfers, or replaces one of the same name, whatever its
  // letter case. Content-Length and Transfer-Encoding are the transport's own and ignored. A name
  // or value that cannot stand in a header (RFC 9110, 5.1 and 5.5) makes the transfer fail.
  void SetValueForHTTPSendHeaders(ovrant::utils::ovrant_ustring name,
                                  ovrant::utils::ovrant_ustring value);

  // POST of the send data to `url` on the calling thread. True when a response was received.
  // Each out-pointer may be null. `data` and `data_length` receive this object's own body, valid
  // until its next transfer or its destruction; `status` the HTTP status; `received_headers` the
  // response's headers. After a failure they hold null, 0, what was received of the status, and an
  // empty map. `send_headers`, where given, is sent beside the headers set before and wins over
  // them. The flags and the last two texts have no meaning in this transport; callers pass false,
  // false, true and empty texts.
  bool SendAndRead(ovrant::utils::ovrant_ustring url, unsigned char** data,
                   unsigned long* data_length, int* status, ovrant::utils::StringMap* send_headers,
                   bool flag1, bool flag2, bool flag3, ovrant::utils::ovrant_ustring text1,
                   ovrant::utils::ovrant_ustring text2, ovrant::utils::StringMap* received_headers);

  // The last response's HTTP status; 0 before one.
  int status_code() const { return status_code_; }

  // The last response's decoded body, owned by this object: valid until its next transfer or its
  // destruction. Null when it is empty. No NUL follows it.
  unsigned char* received_data() const { return received_data_; }
  unsigned long received_data_length() const { return received_data_length_; }

  // The last response's headers, names as the server spelt them; the values of a repeated one are
  // joined by ", ". Made when they are first asked for.
  const ovrant::utils::StringMap& received_headers() const;

  // What holds for all transfers of the process that start from now on. Safe from any thread.
  static void SetDefaults(const TransferDefaults& defaults);

  // Is told of the start, the progress and the end of every transfer that starts from now on, on
  // the thread that runs it, without a lock held; a background transfer is dropped with an end,
  // too, if it has started. Must not throw. On return the function set before is no longer running
  // on another thread and has been destroyed, so that its code may be unloaded, unless the call is
  // made from inside it or inside a delivery. An empty function ends it.
  static void SetTransferListener(std::function<void(const TransferEvent&)> listener);

  // How the completion of a background transfer reaches the host: `executor` is called on the
  // transport's own thread with a function that, run once on any thread, posts the notification. It
  // should queue it and return; it must not throw. What is queued may be run or destroyed at any
  // time, even when delegate and transport are gone. An empty function brings the default back: the
  // post is made on the transport's thread. The same promise on return as above.
  static void SetCompletionExecutor(std::function<void(std::function<void()> completion)> executor);

 private:
  friend class InternetDataTestPeer;

  HttpRequest MakeRequest(const ovrant::utils::ovrant_ustring& url, bool is_upload,
                          const ovrant::utils::StringMap* send_headers) const;
  bool Perform(const ovrant::utils::ovrant_ustring& url, bool is_upload,
               const ovrant::utils::StringMap* send_headers);
  bool StartInBackground(InternetDataDelegate* delegate, bool is_upload);
  void CopyReceivedHeaders(ovrant::utils::StringMap& copy);
  void Reset();
  void DropTransfer();
  void Publish(HttpReply reply);

  // The order, the types and the initial values of the members are part of the binary interface.
  bool started_ = false;
  ovrant::utils::ovrant_ustring url_;
  float inactivity_timeout_ = 30.0F;  // seconds, where the defaults set none
  int redirect_limit_ = -1;           // -1: the library's; 0: redirects are responses
  ovrant::utils::ovrant_ustring reserved_texts_[4];
  unsigned char* received_data_ = nullptr;  // owned
  unsigned long received_data_length_ = 0;
  ovrant::utils::StringMap send_headers_;
  int status_code_ = 0;
  bool responded_ = false;
  mutable ovrant::utils::StringMap received_headers_;  // without those in transfer_
  std::shared_ptr<const RequestBody> send_data_;
  std::shared_ptr<TransferRecord> transfer_;
  [[maybe_unused]] bool reserved_flags_[2] = {false, true};
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_INTERNET_DATA_H_
