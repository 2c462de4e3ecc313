// The handlers of all services.

#ifndef EMULATOR_SERVICES_H_
#define EMULATOR_SERVICES_H_

#include <httplib.h>

#include "emulator/database.h"

namespace stowra_emulator {

// A plain-text page that lists the routes and the faults.
void AnswerIndex(const httplib::Request&, Database&, httplib::Response&);

// The signed-in user, or the one with the uid `user`, as a JSON object.
void AnswerUserInfo(const httplib::Request&, Database&, httplib::Response&);

// The version offered, the message and the data files.
void AnswerUpdate(const httplib::Request&, Database&, httplib::Response&);

// The state of each extension in the request that the store knows, in the request's order.
void AnswerExtensions(const httplib::Request&, Database&, httplib::Response&);

// A page of search results: as an Atom feed, and as a web page.
void AnswerSearch(const httplib::Request&, Database&, httplib::Response&);
void AnswerSearchPage(const httplib::Request&, Database&, httplib::Response&);

// A web page on the model `mid`.
void AnswerModelPage(const httplib::Request&, Database&, httplib::Response&);

// The file of the model `mid`, in the rendition `rtyp`.
void AnswerDownload(const httplib::Request&, Database&, httplib::Response&);

// A picture of the model or collection `mid`.
void AnswerThumbnail(const httplib::Request&, Database&, httplib::Response&);

// What to upload and where.
void AnswerUploadConfig(const httplib::Request&, Database&, httplib::Response&);

// Makes a model from the multipart form in the body.
void AnswerUpload(const httplib::Request&, Database&, httplib::Response&);

// Web pages to show after an upload.
void AnswerUploadSucceeded(const httplib::Request&, Database&, httplib::Response&);
void AnswerUploadFailed(const httplib::Request&, Database&, httplib::Response&);

}  // namespace stowra_emulator

#endif  // EMULATOR_SERVICES_H_
