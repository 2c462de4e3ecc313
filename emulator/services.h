// SPDX-License-Identifier: MIT
// The handlers of all services.

#ifndef EMULATOR_SERVICES_H_
#define EMULATOR_SERVICES_H_

#include <httplib.h>

#include "emulator/call.h"

namespace stowra_emulator {

// The front page: for a browser the faults, the last requests, uploads and routes; for others a
// text that lists the routes and the faults.
void AnswerIndex(const Call&, httplib::Response&);

// The front page's script, and the requests as server-sent events.
void AnswerScript(const Call&, httplib::Response&);
void AnswerEvents(const Call&, httplib::Response&);

// The faults that are set, and a change to them.
void AnswerFaults(const Call&, httplib::Response&);
void AnswerChangeFaults(const Call&, httplib::Response&);

// The signed-in user, or the one with the uid `user`, as a JSON object.
void AnswerUserInfo(const Call&, httplib::Response&);

// The version offered, the message and the data files.
void AnswerUpdate(const Call&, httplib::Response&);

// The state of each extension in the request that the store knows, in the request's order.
void AnswerExtensions(const Call&, httplib::Response&);

// A page of search results: as an Atom feed, and as a web page.
void AnswerSearch(const Call&, httplib::Response&);
void AnswerSearchPage(const Call&, httplib::Response&);

// A web page on the model `mid`.
void AnswerModelPage(const Call&, httplib::Response&);

// The file of the model `mid`, in the rendition `rtyp`.
void AnswerDownload(const Call&, httplib::Response&);

// A picture of the model or collection `mid`.
void AnswerThumbnail(const Call&, httplib::Response&);

// What to upload and where.
void AnswerUploadConfig(const Call&, httplib::Response&);

// Makes a model from the multipart form in the body.
void AnswerUpload(const Call&, httplib::Response&);

// Web pages to show after an upload.
void AnswerUploadSucceeded(const Call&, httplib::Response&);
void AnswerUploadFailed(const Call&, httplib::Response&);

}  // namespace stowra_emulator

#endif  // EMULATOR_SERVICES_H_
