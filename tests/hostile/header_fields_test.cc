// Every field of a page header set to what nobody would set it to, one at a time and two at a time.
#include "header_fields.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "hostile_job.h"
#include "jobs/filter_job.h"
#include "jobs/good_job.h"

namespace {

using namespace hostile;
using support::Packing;

TEST(HeaderFields, AreTheWholeHeader) {
  std::size_t end = 0;
  for (const Field& field : allFields()) {
    EXPECT_EQ(field.offset, end) << field.name;
    end = field.offset + field.size();
  }
  EXPECT_EQ(end, sizeof(cups_page_header2_t));
  // 4 + 3 + 16 texts, 42 numbers and 16 of the driver's own, 7 and 16 with a point.
  EXPECT_EQ(allFields().size(), 23U + 58 + 23);
  EXPECT_EQ(fieldsInUse().size(), 16U);
}

TEST(HeaderFields, AGoodJobIsNotWrong) {
  for (const Packing packing : {Packing::Uncompressed, Packing::Compressed}) {
    const std::string raster = rasterOf(jobs::goodPage().header, packing);
    ASSERT_EQ(pagesOf(raster).size(), 2U);
    EXPECT_EQ(pagesOf(raster)[0].pixels, jobs::goodPage().pixels);
    EXPECT_EQ(pagesOf(raster)[1].pixels, jobs::goodPage().pixels);
    EXPECT_EQ(whatIsWrong(raster), "");
  }
}

/// Tells which of many cases this run tries: all of them, or where each one takes long every so
/// many.
class Sample {
 public:
  explicit Sample(int every) : every_(every) {}
  bool takesNext() { return next_++ % every_ == 0; }

 private:
  int every_;
  int next_ = 0;
};

int everySanitized(int count) { return jobs::kAddressSanitizer ? count : 1; }

bool isInUse(const Field& field) {
  return std::any_of(fieldsInUse().begin(), fieldsInUse().end(),
                     [&](const Field& used) { return used.offset == field.offset; });
}

void reportCount(int cases) { std::cout << cases << " jobs\n"; }

/// Each case is a share of the fields, so that they can run side by side.
class OneField : public testing::TestWithParam<std::size_t> {};

constexpr std::size_t kShares = 4;

TEST_P(OneField, NeverHarms) {
  Sample sample(everySanitized(7));
  Packing turn = Packing::Uncompressed;
  int cases = 0;
  for (std::size_t i = GetParam(); i < allFields().size(); i += kShares) {
    const Field& field = allFields()[i];
    for (const Value& value : valuesOf(field)) {
      cups_page_header2_t header = jobs::goodPage().header;
      set(header, field, value);
      turn = turn == Packing::Compressed ? Packing::Uncompressed : Packing::Compressed;
      for (const Packing packing : {Packing::Uncompressed, Packing::Compressed}) {
        // Nobody looks at most fields: for those the packings take turns.
        if (!isInUse(field) && packing != turn) continue;
        if (!sample.takesNext()) continue;
        ++cases;
        EXPECT_EQ(whatIsWrong(rasterOf(header, packing)), "")
            << field.name << " = " << value.shown
            << (packing == Packing::Compressed ? ", compressed" : "");
      }
    }
  }
  reportCount(cases);
  EXPECT_GT(cases, jobs::kAddressSanitizer ? 20 : 200);
}

INSTANTIATE_TEST_SUITE_P(Shares, OneField, testing::Range(std::size_t{0}, kShares));

/// Of all pairs of `fields`, those of this share; each with all that `values` has for both.
template <typename Values>
int tryPairs(const std::vector<Field>& fields, std::size_t share, Values values, Sample sample) {
  int cases = 0;
  std::size_t pair = 0;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    for (std::size_t j = i + 1; j < fields.size(); ++j) {
      if (pair++ % kShares != share) continue;
      for (const Value& first : values(fields[i])) {
        for (const Value& second : values(fields[j])) {
          if (!sample.takesNext()) continue;
          cups_page_header2_t header = jobs::goodPage().header;
          set(header, fields[i], first);
          set(header, fields[j], second);
          // Both packings would take twice as long: they take turns.
          const Packing packing = ++cases % 2 == 0 ? Packing::Compressed : Packing::Uncompressed;
          EXPECT_EQ(whatIsWrong(rasterOf(header, packing)), "")
              << fields[i].name << " = " << first.shown << ", " << fields[j].name << " = "
              << second.shown << (packing == Packing::Compressed ? ", compressed" : "");
        }
      }
    }
  }
  return cases;
}

class TwoFields : public testing::TestWithParam<std::size_t> {};

TEST_P(TwoFields, InUseNeverHarm) {
  const int cases = tryPairs(fieldsInUse(), GetParam(), fewValuesOf, Sample(everySanitized(20)));
  reportCount(cases);
  EXPECT_GT(cases, jobs::kAddressSanitizer ? 20 : 400);
}

/// What takes minutes is run by tools/check long, which sets TARVO_TEST_LONG.
bool isLongRun() { return std::getenv("TARVO_TEST_LONG") != nullptr; }

TEST_P(TwoFields, InUseWithEveryValueNeverHarm) {
  if (!isLongRun()) GTEST_SKIP() << "takes minutes: set TARVO_TEST_LONG";
  const int cases = tryPairs(fieldsInUse(), GetParam(), valuesOf, Sample(everySanitized(20)));
  reportCount(cases);
}

TEST_P(TwoFields, OfTheWholeHeaderNeverHarm) {
  if (!isLongRun()) GTEST_SKIP() << "takes minutes: set TARVO_TEST_LONG";
  const int cases = tryPairs(allFields(), GetParam(), fewValuesOf, Sample(everySanitized(20)));
  reportCount(cases);
}

INSTANTIATE_TEST_SUITE_P(Shares, TwoFields, testing::Range(std::size_t{0}, kShares));

}  // namespace
