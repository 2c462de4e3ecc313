// SPDX-License-Identifier: MIT
#include "benchmarks/content/poco_feed.h"

#include <Poco/SAX/Attributes.h>
#include <Poco/SAX/DefaultHandler.h>
#include <Poco/SAX/SAXException.h>
#include <Poco/SAX/SAXParser.h>

#include "benchmarks/content/feed_builder.h"

namespace stowra_bench {
namespace {

using Poco::XML::SAXParser;
using Poco::XML::XMLChar;
using Poco::XML::XMLString;

Element Classify(const XMLString& uri, const XMLString& local_name) {
  for (const ElementName& name : kElementNames) {
    if (local_name == name.local_name && uri == name.uri) return name.element;
  }
  return Element::kOther;
}

class Handler : public Poco::XML::DefaultHandler {
 public:
  explicit Handler(FeedBuilder& builder) : builder_(builder) {}

  void startElement(const XMLString& uri, const XMLString& local_name, const XMLString& /*qname*/,
                    const Poco::XML::Attributes& attributes) override {
    const Element element = Classify(uri, local_name);
    stowra_bench::Attributes values;
    if (HasAttributes(element)) {
      const int count = attributes.getLength();
      for (int i = 0; i < count; ++i) {
        if (attributes.getURI(i).empty()) {
          values.Set(attributes.getLocalName(i), attributes.getValue(i));
        }
      }
    }
    builder_.Start(element, values);
  }

  void endElement(const XMLString& /*uri*/, const XMLString& /*local_name*/,
                  const XMLString& /*qname*/) override {
    builder_.End();
  }

  void characters(const XMLChar ch[], int start, int length) override {
    builder_.Characters({ch + start, static_cast<std::size_t>(length)});
  }

 private:
  FeedBuilder& builder_;
};

}  // namespace

bool LoadWithPoco(std::string_view document, int max_qmf_version, StdFeed& feed) {
  FeedBuilder builder(max_qmf_version, feed);
  Handler handler(builder);
  SAXParser parser;
  parser.setFeature(Poco::XML::XMLReader::FEATURE_NAMESPACES, true);
  parser.setFeature(Poco::XML::XMLReader::FEATURE_NAMESPACE_PREFIXES, false);
  parser.setContentHandler(&handler);
  try {
    parser.parseMemoryNP(document.data(), document.size());
  } catch (const Poco::XML::SAXException&) {
    return false;
  }
  return builder.complete();
}

}  // namespace stowra_bench
