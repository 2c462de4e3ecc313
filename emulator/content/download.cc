// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdint>
#include <string>

#include "emulator/content/catalog.h"
#include "emulator/content/model_file.h"
#include "emulator/content/rendition_type.h"
#include "emulator/file_reply.h"
#include "emulator/parameters.h"
#include "emulator/request_error.h"
#include "emulator/services.h"
#include "emulator/web_address.h"

namespace stowra_emulator {
namespace {

Rendition FindRendition(const Item& model, const std::string& rtyp) {
  const auto found =
      std::find_if(model.renditions.begin(), model.renditions.end(),
                   [&rtyp](const Rendition& rendition) { return rendition.rtyp == rtyp; });
  if (found == model.renditions.end()) {
    throw RequestError(404, "model '" + model.mid + "' has no rendition '" + rtyp + "'");
  }
  return *found;
}

bool IsZippedUpload(Database& database, const std::string& mid) {
  Statement upload = database.Prepare("SELECT is_zipped FROM uploads WHERE mid = ?");
  upload.Bind(1, mid);
  return upload.Step() && upload.Int(0) == 1;
}

FileReply ReplyFor(const Call& call, const Item& model, const Rendition& rendition) {
  FileReply reply;
  reply.type = rendition.type;
  reply.updated = model.updated;
  Statement upload = call.database.Prepare("SELECT size, etag FROM uploads WHERE mid = ?");
  upload.Bind(1, model.mid);
  if (upload.Step()) {
    SetFile(reply, call.uploads.Open(model.mid), static_cast<std::uint64_t>(upload.Int64(0)));
    reply.etag = upload.Text(1);
  } else {
    SetBytes(reply, MakeModelFile(model.mid, rendition.rtyp));
    reply.etag = '"' + PercentEncode(model.mid + "/" + rendition.rtyp, "/") + '"';
  }
  return reply;
}

// Drops characters that end the quoted name, control a terminal or lead to another folder.
std::string FileNameOf(const std::string& title) {
  std::string name;
  for (const char c : title) {
    const auto byte = static_cast<unsigned char>(c);
    const bool is_unsafe = byte < ' ' || byte == 0x7F || c == '"' || c == '\\' || c == '/';
    if (!is_unsafe) name += c;
  }
  return name.empty() ? "model" : name;
}

}  // namespace

void AnswerDownload(const Call& call, httplib::Response& response) {
  AllowParameters(call.request, {"mid", "rtyp"});
  const Item model = GetModel(call.database, RequiredParameter(call.request, "mid"));
  const Rendition rendition = FindRendition(model, RequiredParameter(call.request, "rtyp"));
  std::string name = FileNameOf(model.title) + "." + ExtensionOfType(rendition.type);
  if (rendition.type != kZipType && IsZippedUpload(call.database, model.mid)) name += ".zip";
  response.set_header("Content-Disposition", "attachment; filename=\"" + name + "\"");
  AnswerFile(call.request, ReplyFor(call, model, rendition), response);
}

}  // namespace stowra_emulator
