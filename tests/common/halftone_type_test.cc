#include "common/halftone_type.h"

#include <gtest/gtest.h>

namespace {

struct NamedType {
  int value;
  DitherType type;
  const char* name;
};

constexpr NamedType kTypes[] = {
    {0, None, "None"},       {1, FloydSteinberg, "FloydSteinberg"},
    {2, Ordered, "Ordered"}, {3, Burkes, "Burkes"},
    {4, Stucki, "Stucki"},   {5, JarvisJudiceNinke, "JarvisJudiceNinke"},
    {6, Sierra, "Sierra"},   {7, StevensonArce, "StevensonArce"},
    {8, Tattoo, "Tattoo"},   {9, Tattoo_X8, "Tattoo_X8"},
};

TEST(HalftoneType, EachValueHasItsName) {
  for (const NamedType& type : kTypes) {
    EXPECT_EQ(type.type, type.value) << type.name;
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
