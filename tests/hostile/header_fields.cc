#include "header_fields.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>

namespace hostile {

namespace {

using Kind = Field::Kind;

constexpr std::uint32_t kMost = 0xFFFFFFFF;
constexpr std::uint32_t kSign = 0x80000000;

struct Member {
  const char* name;
  std::size_t offset;
  std::size_t size;
  Kind kind;
};

#define TARVO_MEMBER(kind, name) \
  { #name, offsetof(cups_page_header2_t, name), sizeof(cups_page_header2_t::name), Kind::kind }

constexpr Member kMembers[] = {
    TARVO_MEMBER(Text, MediaClass),
    TARVO_MEMBER(Text, MediaColor),
    TARVO_MEMBER(Text, MediaType),
    TARVO_MEMBER(Text, OutputType),
    TARVO_MEMBER(Number, AdvanceDistance),
    TARVO_MEMBER(Number, AdvanceMedia),
    TARVO_MEMBER(Number, Collate),
    TARVO_MEMBER(Number, CutMedia),
    TARVO_MEMBER(Number, Duplex),
    TARVO_MEMBER(Number, HWResolution),
    TARVO_MEMBER(Number, ImagingBoundingBox),
    TARVO_MEMBER(Number, InsertSheet),
    TARVO_MEMBER(Number, Jog),
    TARVO_MEMBER(Number, LeadingEdge),
    TARVO_MEMBER(Number, Margins),
    TARVO_MEMBER(Number, ManualFeed),
    TARVO_MEMBER(Number, MediaPosition),
    TARVO_MEMBER(Number, MediaWeight),
    TARVO_MEMBER(Number, MirrorPrint),
    TARVO_MEMBER(Number, NegativePrint),
    TARVO_MEMBER(Number, NumCopies),
    TARVO_MEMBER(Number, Orientation),
    TARVO_MEMBER(Number, OutputFaceUp),
    TARVO_MEMBER(Number, PageSize),
    TARVO_MEMBER(Number, Separations),
    TARVO_MEMBER(Number, TraySwitch),
    TARVO_MEMBER(Number, Tumble),
    TARVO_MEMBER(Number, cupsWidth),
    TARVO_MEMBER(Number, cupsHeight),
    TARVO_MEMBER(Number, cupsMediaType),
    TARVO_MEMBER(Number, cupsBitsPerColor),
    TARVO_MEMBER(Number, cupsBitsPerPixel),
    TARVO_MEMBER(Number, cupsBytesPerLine),
    TARVO_MEMBER(Number, cupsColorOrder),
    TARVO_MEMBER(Number, cupsColorSpace),
    TARVO_MEMBER(Number, cupsCompression),
    TARVO_MEMBER(Number, cupsRowCount),
    TARVO_MEMBER(Number, cupsRowFeed),
    TARVO_MEMBER(Number, cupsRowStep),
    TARVO_MEMBER(Number, cupsNumColors),
    TARVO_MEMBER(Real, cupsBorderlessScalingFactor),
    TARVO_MEMBER(Real, cupsPageSize),
    TARVO_MEMBER(Real, cupsImagingBBox),
    TARVO_MEMBER(Number, cupsInteger),
    TARVO_MEMBER(Real, cupsReal),
    TARVO_MEMBER(Text, cupsString),
    TARVO_MEMBER(Text, cupsMarkerType),
    TARVO_MEMBER(Text, cupsRenderingIntent),
    TARVO_MEMBER(Text, cupsPageSizeName),
};

#undef TARVO_MEMBER

/// What is special about the numbers in use. The good page is 16 x 2 dots, 16 bytes a line.
const std::map<std::string, std::vector<std::uint32_t>>& limits() {
  static const std::map<std::string, std::vector<std::uint32_t>> kLimits = {
      {"HWResolution[0]", {202, 203, 204}},
      {"HWResolution[1]", {202, 203, 204}},
      {"NumCopies", {999, 1000, 9999}},
      {"cupsWidth", {7, 8, 9, 15, 16, 17}},
      // 16 bytes a line and 2^28 lines are 2^32 bytes: one more than 32 bits hold.
      {"cupsHeight", {2, 3, 4, 0x0FFFFFFF, 0x10000000, 0x10000001}},
      {"cupsMediaType", {2}},
      {"cupsBitsPerColor", {2, 4, 7, 8, 9, 12, 16, 32}},
      {"cupsBitsPerPixel", {2, 4, 7, 8, 9, 12, 16, 24, 32, 64, 0x100, 0x108}},
      {"cupsBytesPerLine", {8, 15, 16, 17, 18, 24, 32}},
      {"cupsColorOrder", {0, 1, 2, 3}},
      {"cupsColorSpace", {3, 15, 17, 18, 20, 31, 32, 46, 47, 48, 49, 62, 63}},
      {"cupsCompression", {2}},
      {"cupsRowCount", {2}},
      {"cupsRowFeed", {2}},
      {"cupsRowStep", {2}},
      // 2 rows of 0x80000000 planes are counted as none, of 0x80000001 as two.
      {"cupsNumColors", {2, 3, 4, 15, 16, 17, 0x80000001}},
  };
  return kLimits;
}

/// Of those, what a pair of fields is tried with.
const std::map<std::string, std::vector<std::uint32_t>>& fewLimits() {
  static const std::map<std::string, std::vector<std::uint32_t>> kLimits = {
      {"NumCopies", {kSign}},          {"cupsWidth", {15, 17}},
      {"cupsHeight", {3, 0x10000000}}, {"cupsBitsPerColor", {16}},
      {"cupsBitsPerPixel", {8, 16}},   {"cupsBytesPerLine", {15, 17, 65536, kSign - 1}},
      {"cupsColorOrder", {2}},         {"cupsColorSpace", {18}},
      {"cupsNumColors", {3, kSign}},
  };
  return kLimits;
}

template <typename T>
Value valueOf(T value) {
  Value result{std::string(sizeof value, '\0'), std::to_string(value)};
  std::memcpy(result.bytes.data(), &value, sizeof value);
  return result;
}

std::vector<Value> numbers(std::vector<std::uint32_t> list) {
  std::sort(list.begin(), list.end());
  list.erase(std::unique(list.begin(), list.end()), list.end());
  std::vector<Value> values;
  for (const std::uint32_t value : list) values.push_back(valueOf(value));
  return values;
}

std::vector<Value> reals() {
  using Limits = std::numeric_limits<float>;
  std::vector<Value> values;
  for (const float value : {0.0F, -0.0F, 1.0F, -1.0F, Limits::max(), Limits::lowest(),
                            Limits::denorm_min(), Limits::infinity(), Limits::quiet_NaN()}) {
    values.push_back(valueOf(value));
  }
  values.push_back(valueOf(std::bit_cast<float>(kMost)));
  return values;
}

Value text(const std::string& bytes, const char* shown) { return {bytes, shown}; }

std::vector<Value> texts() {
  std::string percents;
  while (percents.size() < 64) percents += "%s%n";
  return {text(std::string(64, '\0'), "empty"),
          text(std::string(64, '\1'), "ones"),
          text(std::string(64, '\xFF'), "all ones"),
          text(std::string(64, 'A'), "64 letters, no NUL"),
          text(std::string(63, 'A') + '\0', "63 letters"),
          text("A4" + std::string(62, ' '), "A4 and blanks, no NUL"),
          text(percents, "conversions, no NUL"),
          text(std::string("../../etc\0passwd", 16) + std::string(48, '/'), "a NUL within")};
}

std::vector<std::uint32_t> extra(const std::map<std::string, std::vector<std::uint32_t>>& table,
                                 const Field& field) {
  const auto found = table.find(field.name);
  return found != table.end() ? found->second : std::vector<std::uint32_t>{};
}

}  // namespace

const std::vector<Field>& allFields() {
  static const std::vector<Field> kFields = [] {
    std::vector<Field> fields;
    for (const Member& member : kMembers) {
      const std::size_t one = member.kind == Kind::Text ? 64 : 4;
      for (std::size_t at = 0; at < member.size; at += one) {
        std::string name = member.name;
        if (member.size > one) name += "[" + std::to_string(at / one) + "]";
        fields.push_back({name, member.offset + at, member.kind});
      }
    }
    return fields;
  }();
  return kFields;
}

const std::vector<Field>& fieldsInUse() {
  static const std::vector<Field> kFields = [] {
    std::vector<Field> fields;
    for (const Field& field : allFields()) {
      if (limits().contains(field.name)) fields.push_back(field);
    }
    return fields;
  }();
  return kFields;
}

std::vector<Value> valuesOf(const Field& field) {
  if (field.kind == Kind::Real) return reals();
  if (field.kind == Kind::Text) return texts();
  std::vector<std::uint32_t> list = extra(limits(), field);
  list.insert(list.end(), {0, 1, 255, 256, 65535, 65536, kSign - 1, kSign, kMost - 1, kMost});
  return numbers(list);
}

std::vector<Value> fewValuesOf(const Field& field) {
  if (field.kind == Kind::Real) return {valueOf(0.0F), valueOf(1.0F), reals().back()};
  if (field.kind == Kind::Text) return {texts()[0], texts()[1], texts()[2]};
  std::vector<std::uint32_t> list = extra(fewLimits(), field);
  list.insert(list.end(), {0, 1, kMost});
  return numbers(list);
}

void set(cups_page_header2_t& header, const Field& field, const Value& value) {
  std::memcpy(reinterpret_cast<char*>(&header) + field.offset, value.bytes.data(),
              value.bytes.size());
}

}  // namespace hostile
