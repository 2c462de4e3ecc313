#include <optional>
#include <string>

#include "emulator/content/catalog.h"
#include "emulator/content/picture_size.h"
#include "emulator/parameters.h"
#include "emulator/picture/picture.h"
#include "emulator/request_error.h"
#include "emulator/services.h"

namespace stowra_emulator {

void AnswerThumbnail(const httplib::Request& request, Database& database,
                     httplib::Response& response) {
  AllowParameters(request, {"mid", "rtyp"});
  const std::string mid = RequiredParameter(request, "mid");
  const std::optional<Item> item = FindItem(database, mid);
  if (!item) throw RequestError(404, "no model or collection '" + mid + "'");
  const std::string rtyp = TextParameter(request, "rtyp", PictureSizes().front().rtyp);
  const PictureSize* size = FindPictureSize(rtyp);
  if (size == nullptr) throw RequestError(404, "no picture '" + rtyp + "'");
  response.set_content(DrawPicture(item->shape, item->mid, size->width, size->height), "image/png");
}

}  // namespace stowra_emulator
