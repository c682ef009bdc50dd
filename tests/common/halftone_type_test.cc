#include "common/halftone_type.h"

#include <gtest/gtest.h>

namespace {

struct NamedType {
  int value;
  const char* name;
};

constexpr NamedType kTypes[] = {
    {0, "None"},   {1, "FloydSteinberg"},    {2, "Ordered"}, {3, "Burkes"},
    {4, "Stucki"}, {5, "JarvisJudiceNinke"}, {6, "Sierra"},  {7, "StevensonArce"},
    {8, "Tattoo"}, {9, "Tattoo_X8"},
};

TEST(HalftoneType, EachValueHasItsName) {
  for (const NamedType& type : kTypes) {
    EXPECT_STREQ(tarvoHalftoneTypeToStr(static_cast<DitherType>(type.value)), type.name);
    EXPECT_EQ(tarvoHalftoneTypeFromStr(type.name), type.value) << type.name;
  }
}

TEST(HalftoneType, ValueBeyondTheTableIsNone) {
  EXPECT_STREQ(tarvoHalftoneTypeToStr(static_cast<DitherType>(10)), "None");
  EXPECT_STREQ(tarvoHalftoneTypeToStr(static_cast<DitherType>(1000)), "None");
}

TEST(HalftoneType, NamesMatchWholeAndWithCase) {
  for (const char* name : {"", "none", "floydsteinberg", "TATTOO", "Tatto", "Tattoo_X",
                           "Tattoo_X80", " Tattoo", "Tattoo "}) {
    EXPECT_EQ(tarvoHalftoneTypeFromStr(name), None) << '"' << name << '"';
  }
}

}  // namespace
