// SPDX-License-Identifier: MIT
// A handle to one node of a JSON tree.

#ifndef COMMON_STOWRAAPI_JSON_VALUE_H_
#define COMMON_STOWRAAPI_JSON_VALUE_H_

#include <list>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::json {

// Reads and writes one node of a Document's tree (RFC 8259). A handle is small, but it is not a
// value. A copy or an assignment rebinds it to the same node and moves ownership of the node's
// storage, as an auto-pointer does. Content enters a tree only through the setters, PushBack and
// AddMember. It lives in the Document's memory pool until the Document dies; no handle may be used
// after that.
//
// A handle keeps every handle that its operator[] returned, one more for each call. Those
// references stay valid until it is destroyed or assigned to. PushBack and AddMember may move the
// children that are already there: do not use older handles to those.
//
// A document and its handles belong to one thread at a time. operator[], HasMember, GetString,
// SetString, PushBack and AddMember throw std::bad_alloc and leave the tree as it was. Nothing else
// throws.
class STOWRA_EXPORT Value {
 public:
  // An empty handle. It reads as null and ignores writes until it is assigned to.
  Value();

  // A handle to `node`, which places strings, elements and members in `allocator`. Either may be
  // null.
  //   - `node` is a rapidjson::GenericValue over UTF8<char> and the type of the pool.
  //   - `allocator` is a rapidjson::MemoryPoolAllocator<rapidjson::CrtAllocator>.
  //   - The handle grows the pool with malloc, as the pool itself does.
  //   - With `owned` the handle frees the node with operator delete, so it must come from new. The
  //     node's content stays in the pool.
  Value(bool owned, void* node, void* allocator);

  // Refers to the node of `other` and takes its ownership. Handles that `other` returned stay with
  // it.
  Value(const Value& other);

  // Frees the node if this handle owned it, drops every handle that it returned, then does as the
  // copy constructor. Never writes into the tree.
  Value& operator=(const Value& other);

  ~Value();

  bool IsNull() const;
  bool IsFalse() const;
  bool IsTrue() const;
  bool IsBool() const;
  bool IsObject() const;
  bool IsArray() const;
  bool IsString() const;
  bool IsNumber() const;

  // Whether the number is an integer that fits the type. False for every double, even an integral
  // one.
  bool IsInt() const;
  bool IsUint() const;
  bool IsInt64() const;
  bool IsUint64() const;

  // Whether the number is held as a double.
  bool IsDouble() const;

  // The lowest 32 or 64 bits of an integer. A double is cut toward zero, and gives 0 if it does not
  // fit. 0 for any other type.
  int GetInt() const;
  unsigned int GetUint() const;
  long long GetInt64() const;
  unsigned long long GetUint64() const;

  // Any number as a double; 0 for any other type.
  double GetDouble() const;

  // True only for the literal true.
  bool GetBool() const;

  // The text of a string up to its first NUL; empty for any other type.
  ovrant::utils::ovrant_ustring GetString() const;

  // The number of elements or members; 0 if this is neither an array nor an object.
  unsigned int Size() const;

  // The element at `index`, or a null handle if there is no such element.
  Value& operator[](unsigned int index);
  Value& operator[](unsigned int index) const;

  // Whether the object has a member of exactly that name. False for any other type.
  bool HasMember(const ovrant::utils::ovrant_ustring& name) const;

  // The first member of exactly that name. If there is no such member, adds nothing and returns a
  // null handle that ignores writes.
  Value& operator[](const ovrant::utils::ovrant_ustring& name);
  Value& operator[](const ovrant::utils::ovrant_ustring& name) const;

  // Replace the node's content. The memory of the old content stays in the pool.
  void SetNull();
  void SetObject();
  void SetArray();
  void SetBool(bool value);
  void SetInt(int value);
  void SetUint(unsigned int value);
  void SetInt64(long long value);
  void SetUint64(unsigned long long value);
  void SetDouble(double value);

  // Stores a copy of the text up to its first NUL.
  void SetString(const ovrant::utils::ovrant_ustring& text);

  // Moves the content of `item`'s node to the end of this array, and makes `item` null. An item
  // without a node adds null. Does nothing if this is not an array or both handles have the same
  // node. Moving a node into its own descendant loses it: nothing in the tree refers to it then.
  void PushBack(const Value& item);

  // Makes an array empty. Does nothing to any other type.
  void Clear();

  // Moves the content of `item`'s node into a new last member of this object, as PushBack does. The
  // name is `name` up to its first NUL. If a member of that name exists, look-ups find the first.
  // Does nothing if this is not an object or both handles have the same node.
  void AddMember(const ovrant::utils::ovrant_ustring& name, const Value& item);

 private:
  friend class Document;
  friend struct Lookup;

  // Declared in this order: it is part of the binary interface.
  mutable bool owned_;
  void* node_;
  void* allocator_;
  mutable std::list<Value> handles_;
};

}  // namespace ovrant::json

#endif  // COMMON_STOWRAAPI_JSON_VALUE_H_
