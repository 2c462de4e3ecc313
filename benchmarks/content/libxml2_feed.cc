// SPDX-License-Identifier: MIT
#include "benchmarks/content/libxml2_feed.h"

#include <libxml/parserInternals.h>

#include <memory>

#include "benchmarks/content/feed_builder.h"
#include "benchmarks/content/libxml2_names.h"

namespace stowra_bench {
namespace {

struct Reading {
  Libxml2Names names;
  FeedBuilder builder;
};

Reading& Of(void* context) {
  return *static_cast<Reading*>(static_cast<xmlParserCtxt*>(context)->_private);
}

// `fields` holds five pointers for each attribute: name, prefix, namespace, value begin and value
// end.
void OnStart(void* context, const xmlChar* local_name, const xmlChar* /*prefix*/,
             const xmlChar* uri, int /*namespace_count*/, const xmlChar** /*namespaces*/, int count,
             int /*defaulted*/, const xmlChar** fields) {
  Reading& reading = Of(context);
  const Element element = reading.names.Classify(uri, local_name);
  Attributes values;
  if (HasAttributes(element)) {
    for (const xmlChar** field = fields; field != fields + 5 * count; field += 5) {
      if (field[2] != nullptr) continue;
      values.Set(Chars(field[0]), {Chars(field[3]), static_cast<std::size_t>(field[4] - field[3])});
    }
  }
  reading.builder.Start(element, values);
}

void OnEnd(void* context, const xmlChar* /*local_name*/, const xmlChar* /*prefix*/,
           const xmlChar* /*uri*/) {
  Of(context).builder.End();
}

void OnCharacters(void* context, const xmlChar* text, int size) {
  Of(context).builder.Characters({Chars(text), static_cast<std::size_t>(size)});
}

struct FreeContext {
  void operator()(xmlParserCtxt* context) const {
    xmlFreeDoc(context->myDoc);
    xmlFreeParserCtxt(context);
  }
};

}  // namespace

bool LoadWithLibxml2(std::string_view document, int max_qmf_version, StdFeed& feed) {
  const std::unique_ptr<xmlParserCtxt, FreeContext> context(
      xmlCreateMemoryParserCtxt(document.data(), static_cast<int>(document.size())));
  if (!context) return false;
  xmlCtxtUseOptions(context.get(), kLibxml2Options);
  Reading reading{Libxml2Names(context->dict), FeedBuilder(max_qmf_version, feed)};
  context->_private = &reading;
  context->sax->startElementNs = OnStart;
  context->sax->endElementNs = OnEnd;
  context->sax->characters = OnCharacters;
  context->sax->ignorableWhitespace = OnCharacters;
  context->sax->cdataBlock = OnCharacters;
  context->sax->comment = nullptr;
  context->sax->processingInstruction = nullptr;
  return xmlParseDocument(context.get()) == 0 && reading.builder.complete();
}

}  // namespace stowra_bench
