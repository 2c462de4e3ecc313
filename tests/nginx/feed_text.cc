// SPDX-License-Identifier: MIT
#include "tests/nginx/feed_text.h"

namespace stowra_test {
namespace {

constexpr const char* kSchema = "http://schemas.stowra.example/stowra/2008";

std::string EntryText(int index) {
  const std::string number = std::to_string(index);
  return "<entry><id>model-" + number + "</id><category term=\"" + kSchema + "#model\"/><title>" +
         ModelTitle(index) +
         "</title><summary>A chair.</summary>"
         "<link rel=\"alternate\" type=\"text/html\" href=\"http://pages.example/" +
         number +
         "\"/><author><name>Ada</name><uri>http://people.example/?uq=7</uri></author>"
         "<media:group><media:thumbnail url=\"http://pictures.example/?rtyp=st\"/>"
         "<media:content type=\"application/vnd.brevix.qmf\" url=\"" +
         ModelDownload(index) + "\"/></media:group></entry>\n";
}

}  // namespace

std::string ModelTitle(int index) { return "Käse-Stuhl № " + std::to_string(index) + " 🪑"; }

std::string ModelDownload(int index) {
  return "http://files.example/" + std::to_string(index) + "?rtyp=s8";
}

std::string FeedText(const std::string& title, int models) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<feed xmlns=\"http://www.w3.org/2005/Atom\" xmlns:media=\"http://search.yahoo.com/mrss/\" "
      "xmlns:search=\"http://a9.com/-/spec/opensearchrss/1.0/\">\n<title>" +
      title +
      "</title>\n<link rel=\"next\" type=\"application/atom+xml\" href=\"http://next.example/\"/>\n"
      "<search:totalResults>" +
      std::to_string(models) +
      "</search:totalResults><search:startIndex>1</search:startIndex><search:itemsPerPage>" +
      std::to_string(models) + "</search:itemsPerPage>\n";
  for (int i = 0; i < models; ++i) text += EntryText(i);
  return text + "</feed>\n";
}

std::string UploadConfigText(const std::string& upload_url) {
  return "<?xml version=\"1.0\"?>\n<upload><successUrl>http://pages.example/done</successUrl>"
         "<failureUrl>http://pages.example/failed</failureUrl><files><file><uploadUrl>" +
         upload_url +
         "</uploadUrl><type>model</type><zipped>true</zipped></file></files></upload>\n";
}

}  // namespace stowra_test
