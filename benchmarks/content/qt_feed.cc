// SPDX-License-Identifier: MIT
#include "benchmarks/content/qt_feed.h"

#include <QByteArray>
#include <QStringBuilder>
#include <QStringTokenizer>
#include <QUrl>
#include <QXmlStreamReader>
#include <optional>

namespace stowra_bench {
namespace {

using namespace Qt::StringLiterals;

constexpr QLatin1StringView kAtom = "http://www.w3.org/2005/Atom"_L1;
constexpr QLatin1StringView kOpenSearch = "http://a9.com/-/spec/opensearchrss/1.0/"_L1;
constexpr QLatin1StringView kMedia = "http://search.yahoo.com/mrss/"_L1;
constexpr QLatin1StringView kSchema = "http://schemas.stowra.example/stowra/2008"_L1;
constexpr QLatin1StringView kModelTerm = "http://schemas.stowra.example/stowra/2008#model"_L1;
constexpr QLatin1StringView kUserQuery = "http://schemas.stowra.example/stowra/2008#user.query"_L1;
constexpr QLatin1StringView kAtomType = "application/atom+xml"_L1;
constexpr QLatin1StringView kHtmlType = "text/html"_L1;

// The value of a parameter of the URL's query.
std::optional<QString> FindParameter(QStringView url, QLatin1StringView name) {
  const qsizetype fragment = url.indexOf(u'#');
  if (fragment >= 0) url = url.first(fragment);
  const qsizetype mark = url.indexOf(u'?');
  if (mark < 0) return std::nullopt;
  for (const QStringView parameter : url.sliced(mark + 1).tokenize(u'&')) {
    const qsizetype equals = parameter.indexOf(u'=');
    const QStringView key = equals < 0 ? parameter : parameter.first(equals);
    if (key != name || key.isEmpty()) continue;
    QString value = equals < 0 ? QString() : parameter.sliced(equals + 1).toString();
    if (value.contains(u'+')) value.replace(u'+', u' ');
    return value.contains(u'%') ? QUrl::fromPercentEncoding(value.toUtf8()) : value;
  }
  return std::nullopt;
}

// The version of a rendition's model file, or 0 for any other rendition.
int QmfVersion(QStringView rendition) {
  constexpr int kVersionOfBareMark = 5;
  if (!rendition.startsWith(u's')) return 0;
  const QStringView digits = rendition.sliced(1);
  if (digits.isEmpty()) return kVersionOfBareMark;
  for (const QChar digit : digits) {
    if (digit < u'0' || digit > u'9') return 0;
  }
  return digits.toInt();
}

QString FindAuthorId(QStringView uri) {
  const qsizetype marker = uri.indexOf("uq="_L1);
  if (marker < 0) return {};
  const QStringView value = uri.sliced(marker + 3);
  const qsizetype end = value.indexOf(u'&');
  return (end < 0 ? value : value.first(end)).toString();
}

bool ToBool(const QString& text) { return text == "true"_L1 || text == "1"_L1; }

class Reader {
 public:
  Reader(const QByteArray& document, int max_qmf_version, QtFeed& feed)
      : xml_(document), max_qmf_version_(max_qmf_version), feed_(feed) {}

  bool Read() {
    if (!xml_.readNextStartElement() || !Is(kAtom, "feed"_L1)) return false;
    while (xml_.readNextStartElement()) ReadInFeed();
    // The text after the root must be well-formed too.
    while (!xml_.atEnd()) xml_.readNext();
    for (const QLatin1StringView search_operator :
         {" filetype:qmf"_L1, " is:downloadable"_L1, "filetype:qmf"_L1, "is:downloadable"_L1}) {
      feed_.title.remove(search_operator);
    }
    return !xml_.hasError() && has_title_ && total_ == 1 && start_ == 1 && per_page_ == 1;
  }

 private:
  // The entry that is being read.
  struct Entry {
    QtFeedItem item;
    bool has_id = false;
    bool has_category = false;
    bool has_title = false;
    bool has_summary = false;
    bool has_link = false;
    bool has_content = false;
    bool has_author = false;
    bool has_name = false;
    bool has_uri = false;
    bool has_group = false;
    bool has_thumbnail = false;
    bool has_dynamic = false;
    bool has_classified = false;
    bool is_broken = false;
    bool is_model_broken = false;
    bool is_collection_broken = false;
    int best_version = 0;
  };

  bool Is(QLatin1StringView uri, QLatin1StringView name) const {
    return xml_.name() == name && xml_.namespaceUri() == uri;
  }

  QString Text() { return xml_.readElementText(QXmlStreamReader::IncludeChildElements).trimmed(); }

  // Reads the first element of its kind and skips the others.
  void ReadText(bool& is_known, QString& text) {
    if (is_known) return xml_.skipCurrentElement();
    is_known = true;
    text = Text();
  }

  void ReadFlag(bool& is_known, bool& flag) {
    if (is_known) return xml_.skipCurrentElement();
    is_known = true;
    flag = ToBool(Text());
  }

  // `state` is 0 before the first value, 1 after a number and -1 after any other text.
  void ReadCount(int& state, int& count) {
    if (state != 0) return xml_.skipCurrentElement();
    bool is_number = false;
    const int number = Text().toInt(&is_number);
    if (is_number) count = number;
    state = is_number ? 1 : -1;
  }

  void ReadInFeed() {
    if (Is(kAtom, "entry"_L1)) {
      ReadEntry();
    } else if (Is(kAtom, "link"_L1)) {
      ReadFeedLink();
    } else if (Is(kAtom, "title"_L1)) {
      ReadText(has_title_, feed_.title);
    } else if (Is(kOpenSearch, "totalResults"_L1)) {
      ReadCount(total_, feed_.total_results);
    } else if (Is(kOpenSearch, "startIndex"_L1)) {
      ReadCount(start_, feed_.start_index);
    } else if (Is(kOpenSearch, "itemsPerPage"_L1)) {
      ReadCount(per_page_, feed_.items_per_page);
    } else {
      xml_.skipCurrentElement();
    }
  }

  void ReadFeedLink() {
    const QXmlStreamAttributes attributes = xml_.attributes();
    const QStringView rel = attributes.value("rel"_L1);
    const QStringView type = attributes.value("type"_L1);
    if (attributes.hasAttribute("href"_L1)) {
      const QStringView href = attributes.value("href"_L1);
      if (rel == "self"_L1 && type == kAtomType) {
        feed_.self_url = href.toString();
      } else if (rel == "next"_L1 && type == kAtomType) {
        feed_.next_url = href.toString();
      } else if (rel == "previous"_L1 && type == kAtomType) {
        feed_.previous_url = href.toString();
      } else if (rel == "alternate"_L1 && type == kHtmlType) {
        feed_.html_url = href.toString();
      }
    }
    xml_.skipCurrentElement();
  }

  void ReadEntry() {
    Entry entry;
    while (xml_.readNextStartElement()) ReadInEntry(entry);
    if (!IsComplete(entry)) return;
    if (entry.item.kind == Kind::kModel) {
      entry.item.collection_feed_url.clear();
    } else {
      entry.item.download_url.clear();
      entry.item.download_format = DownloadFormat::kNone;
    }
    feed_.items.push_back(std::move(entry.item));
  }

  static bool IsComplete(const Entry& entry) {
    if (entry.is_broken || !entry.has_id || !entry.has_category || !entry.has_title ||
        !entry.has_link || !entry.has_name || !entry.has_uri || !entry.has_thumbnail) {
      return false;
    }
    return entry.item.kind == Kind::kModel
               ? !entry.is_model_broken && !entry.item.download_url.isEmpty()
               : !entry.is_collection_broken && entry.has_content;
  }

  void ReadInEntry(Entry& entry) {
    if (Is(kAtom, "link"_L1)) {
      ReadLink(entry);
    } else if (Is(kAtom, "id"_L1)) {
      ReadText(entry.has_id, entry.item.id);
    } else if (Is(kAtom, "category"_L1)) {
      ReadCategory(entry);
    } else if (Is(kAtom, "title"_L1)) {
      ReadText(entry.has_title, entry.item.title);
    } else if (Is(kAtom, "summary"_L1)) {
      ReadText(entry.has_summary, entry.item.summary);
    } else if (Is(kAtom, "content"_L1)) {
      ReadContent(entry);
    } else if (Is(kAtom, "author"_L1)) {
      ReadAuthor(entry);
    } else if (Is(kMedia, "group"_L1)) {
      ReadGroup(entry);
    } else if (Is(kSchema, "dynamicComponent"_L1)) {
      ReadFlag(entry.has_dynamic, entry.item.dynamic_component);
    } else if (Is(kSchema, "classifiedComponent"_L1)) {
      ReadFlag(entry.has_classified, entry.item.classified_component);
    } else {
      xml_.skipCurrentElement();
    }
  }

  void ReadLink(Entry& entry) {
    const QXmlStreamAttributes attributes = xml_.attributes();
    entry.has_link = true;
    if (!attributes.hasAttribute("rel"_L1) || !attributes.hasAttribute("href"_L1) ||
        !attributes.hasAttribute("type"_L1)) {
      entry.is_broken = true;
    } else {
      const QStringView rel = attributes.value("rel"_L1);
      const QStringView type = attributes.value("type"_L1);
      if (rel == kUserQuery && type == kAtomType) {
        entry.item.user_query_url = attributes.value("href"_L1).toString();
      } else if (rel == "alternate"_L1 && type == kHtmlType) {
        entry.item.html_url = attributes.value("href"_L1).toString();
      }
    }
    xml_.skipCurrentElement();
  }

  void ReadCategory(Entry& entry) {
    if (!entry.has_category) {
      entry.has_category = true;
      const QXmlStreamAttributes attributes = xml_.attributes();
      entry.is_broken |= !attributes.hasAttribute("term"_L1);
      if (attributes.value("term"_L1) == kModelTerm) entry.item.kind = Kind::kModel;
    }
    xml_.skipCurrentElement();
  }

  void ReadContent(Entry& entry) {
    if (!entry.has_content) {
      entry.has_content = true;
      const QXmlStreamAttributes attributes = xml_.attributes();
      if (attributes.value("type"_L1) == kAtomType && attributes.hasAttribute("src"_L1)) {
        entry.item.collection_feed_url = attributes.value("src"_L1) % "&q=is:downloadable"_L1;
      } else {
        entry.is_collection_broken = true;
      }
    }
    xml_.skipCurrentElement();
  }

  void ReadAuthor(Entry& entry) {
    if (entry.has_author) return xml_.skipCurrentElement();
    entry.has_author = true;
    while (xml_.readNextStartElement()) {
      if (Is(kAtom, "name"_L1)) {
        ReadText(entry.has_name, entry.item.author_name);
      } else if (Is(kAtom, "uri"_L1)) {
        ReadText(entry.has_uri, entry.item.author_uri);
      } else {
        xml_.skipCurrentElement();
      }
    }
    entry.item.author_id = FindAuthorId(entry.item.author_uri);
  }

  void ReadGroup(Entry& entry) {
    if (entry.has_group) return xml_.skipCurrentElement();
    entry.has_group = true;
    while (xml_.readNextStartElement()) {
      if (Is(kMedia, "content"_L1)) {
        TakeRendition(xml_.attributes(), entry);
      } else if (Is(kMedia, "thumbnail"_L1)) {
        TakeThumbnail(xml_.attributes(), entry);
      }
      xml_.skipCurrentElement();
    }
  }

  static void TakeThumbnail(const QXmlStreamAttributes& attributes, Entry& entry) {
    entry.has_thumbnail = true;
    if (!attributes.hasAttribute("url"_L1)) {
      entry.is_broken = true;
      return;
    }
    const QStringView url = attributes.value("url"_L1);
    if (url.contains("rtyp=st"_L1)) entry.item.thumbnail_url = url.toString();
  }

  void TakeRendition(const QXmlStreamAttributes& attributes, Entry& entry) const {
    if (!attributes.hasAttribute("url"_L1) || !attributes.hasAttribute("type"_L1)) {
      entry.is_model_broken = true;
      return;
    }
    const QStringView type = attributes.value("type"_L1);
    if (type != "application/vnd.brevix.qmf"_L1 && type != "application/vnd.pellamy.kmz"_L1) return;
    const QStringView url = attributes.value("url"_L1);
    const std::optional<QString> rendition = FindParameter(url, "rtyp"_L1);
    if (!rendition) return;
    if (*rendition == "k2"_L1) {
      if (entry.item.download_format != DownloadFormat::kNone) return;
      entry.item.download_url = url.toString();
      entry.item.download_format = DownloadFormat::kK2;
      return;
    }
    const int version = QmfVersion(*rendition);
    if (version > max_qmf_version_ || version <= entry.best_version) return;
    entry.item.download_url = url.toString();
    entry.item.download_format = DownloadFormat::kQmf;
    entry.best_version = version;
  }

  QXmlStreamReader xml_;
  const int max_qmf_version_;
  QtFeed& feed_;
  bool has_title_ = false;
  int total_ = 0;
  int start_ = 0;
  int per_page_ = 0;
};

}  // namespace

bool LoadWithQt(std::string_view document, int max_qmf_version, QtFeed& feed) {
  const auto size = static_cast<qsizetype>(document.size());
  return Reader(QByteArray::fromRawData(document.data(), size), max_qmf_version, feed).Read();
}

}  // namespace stowra_bench
