// SPDX-License-Identifier: MIT
// Reads the extension store's answer with other libraries.

#ifndef BENCHMARKS_SERVICES_PEER_ITEM_MAPS_H_
#define BENCHMARKS_SERVICES_PEER_ITEM_MAPS_H_

#include <QByteArray>
#include <QMap>
#include <QString>
#include <map>
#include <string>

namespace stowra_bench {

// ExtensionStoreItem with the text type of another library.
template <typename Text>
struct PeerItem {
  Text id;
  Text version_uuid;
  float version = 0.0F;
  Text file_url;
  bool update = false;
  bool remote_kill = false;
  bool enabled = false;
};

using QtItem = PeerItem<QString>;
using StandardItem = PeerItem<std::string>;

// The last of several equal ids counts. A member of the wrong type leaves its field unchanged.
// Empty if `body` is not such a document.
QMap<QString, QtItem> QtItemMap(const QByteArray& body);
std::map<std::string, StandardItem> NlohmannItemMap(const std::string& body);

}  // namespace stowra_bench

#endif  // BENCHMARKS_SERVICES_PEER_ITEM_MAPS_H_
