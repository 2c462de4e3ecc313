// SPDX-License-Identifier: MIT
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <utility>

#include "benchmarks/services/peer_item_maps.h"

namespace stowra_bench {
namespace {

QtItem ReadItem(const QJsonObject& object) {
  QtItem item;
  item.id = object.value(QLatin1String("id")).toString();
  item.version_uuid = object.value(QLatin1String("version_uuid")).toString();
  item.version = object.value(QLatin1String("version")).toString().toFloat();
  item.file_url = object.value(QLatin1String("file_url")).toString();
  item.update = object.value(QLatin1String("update")).toBool();
  item.remote_kill = object.value(QLatin1String("remote_kill")).toBool();
  item.enabled = object.value(QLatin1String("enabled")).toInt() == 1;
  return item;
}

}  // namespace

QMap<QString, QtItem> QtItemMap(const QByteArray& body) {
  QMap<QString, QtItem> items;
  const QJsonDocument document = QJsonDocument::fromJson(body);
  const QJsonArray extensions = document.object().value(QLatin1String("extensions")).toArray();
  for (const QJsonValue element : extensions) {
    if (!element.isObject()) continue;
    QtItem item = ReadItem(element.toObject());
    const QString id = item.id;
    items.insert(id, std::move(item));
  }
  return items;
}

}  // namespace stowra_bench
