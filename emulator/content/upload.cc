// SPDX-License-Identifier: MIT
#include <cstdint>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <string>

#include "emulator/content/catalog.h"
#include "emulator/content/item_address.h"
#include "emulator/content/rendition_type.h"
#include "emulator/content/upload_form.h"
#include "emulator/json_reply.h"
#include "emulator/services.h"
#include "emulator/web_address.h"

namespace stowra_emulator {
namespace {

constexpr const char* kDefaultType = "application/octet-stream";

// The name. If it is empty, the file's name without folders and extension.
std::string TitleOf(const UploadForm& form) {
  if (!form.name.empty()) return form.name;
  const std::string file = form.file_name.substr(form.file_name.find_last_of("/\\") + 1);
  const std::size_t dot = file.find('.', 1);
  return file.empty() ? "Untitled" : file.substr(0, dot);
}

// Another one for each upload, because a new database uses the mids again.
std::string NewEtag() {
  std::random_device random;
  std::ostringstream etag;
  etag << '"' << std::hex << random() << random() << '"';
  return etag.str();
}

// Returns the mid of the new item.
std::string AddItem(Database& database, const std::string& title, const std::string& summary) {
  Statement item = database.Prepare(
      "WITH next (id) AS (SELECT coalesce(max(id), 0) + 1 FROM items) "
      "INSERT INTO items (id, mid, kind, title, summary, keywords, author, updated, shape) "
      "SELECT id, 'm-' || id, 'model', ?, ?, '', "
      "  coalesce((SELECT uid FROM users WHERE signed_in = 1), 'nobody'), "
      "  strftime('%Y-%m-%dT%H:%M:%SZ', 'now'), '' FROM next "
      "RETURNING mid");
  item.Bind(1, title).Bind(2, summary);
  item.Step();
  std::string mid = item.Text(0);
  item.Step();
  return mid;
}

void AddRendition(Database& database, const std::string& mid, const Rendition& rendition) {
  Statement row = database.Prepare("INSERT INTO renditions (mid, rtyp, type) VALUES (?, ?, ?)");
  row.Bind(1, mid).Bind(2, rendition.rtyp).Bind(3, rendition.type).Step();
}

void AddFile(Database& database, const std::string& mid, const UploadForm& form) {
  Statement row = database.Prepare(
      "INSERT INTO uploads (mid, subject_id, subject_class, file_name, content_type, task, "
      "priority, is_zipped, size, etag) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
  row.Bind(1, mid).Bind(2, form.subject_id).Bind(3, form.subject_class).Bind(4, form.file_name);
  row.Bind(5, form.content_type).Bind(6, form.task).Bind(7, form.priority);
  row.BindInt(8, form.is_zipped ? 1 : 0).BindInt(9, static_cast<std::int64_t>(form.file->size()));
  row.Bind(10, NewEtag()).Step();
}

}  // namespace

void AnswerUpload(const Call& call, httplib::Response& response) {
  const UploadForm form = ReadUploadForm(call.request, call.body);
  const std::string type = form.content_type.empty() ? kDefaultType : form.content_type;
  const Rendition rendition = {RenditionOfType(type), type};

  Transaction transaction(call.database);
  const std::string mid =
      AddItem(call.database, TitleOf(form), "Uploaded as " + form.file_name + ".");
  AddRendition(call.database, mid, rendition);
  AddFile(call.database, mid, form);
  call.uploads.Keep(mid, *form.file);
  transaction.Commit();

  const std::string site = SiteAddress(call.request);
  const std::string page = PageAddress(site, GetModel(call.database, mid));
  response.status = 201;
  response.set_header("Location", page);
  SetJson(
      response,
      {{"mid", mid}, {"url", page}, {"download_url", DownloadAddress(site, mid, rendition.rtyp)}});
}

}  // namespace stowra_emulator
