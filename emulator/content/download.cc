#include <algorithm>
#include <string>

#include "emulator/content/catalog.h"
#include "emulator/content/model_file.h"
#include "emulator/content/rendition_type.h"
#include "emulator/parameters.h"
#include "emulator/request_error.h"
#include "emulator/services.h"

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

struct File {
  std::string bytes;
  bool is_zipped = false;
};

File ReadFile(Database& database, const std::string& mid, const std::string& rtyp) {
  Statement upload = database.Prepare("SELECT bytes, is_zipped FROM uploads WHERE mid = ?");
  upload.Bind(1, mid);
  if (upload.Step()) return {upload.Bytes(0), upload.Int(1) == 1};
  return {MakeModelFile(mid, rtyp), false};
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

void AnswerDownload(const httplib::Request& request, Database& database,
                    httplib::Response& response) {
  AllowParameters(request, {"mid", "rtyp"});
  const Item model = GetModel(database, RequiredParameter(request, "mid"));
  const Rendition rendition = FindRendition(model, RequiredParameter(request, "rtyp"));
  const File file = ReadFile(database, model.mid, rendition.rtyp);
  std::string name = FileNameOf(model.title) + "." + ExtensionOfType(rendition.type);
  if (file.is_zipped && rendition.type != kZipType) name += ".zip";
  response.set_header("Content-Disposition", "attachment; filename=\"" + name + "\"");
  response.set_content(file.bytes, rendition.type);
}

}  // namespace stowra_emulator
