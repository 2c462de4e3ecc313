// SPDX-License-Identifier: MIT
// Finds the offsets of private members.

#ifndef TESTS_SUBSTITUTE_MEMBER_ACCESS_H_
#define TESTS_SUBSTITUTE_MEMBER_ACCESS_H_

#include <gtest/gtest.h>

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

// Expects members of these types to lie one behind the other, each at the next place that suits its
// type, from `begin` up to the end of the class.
template <typename Class, typename... Members>
void ExpectMembers(std::size_t begin, Members Class::*... members) {
  const Class object;
  std::size_t at = begin;
  const auto round_up = [&at](std::size_t alignment) {
    at += (alignment - at % alignment) % alignment;
  };
  const auto expect = [&](auto member, std::size_t size, std::size_t alignment) {
    round_up(alignment);
    EXPECT_EQ(OffsetIn(object, member), at);
    at += size;
  };
  (expect(members, sizeof(Members), alignof(Members)), ...);
  round_up(alignof(Class));
  EXPECT_EQ(sizeof(Class), at);
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
