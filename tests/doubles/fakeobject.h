#pragma once

#include <gtest/gtest.h>
#include <zirk/backend.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <typeinfo>

namespace ZIRK::doubles {

/// The bytes of a value, without the padding behind a matrix's flags.
template <typename T>
std::string Bytes(const T& v) {
  constexpr size_t size = std::is_same_v<T, VuTMatrix2D<float>> ? 37 : sizeof v;
  return {reinterpret_cast<const char*>(&v), size};
}

/// The bytes of a description, which is passed by its address and has padding too.
inline std::string Bytes(const VuScreenDescription* d) {
  return Bytes(d->width) + Bytes(d->height) + Bytes(d->index) + Bytes(d->buffers) +
         Bytes(d->format) + Bytes(d->option);
}

/// The arguments that Entry() has received, one after the other.
inline std::string received;

/// What Entry() answers: null, or a value that nothing has by chance.
template <typename R>
R Answer() {
  if constexpr (std::is_pointer_v<R>) return nullptr;
  R answer;
  std::memset(static_cast<void*>(&answer), 1, sizeof answer);
  return answer;
}

template <typename R, typename... Args>
R Entry(void*, Args... args) {
  received += ("called " + ... + Bytes(args));
  if constexpr (!std::is_void_v<R>) return Answer<R>();
}

/// An implementation reduced to what the library knows of one: a table of entries in an order, and
/// the data members behind the pointer to it, all of 32 bits. It has no entry but the second, which
/// deletes, until it is given some.
template <class Interface>
struct FakeObject {
  void** const entries = &table[2];
  std::array<uint32_t, 4> fields{};
  int deleted = 0;
  std::array<void*, 41> table{nullptr, const_cast<std::type_info*>(&typeid(Interface))};

  FakeObject() { Set(2, &Delete); }

  template <typename R, typename Self, typename... Args>
  void Set(int entry, R (*function)(Self*, Args...)) {
    entries[entry - 1] = reinterpret_cast<void*>(function);
  }

  Interface* get() { return reinterpret_cast<Interface*>(this); }

  static void Delete(void* self) { ++static_cast<FakeObject*>(self)->deleted; }
};

/// `call` reaches `entry` of `object` with just these arguments, and has its answer. The entry
/// exists for this call only, so that no other call can end in it.
template <class Interface, typename F, typename... Args>
void ExpectEntry(F call, FakeObject<Interface>& object, int entry, Args... args) {
  using R = decltype(call());
  void* const before = object.entries[entry - 1];
  object.Set(entry, &Entry<R, Args...>);
  received.clear();
  if constexpr (std::is_void_v<R>)
    call();
  else
    EXPECT_EQ(Bytes(call()), Bytes(Answer<R>())) << "entry " << entry;
  EXPECT_EQ(received, ("called " + ... + Bytes(args))) << "entry " << entry;
  object.entries[entry - 1] = before;
}

}  // namespace ZIRK::doubles

/// EXPECT_ENTRY(call, object, entry, arguments...)
#define EXPECT_ENTRY(call, ...) ZIRK::doubles::ExpectEntry([&] { return call; }, __VA_ARGS__)
