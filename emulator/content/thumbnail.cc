// SPDX-License-Identifier: MIT
#include <optional>
#include <string>

#include "emulator/content/catalog.h"
#include "emulator/content/picture_size.h"
#include "emulator/file_reply.h"
#include "emulator/parameters.h"
#include "emulator/picture/picture.h"
#include "emulator/request_error.h"
#include "emulator/services.h"
#include "emulator/web_address.h"

namespace stowra_emulator {

void AnswerThumbnail(const Call& call, httplib::Response& response) {
  AllowParameters(call.request, {"mid", "rtyp"});
  const std::string mid = RequiredParameter(call.request, "mid");
  const std::optional<Item> item = FindItem(call.database, mid);
  if (!item) throw RequestError(404, "no model or collection '" + mid + "'");
  const std::string rtyp = TextParameter(call.request, "rtyp", PictureSizes().front().rtyp);
  const PictureSize* size = FindPictureSize(rtyp);
  if (size == nullptr) throw RequestError(404, "no picture '" + rtyp + "'");
  FileReply reply;
  reply.type = "image/png";
  reply.etag = '"' + PercentEncode(item->mid + "/" + item->shape + "/" + rtyp, "/") + '"';
  reply.updated = item->updated;
  SetBytes(reply, DrawPicture(item->shape, item->mid, size->width, size->height));
  AnswerFile(call.request, reply, response);
}

}  // namespace stowra_emulator
