// The largest sheet of a model, and the PPD that the spooler names.
#include "ppd/ppd_sheet.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "ppd/ppd_file.h"
#include "support/folder.h"
#include "support/ppd_text.h"

namespace {

/// Sets a variable of the environment as long as it lives; null: removes it.
class Variable {
 public:
  Variable(const char* name, const char* value) : name_(name) {
    if (const char* before = ::getenv(name)) {
      before_ = before;
      wasSet_ = true;
    }
    set(value);
  }
  ~Variable() { set(wasSet_ ? before_.c_str() : nullptr); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  void set(const char* value) {
    if (value != nullptr) {
      ::setenv(name_, value, 1);
    } else {
      ::unsetenv(name_);
    }
  }

  const char* name_;
  std::string before_;
  bool wasSet_ = false;
};

/// "SHORTER x LONGER" in points.
std::string largestOf(const std::string& ppdText) {
  const support::Folder folder;
  support::writeFile(folder / "model.ppd", ppdText);
  const Variable ppd("PPD", (folder / "model.ppd").c_str());
  const PpdOwner opened = tarvoOpenQueuePpd();
  if (opened == nullptr) return "no PPD";
  const PpdSheet sheet = tarvoPpdLargestSheet(opened.get());
  return std::to_string(sheet.shorter).substr(0, 6) + " x " +
         std::to_string(sheet.longer).substr(0, 6);
}

std::string customSizes(const std::string& width, const std::string& height) {
  return "*VariablePaperSize: True\n*CustomPageSize True: \"pop pop pop\"\n"
         "*ParamCustomPageSize Width: 1 points 36 " +
         width + "\n*ParamCustomPageSize Height: 2 points 36 " + height + "\n";
}

TEST(LargestSheet, EverySizeFitsOnItOneWayOrTheOther) {
  using support::PpdText;
  const struct {
    const char* what;
    std::string ppd, largest;
  } cases[] = {
      {"one size", PpdText().pageSize("4x6", 288, 432).text(), "288.00 x 432.00"},
      {"one that lies", PpdText().pageSize("6x4", 432, 288).text(), "288.00 x 432.00"},
      {"the first is the largest",
       PpdText().pageSize("4x6", 288, 432).pageSize("4x4", 288, 288).text(), "288.00 x 432.00"},
      {"the last is the largest",
       PpdText().pageSize("4x4", 288, 288).pageSize("4x6", 288, 432).text(), "288.00 x 432.00"},
      {"a narrow strip and a square",
       PpdText().pageSize("strip", 72, 700).pageSize("square", 200, 200).text(), "200.00 x 700.00"},
      {"the default is small",
       PpdText().pageSize("4x6", 288, 432).pageSize("1x1", 72, 72).defaultPageSize("1x1").text(),
       "288.00 x 432.00"},
      {"custom sizes go further",
       PpdText().pageSize("4x6", 288, 432).line(customSizes("295", "2834")).text(),
       "295.00 x 2834.0"},
      {"custom sizes that lie",
       PpdText().pageSize("4x6", 288, 432).line(customSizes("2834", "295")).text(),
       "295.00 x 2834.0"},
      {"custom sizes that do not go as far",
       PpdText().pageSize("4x6", 288, 432).line(customSizes("100", "200")).text(),
       "288.00 x 432.00"},
      {"a custom side of nothing",
       PpdText().pageSize("4x6", 288, 432).line(customSizes("0", "2834")).text(),
       "288.00 x 432.00"},
      {"a maximum without custom sizes",
       PpdText()
           .pageSize("4x6", 288, 432)
           .line("*VariablePaperSize: False\n*ParamCustomPageSize Width: 1 points 36 900\n"
                 "*ParamCustomPageSize Height: 2 points 36 900")
           .text(),
       "288.00 x 432.00"},
      {"a size without length", PpdText().pageSize("odd", 500, 0).text(), "0.0000 x 0.0000"},
      {"a size without width", PpdText().pageSize("odd", 0, 500).text(), "0.0000 x 0.0000"},
      {"no sizes", PpdText().option("Darkness", "1", {"1"}).text(), "0.0000 x 0.0000"},
  };
  for (const auto& [what, ppd, largest] : cases) EXPECT_EQ(largestOf(ppd), largest) << what;
}

TEST(LargestSheet, WithoutAPpdThereIsNone) {
  const PpdSheet sheet = tarvoPpdLargestSheet(nullptr);
  EXPECT_EQ(sheet.shorter, 0);
  EXPECT_EQ(sheet.longer, 0);
}

TEST(QueuePpd, IsNoneWhereNoneIsNamedOrNoneIsThere) {
  const support::Folder folder;
  support::writeFile(folder / "text", "no PPD at all\n");
  {
    const Variable ppd("PPD", nullptr);
    EXPECT_EQ(tarvoOpenQueuePpd(), nullptr) << "none named";
  }
  for (const char* name : {"missing", "text"}) {
    const Variable ppd("PPD", (folder / name).c_str());
    EXPECT_EQ(tarvoOpenQueuePpd(), nullptr) << name;
  }
}

}  // namespace
