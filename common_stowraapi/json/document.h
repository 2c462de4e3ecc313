// A JSON text as a tree.

#ifndef COMMON_STOWRAAPI_JSON_DOCUMENT_H_
#define COMMON_STOWRAAPI_JSON_DOCUMENT_H_

#include <memory>

#include "common_stowraapi/export.h"
#include "common_stowraapi/json/value.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::json {

// Owns a JSON tree (RFC 8259), the memory pool that its content lives in, and every handle that it
// gives out: those stay valid until the document is destroyed, though Load leaves handles into the
// earlier tree without meaning. The pool only grows. For one thread at a time.
class STOWRA_EXPORT Document {
 public:
  // Nesting beyond which Load refuses a text; the root is level 1.
  static constexpr unsigned int kMaxDepth = 512;

  // The root is an empty object.
  Document();
  ~Document();

  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  // Replaces the tree by the one that `text`, up to its first NUL, spells. False when it is not
  // strict JSON with an object or array as root, is nested deeper than kMaxDepth, has 4 GiB or
  // more as UTF-8, or has a hundred million zeros or more behind a decimal point: the root is null
  // then. Fits a 512 KiB stack. std::bad_alloc leaves the root null.
  bool Load(const ovrant::utils::ovrant_ustring& text);

  // Replaces `out` by the tree as compact JSON. Numbers that JSON cannot spell (infinities and NaN)
  // end the text where they stand. Needs no more stack however deep the tree is.
  void ToString(ovrant::utils::ovrant_ustring& out);

  // A null node outside the tree, owned by the handle returned; PushBack or AddMember moves its
  // content into the tree. Must not outlive the document.
  Value MakeValue();

  // On the root, as the operations of Value that have these names.
  bool HasMember(const ovrant::utils::ovrant_ustring& name) const;
  void AddMember(const ovrant::utils::ovrant_ustring& name, const Value& item);
  Value& operator[](const ovrant::utils::ovrant_ustring& name);
  Value& operator[](const ovrant::utils::ovrant_ustring& name) const;

  // The root's members in document order; 0 of them when it is not an object. Beyond the last one:
  // a null handle and the empty name. A name is given up to its first NUL.
  unsigned int MemberCount() const;
  Value& MemberAt(unsigned int index);
  Value& MemberAt(unsigned int index) const;
  ovrant::utils::ovrant_ustring MemberNameAt(unsigned int index) const;

 private:
  friend struct Lookup;

  struct Tree;

  const std::unique_ptr<Tree> tree_;
};

}  // namespace ovrant::json

#endif  // COMMON_STOWRAAPI_JSON_DOCUMENT_H_
