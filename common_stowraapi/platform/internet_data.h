// SPDX-License-Identifier: MIT
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

class BodySink;
class BodySource;
class InternetDataDelegate;
class RequestBody;
class TransferRecord;
struct HostBody;
struct HttpReply;
struct HttpRequest;

// One HTTP transfer to one URL, and the response to it.
//
// A response that arrives whole is a success, whatever its status. TransferError lists the
// failures. After one the body and the headers are empty, and the status is the one received, or 0.
// There is no limit on the time of a whole transfer.
//
// A transfer is silent, and fails, when it has waited for the inactivity timeout
// (TransferDefaults). A step of connecting, a complete header line, body bytes and sent bytes end
// the silence. Time that the host's own code takes does not count.
//
// Redirects with status 301, 302, 303, 307 and 308 are followed, at most 20. A POST becomes a GET
// on 301, 302 and 303, and stays a POST on 307 and 308. To another origin (scheme, host or port)
// goes nothing that the caller has set but the headers Accept, Accept-Language, Content-Type and
// User-Agent. So a POST goes there without its body. The headers of a BodySink go everywhere.
//
// Connections are reused. Certificates are always verified.
//
// Starting a transfer resets status, body and headers. It also drops a transfer that still runs,
// for which nothing more is posted.
//
// An object belongs to one thread at a time. Distinct objects are independent.
//
// The object may be deleted at any moment of a background transfer. The delegate may go before it
// or after it, and the notification that the delegate posts may delete it. After the destructor the
// transfer posts nothing more. The destructor never waits for the network. It waits for a post
// under way on another thread, as CNotificationCenter::RemoveObserver waits for a call.
//
// These functions throw std::bad_alloc when memory runs out, and change nothing then:
//   - set_send_data, SetValueForHTTPSendHeaders and received_headers,
//   - SetDefaults, SetTransferListener and SetCompletionExecutor.
//
// Arguments passed by value are copied by the caller, which may throw too.
class STOWRA_EXPORT InternetData {
 public:
  explicit InternetData(ovrant::utils::ovrant_ustring url) : url_(std::move(url)) {}
  virtual ~InternetData();

  InternetData(const InternetData&) = delete;
  InternetData& operator=(const InternetData&) = delete;

  // Makes a GET on the calling thread. True when a response was received.
  bool Download();

  // Starts a GET in the background and returns at once. `delegate` stays the caller's.
  //
  // At the end the delegate posts its returned name if a response was received, else its failed
  // name. Status, body and headers appear in this object just before the post, on the posting
  // thread. `user_data` is not used.
  //
  // A hundred transfers run at a time. The others wait, and their timeouts have not begun.
  //
  // If memory or threads run out at the start, the failed name is posted on this thread before the
  // call returns. False when `delegate` is null or the process is exiting: nothing is posted then.
  bool DownloadWithDelegate(InternetDataDelegate* delegate, void* user_data);

  // Starts a POST of the send data in the same way. The body is empty when none is set.
  bool UploadWithDelegate(InternetDataDelegate* delegate, void* user_data);

  // Copies `length` bytes as the body of later uploads. The body is empty when `data` is null.
  void set_send_data(const unsigned char* data, unsigned long length);

  // Sets one request header of later transfers, and replaces any of that name in any letter case.
  // Content-Length and Transfer-Encoding are ignored, because the transport sets them. A name or
  // value that is not valid in a header (RFC 9110, 5.1 and 5.5) makes the transfer fail.
  void SetValueForHTTPSendHeaders(ovrant::utils::ovrant_ustring name,
                                  ovrant::utils::ovrant_ustring value);

  // Makes a POST of the send data to `url` on the calling thread. True when a response was
  // received. `send_headers` are sent beside the headers set before, and win over them.
  //
  // Every pointer may be null. On success and on failure the outputs hold what this object holds:
  //   data, data_length: the body, valid until the next transfer or destruction. Null and 0 when
  //                      it is empty.
  //   status:            the HTTP status.
  //   received_headers:  a copy of the headers.
  //
  // The flags and the last two texts have no meaning here. Pass false, false, true and empty texts.
  bool SendAndRead(ovrant::utils::ovrant_ustring url, unsigned char** data,
                   unsigned long* data_length, int* status, ovrant::utils::StringMap* send_headers,
                   bool flag1, bool flag2, bool flag3, ovrant::utils::ovrant_ustring text1,
                   ovrant::utils::ovrant_ustring text2, ovrant::utils::StringMap* received_headers);

  // Makes a POST of what `source` gives on the calling thread. True when a response was received.
  // The body may have any size, and its length replaces any Content-Length header.
  bool UploadFrom(BodySource& source);

  // Makes a GET on the calling thread and writes the body to `sink`, which chooses the replies that
  // it takes. True when a response was received, and all of it written if the sink took it. This
  // object then holds no body. Holds the body of any other reply, such as a server's error text.
  //
  // A body that a sink takes may have any size, unless TransferDefaults::body_cap is set. During
  // these two calls source and sink must leave this object alone.
  bool DownloadTo(BodySink& sink);

  // The same in the background, and otherwise as UploadWithDelegate and DownloadWithDelegate. The
  // library shares the source or sink until the transfer has ended, and has let go of it when the
  // notification is posted. False too when `source` or `sink` is null.
  //
  // Once this object or the delegate has been deleted, neither is called any more. The destructors
  // wait for such a call under way on another thread, as they do for a post. The library lets go
  // soon after.
  bool UploadFromWithDelegate(std::shared_ptr<BodySource> source, InternetDataDelegate* delegate,
                              void* user_data);
  bool DownloadToWithDelegate(std::shared_ptr<BodySink> sink, InternetDataDelegate* delegate,
                              void* user_data);

  // Why the last blocking transfer on this thread failed, through any object. kNone when it
  // received a response. Requests that block, such as ContentQuery::QueryFeed, set it too.
  static TransferError LastError();

  // The HTTP status of the last response, 0 before one.
  int status_code() const { return status_code_; }

  // The decoded body of the last response, null when it is empty. This object owns it. It is valid
  // until the next transfer or destruction. No NUL follows it.
  unsigned char* received_data() const { return received_data_; }
  unsigned long received_data_length() const { return received_data_length_; }

  // The headers of the last response. Names are spelt as the server sent them. Values of a repeated
  // name are joined by ", ". The map is made on the first call.
  const ovrant::utils::StringMap& received_headers() const;

  // Sets the defaults for all transfers of the process that start from now on. Any thread.
  static void SetDefaults(const TransferDefaults& defaults);

  // Sets the function that hears of each transfer that starts from now on. It gets the start, the
  // progress and the end. A dropped transfer that has started gets its end too. An empty function
  // stops the events. Any thread.
  //
  // The listener runs on the thread that runs the transfer. No lock is held. It must not throw.
  //
  // On return the previous listener no longer runs and has been destroyed, so its code may be
  // unloaded. The exceptions of CNotificationCenter::RemoveObserver apply. A listener that still
  // runs then is destroyed later.
  static void SetTransferListener(std::function<void(const TransferEvent&)> listener);

  // The same for a listener that also hears of the steps of a transfer. Each step is told on the
  // thread that takes it. The listener may delete the transfer's transport and delegate. In the
  // steps, secrets are blanked unless `secrets` is kShown (see TransferSecrets).
  static void SetTransferListener(std::function<void(const TransferEvent&)> listener,
                                  TransferDetail detail,
                                  TransferSecrets secrets = TransferSecrets::kBlanked);

  // Sets the function that brings the end of a background transfer to the host. The transport's
  // thread calls `executor` with a completion, which posts the notification when it is run. The
  // executor should queue the completion and return. It must not throw.
  //
  // The host runs the completion once, on any thread. It may also destroy it unrun, or while it
  // runs. Either may happen after delegate and transport are gone: nothing is posted then.
  //
  // An empty function brings the default back, which posts on the transport's thread. Any thread.
  // The previous executor ends as a previous listener does.
  static void SetCompletionExecutor(std::function<void(std::function<void()> completion)> executor);

 private:
  friend class InternetDataTestPeer;

  HttpRequest MakeRequest(const ovrant::utils::ovrant_ustring& url, bool is_upload,
                          const ovrant::utils::StringMap* send_headers) const;
  bool Perform(const ovrant::utils::ovrant_ustring& url, bool is_upload,
               const ovrant::utils::StringMap* send_headers);
  bool Perform(const ovrant::utils::ovrant_ustring& url, bool is_upload,
               const ovrant::utils::StringMap* send_headers, const HostBody& host_body);
  bool StartInBackground(InternetDataDelegate* delegate, bool is_upload);
  bool StartInBackground(InternetDataDelegate* delegate, bool is_upload, HostBody host_body);
  void CopyReceivedHeaders(ovrant::utils::StringMap& copy);
  void Reset();
  void DropTransfer();
  void Publish(HttpReply reply);

  // The order, types and initial values of the members are part of the binary interface.
  bool started_ = false;
  ovrant::utils::ovrant_ustring url_;
  float inactivity_timeout_ = 30.0F;  // seconds, when the defaults set none
  int redirect_limit_ = -1;           // -1: the library's limit; 0: redirects are responses
  ovrant::utils::ovrant_ustring reserved_texts_[4];
  unsigned char* received_data_ = nullptr;  // owned
  unsigned long received_data_length_ = 0;
  ovrant::utils::StringMap send_headers_;
  int status_code_ = 0;
  bool responded_ = false;
  mutable ovrant::utils::StringMap received_headers_;  // empty while transfer_ holds them
  std::shared_ptr<const RequestBody> send_data_;
  std::shared_ptr<TransferRecord> transfer_;
  [[maybe_unused]] bool reserved_flags_[2] = {false, true};
};

}  // namespace ovrant::internet

#endif  // COMMON_STOWRAAPI_PLATFORM_INTERNET_DATA_H_
