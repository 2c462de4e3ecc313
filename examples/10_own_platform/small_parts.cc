// SPDX-License-Identifier: MIT
// URLs and random numbers by Qt. This host does not use the content service, so it reads no XML.

#include <QRandomGenerator>
#include <QUrlQuery>

#include "platform_names.h"

using ovrant::utils::ovrant_ustring;

namespace ovrant::internet {

URL::URL(ovrant_ustring url)
    : query_(QUrl(QString::fromStdU16String(std::u16string(url.units())))
                 .query(QUrl::FullyEncoded)
                 .toStdU16String()) {}

bool URL::getValueForExtraInfoKey(ovrant_ustring key, ovrant_ustring& value) {
  const QUrlQuery query(QString::fromStdU16String(std::u16string(query_.units())));
  const QString name = QString::fromStdU16String(std::u16string(key.units()));
  if (!query.hasQueryItem(name)) return false;
  value = query.queryItemValue(name, QUrl::FullyDecoded).toStdU16String();
  return true;
}

}  // namespace ovrant::internet

static QRandomGenerator generator;

void Random::SetSeed(unsigned int seed) { generator.seed(seed); }
int Random::GetValue(int low, int high) { return generator.bounded(low, high + 1); }

namespace ovrant {

// Null is a document that cannot be opened: ContentQuery and UploadConfig then fail.
IXMLInput* Get_IXMLInput(const unsigned char*, int) { return nullptr; }
void End_IXMLInput(IXMLInput** reader) { *reader = nullptr; }

}  // namespace ovrant
