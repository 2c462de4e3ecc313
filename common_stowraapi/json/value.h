// A handle to one node of a JSON tree.

#ifndef COMMON_STOWRAAPI_JSON_VALUE_H_
#define COMMON_STOWRAAPI_JSON_VALUE_H_

#include <list>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant::json {

// Reads and writes one node of a Document's tree (RFC 8259). A handle is small, but not a value:
// copying or assigning one rebinds it to the same node, and moves ownership of the node's storage,
// where it has it, in the manner of an auto-pointer. Content enters a tree by the setters, PushBack
// and AddMember alone, and lives in the Document's memory pool until the Document dies; no handle
// may be used after that.
//
// A handle keeps every handle that its operator[] gave out, one more for each call, so that the
// references stay valid until it is destroyed or assigned to. PushBack and AddMember may move the
// elements or members that are there already: handles to those are without meaning then.
//
// A document and its handles belong to one thread at a time. std::bad_alloc is the only exception,
// and leaves the tree as it was.
class STOWRA_EXPORT Value {
 public:
  // An empty handle: it reads as null, and what writes does nothing, until it is assigned to.
  Value();

  // A handle to `node` whose strings, elements and members are placed in `allocator`: the JSON
  // library's own node and pool, untyped here. With `owned` the handle frees the node, which came
  // from new.
  Value(bool owned, void* node, void* allocator);

  // Refers to the same node and takes the ownership of it from `other`. The handles that `other`
  // gave out stay with `other`.
  Value(const Value& other);

  // As above, after freeing the node that this handle owned and invalidating every reference it
  // gave out. Never writes into the tree.
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

  // Whether the number is an integer that the type can hold; a double never is, even when integral.
  bool IsInt() const;
  bool IsUint() const;
  bool IsInt64() const;
  bool IsUint64() const;

  // Whether the number is held as a double.
  bool IsDouble() const;

  // An integer's lowest 32 or 64 bits. A double is cut toward zero, and gives 0 where that does not
  // fit. 0 for anything else.
  int GetInt() const;
  unsigned int GetUint() const;
  long long GetInt64() const;
  unsigned long long GetUint64() const;

  // Any number; 0 for anything else.
  double GetDouble() const;

  // True for the literal true alone.
  bool GetBool() const;

  // The text up to its first NUL; empty for anything but a string.
  ovrant::utils::ovrant_ustring GetString() const;

  // Elements of an array or members of an object; 0 for anything else.
  unsigned int Size() const;

  // The element at `index`; a null handle where there is none.
  Value& operator[](unsigned int index);
  Value& operator[](unsigned int index) const;

  // Whether the object has a member of exactly that name; false for anything but an object.
  bool HasMember(const ovrant::utils::ovrant_ustring& name) const;

  // The first member of exactly that name. Where there is none: a null handle, through which
  // nothing can be written, and nothing is added.
  Value& operator[](const ovrant::utils::ovrant_ustring& name);
  Value& operator[](const ovrant::utils::ovrant_ustring& name) const;

  // Replace the node's content in place. The old content's memory stays in the pool.
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

  // Moves the content of `item`'s node, null where it has none, to the end of this array; `item` is
  // null afterwards. Does nothing when this is not an array or the two are the same node.
  void PushBack(const Value& item);

  // Makes the array empty. Does nothing when this is not an array.
  void Clear();

  // Moves the content of `item`'s node, null where it has none, into a new last member of this
  // object, named by `name` up to its first NUL; `item` is null afterwards. A member of that name
  // may exist: look-ups find the first. Does nothing when this is not an object or the two are the
  // same node.
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
