// Writes the text of a PPD file for one test.
#ifndef TARVO_TESTS_SUPPORT_PPD_TEXT_H_
#define TARVO_TESTS_SUPPORT_PPD_TEXT_H_

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace support {

/// Builds the text of a PPD; each call returns the builder itself.
class PpdText {
 public:
  /// A choice of PageSize. Sizes and positions in points; the whole sheet is printable.
  PpdText& pageSize(std::string_view name, float width, float length);

  /// The printable part of the page size that was named last, in points from the sheet's lower left
  /// corner.
  PpdText& printable(float left, float bottom, float right, float top);

  /// Which of the page sizes is the default; else the first one.
  PpdText& defaultPageSize(std::string_view name);

  /// Sheets of a size given with the job, as PageSize=Custom.WxH.
  PpdText& customPageSizes(float smallest, float largest);

  /// A pick-one option; `defaultChoice` need not be among `choices`.
  PpdText& option(std::string_view keyword, std::string_view defaultChoice,
                  const std::vector<std::string>& choices);

  /// `*NAME SPECIFIER: "VALUE"`; an empty specifier is left out.
  PpdText& attribute(std::string_view name, std::string_view specifier, std::string_view value);

  /// A line as it stands.
  PpdText& line(std::string_view text);

  std::string text() const;

 private:
  struct Size {
    std::string name;
    float width;
    float length;
    float left = 0;
    float bottom = 0;
    float right = width;
    float top = length;
  };

  std::vector<Size> sizes_;
  std::string defaultSize_;
  std::string rest_;
};

}  // namespace support

#endif  // TARVO_TESTS_SUPPORT_PPD_TEXT_H_
