// Enumerations that come from outside.
#ifndef TARVO_COMMON_ENUMERATION_H_
#define TARVO_COMMON_ENUMERATION_H_

#include <cstring>

/// The bits of an enumeration that the input filled: they need not be one of its values, and to
/// read it as one is undefined then.
template <typename Enumeration>
unsigned tarvoBitsOf(const Enumeration& field) {
  unsigned bits = 0;
  static_assert(sizeof field == sizeof bits);
  std::memcpy(&bits, &field, sizeof bits);
  return bits;
}

#endif  // TARVO_COMMON_ENUMERATION_H_
