// Finds the offsets of private members.

#ifndef TESTS_SUBSTITUTE_MEMBER_ACCESS_H_
#define TESTS_SUBSTITUTE_MEMBER_ACCESS_H_

#include <cstddef>

namespace stowra_substitute {

// An explicit instantiation may name a private member: it defines PointerTo(Tag), which Tag
// declares.
template <typename Tag, typename Tag::Type kMember>
struct MemberKey {
  friend typename Tag::Type PointerTo(Tag) { return kMember; }
};

// Memory with the size and alignment of a T.
template <typename T>
struct alignas(T) Room {
  unsigned char bytes[sizeof(T)];
};

// Bytes from the beginning of `object` to one of its members.
template <typename Object, typename Class, typename Member>
std::size_t OffsetIn(const Object& object, Member Class::*member) {
  const Class& as_class = object;
  return static_cast<std::size_t>(reinterpret_cast<const char*>(&(as_class.*member)) -
                                  reinterpret_cast<const char*>(&object));
}

}  // namespace stowra_substitute

// Declares the tag `name` for a member of that type; PointerTo(name()) is the pointer to it.
#define STOWRA_MEMBER(name, type, Class, member) \
  struct name {                                  \
    using Type = type Class::*;                  \
    friend Type PointerTo(name);                 \
  };                                             \
  template struct MemberKey<name, &Class::member>

#endif  // TESTS_SUBSTITUTE_MEMBER_ACCESS_H_
