// All that a page header holds, as a table.
#ifndef TARVO_TESTS_HOSTILE_HEADER_FIELDS_H_
#define TARVO_TESTS_HOSTILE_HEADER_FIELDS_H_

#include <cups/raster.h>

#include <cstddef>
#include <string>
#include <vector>

namespace hostile {

/// One field: a number, a number with a point, or a text of 64 bytes. Arrays are one field for each
/// of their elements.
struct Field {
  enum class Kind { Number, Real, Text };
  std::string name;  ///< "HWResolution[1]"
  std::size_t offset;
  Kind kind;

  std::size_t size() const { return kind == Kind::Text ? 64 : 4; }
};

/// Every field, in order; together they are the header, without a gap.
const std::vector<Field>& allFields();

/// Those that the filter or libcups acts on, or that stand in the log.
const std::vector<Field>& fieldsInUse();

/// What a field is set to: its bytes, and how a message shows them.
struct Value {
  std::string bytes;
  std::string shown;
};

/// 0, 1, all ones, and the values around each limit: of signed and unsigned numbers, of what the
/// filter and libcups take for this field, of the good page's size.
std::vector<Value> valuesOf(const Field& field);

/// 0, 1 and all ones, and for the numbers in use the few that decide most.
std::vector<Value> fewValuesOf(const Field& field);

void set(cups_page_header2_t& header, const Field& field, const Value& value);

}  // namespace hostile

#endif  // TARVO_TESTS_HOSTILE_HEADER_FIELDS_H_
