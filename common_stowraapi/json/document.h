// SPDX-License-Identifier: MIT
// Reads, holds and writes a JSON text as a tree.

#ifndef COMMON_STOWRAAPI_JSON_DOCUMENT_H_
#define COMMON_STOWRAAPI_JSON_DOCUMENT_H_

#include <memory>

#include "common_stowraapi/export.h"
#include "common_stowraapi/json/value.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::json {

// Owns a JSON tree (RFC 8259), the memory pool of its content, and every handle that it returns.
// Those stay valid until the document is destroyed, but handles into an earlier tree mean nothing
// after Load. The pool only grows.
//
// For one thread at a time. Everything but the destructor and MemberCount may throw std::bad_alloc,
// which leaves the tree as it was, except in Load.
class STOWRA_EXPORT Document {
 public:
  // The deepest nesting that Load accepts. The root is level 1.
  static constexpr unsigned int kMaxDepth = 512;

  // The root is an empty object.
  Document();
  ~Document();

  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  // Replaces the tree by the one in `text`, which is read up to its first NUL. False, and the root
  // is null, in these cases:
  //   - The text is not strict JSON with an object or array as root.
  //   - It is nested deeper than kMaxDepth.
  //   - It has 4 GiB or more as UTF-8.
  //   - A number has a hundred million zeros or more after the decimal point.
  // std::bad_alloc leaves the root null. A stack of 512 KiB is enough.
  bool Load(const ovrant::utils::ovrant_ustring& text);

  // Replaces `out` by the tree as compact JSON. The text ends at the first number that JSON cannot
  // write: an infinity or NaN. Stack use does not depend on the depth.
  void ToString(ovrant::utils::ovrant_ustring& out);

  // A null node outside the tree, owned by the returned handle. PushBack or AddMember moves its
  // content into the tree. The handle must not outlive the document.
  Value MakeValue();

  // Apply the operations of Value to the root.
  bool HasMember(const ovrant::utils::ovrant_ustring& name) const;
  void AddMember(const ovrant::utils::ovrant_ustring& name, const Value& item);
  Value& operator[](const ovrant::utils::ovrant_ustring& name);
  Value& operator[](const ovrant::utils::ovrant_ustring& name) const;

  // The root's members in document order. MemberCount is 0 if the root is not an object. An index
  // beyond the last gives a null handle and the empty name. A name ends at its first NUL.
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
