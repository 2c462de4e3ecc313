// SPDX-License-Identifier: MIT
#include <cstdint>
#include <string>

#include "emulator/content/catalog.h"
#include "emulator/content/item_address.h"
#include "emulator/content/model_file.h"
#include "emulator/content/picture_size.h"
#include "emulator/content/rendition_type.h"
#include "emulator/page/page.h"
#include "emulator/parameters.h"
#include "emulator/services.h"

namespace stowra_emulator {
namespace {

// Such as "qmf, version 8".
std::string LabelOf(const Rendition& rendition) {
  std::string label = ExtensionOfType(rendition.type);
  if (rendition.rtyp.front() != 's') return label;
  const std::string version = rendition.rtyp.substr(1);
  return label + ", version " + (version.empty() ? "5" : version);
}

// The size of the file in this rendition (bytes).
std::int64_t SizeOf(Database& database, const Item& model, const Rendition& rendition) {
  Statement upload = database.Prepare("SELECT size FROM uploads WHERE mid = ?");
  upload.Bind(1, model.mid);
  if (upload.Step()) return upload.Int64(0);
  return static_cast<std::int64_t>(MakeModelFile(model.mid, rendition.rtyp).size());
}

void WriteDownloads(MarkupWriter& page, Database& database, const Item& model) {
  page.Element("h2", "Files");
  page.Begin("ul", {{"class", "downloads"}});
  for (const Rendition& rendition : model.renditions) {
    page.Begin("li");
    page.Element("a", "Download " + LabelOf(rendition),
                 {{"class", "button"}, {"href", DownloadAddress("", model.mid, rendition.rtyp)}});
    page.Element("span",
                 "rtyp=" + rendition.rtyp + ", " + rendition.type + ", " +
                     std::to_string(SizeOf(database, model, rendition)) + " bytes",
                 {{"class", "soft"}});
    page.End();
  }
  page.End();
}

void WritePictures(MarkupWriter& page, const Item& model) {
  page.Element("h2", "Pictures");
  page.Begin("ul", {{"class", "downloads"}});
  for (const PictureSize& size : PictureSizes()) {
    page.Begin("li");
    page.Element("a", std::to_string(size.width) + " × " + std::to_string(size.height),
                 {{"href", ThumbnailAddress("", model.mid, size.rtyp)}});
    page.Element("span", " rtyp=" + std::string(size.rtyp), {{"class", "soft"}});
    page.End();
  }
  page.End();
}

}  // namespace

void AnswerModelPage(const Call& call, httplib::Response& response) {
  AllowParameters(call.request, {"mid"});
  const Item model = GetModel(call.database, RequiredParameter(call.request, "mid"));
  const PictureSize& size = PictureSizes().back();
  MarkupWriter page = BeginPage({model.title, "", ""});
  page.Begin("article", {{"class", "model"}});
  page.Empty("img", {{"src", ThumbnailAddress("", model.mid, size.rtyp)},
                     {"alt", "Picture of " + model.title},
                     {"width", std::to_string(size.width)},
                     {"height", std::to_string(size.height)}});
  page.Begin("div");
  page.Element("h1", model.title, {{"dir", "auto"}});
  page.Begin("p", {{"class", "soft"}});
  page.Text("Model by ");
  page.Element("a", model.author_name, {{"href", AuthorPageAddress("", model.author)}});
  page.Text(", " + model.updated.substr(0, model.updated.find('T')));
  page.End();
  page.Element("p", model.summary, {{"dir", "auto"}});
  WriteDownloads(page, call.database, model);
  WritePictures(page, model);
  SetPage(response, page);
}

}  // namespace stowra_emulator
