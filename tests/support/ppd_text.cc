#include "support/ppd_text.h"

#include <cstdio>

namespace support {

namespace {

constexpr std::string_view kHead =
    "*PPD-Adobe: \"4.3\"\n"
    "*FormatVersion: \"4.3\"\n"
    "*FileVersion: \"1.0\"\n"
    "*LanguageVersion: English\n"
    "*LanguageEncoding: ISOLatin1\n"
    "*PCFileName: \"TEST.PPD\"\n"
    "*Manufacturer: \"Test\"\n"
    "*Product: \"(Test)\"\n"
    "*ModelName: \"Test\"\n"
    "*ShortNickName: \"Test\"\n"
    "*NickName: \"Test\"\n"
    "*PSVersion: \"(3010.000) 0\"\n"
    "*LanguageLevel: \"3\"\n"
    "*ColorDevice: False\n"
    "*DefaultColorSpace: Gray\n"
    "*FileSystem: False\n"
    "*Throughput: \"1\"\n"
    "*LandscapeOrientation: Plus90\n"
    "*TTRasterizer: Type42\n"
    "*cupsVersion: 2.4\n";

std::string number(float value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
  return text;
}

std::string concat(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (const std::string_view part : parts) text += part;
  return text;
}

}  // namespace

PpdText& PpdText::pageSize(std::string_view name, float width, float length) {
  sizes_.push_back({.name = std::string(name), .width = width, .length = length});
  return *this;
}

PpdText& PpdText::printable(float left, float bottom, float right, float top) {
  Size& size = sizes_.back();
  size.left = left;
  size.bottom = bottom;
  size.right = right;
  size.top = top;
  return *this;
}

PpdText& PpdText::defaultPageSize(std::string_view name) {
  defaultSize_ = name;
  return *this;
}

PpdText& PpdText::customPageSizes(float smallest, float largest) {
  const std::string range = number(smallest) + " " + number(largest);
  rest_ +=
      concat({"*VariablePaperSize: True\n*LeadingEdge PreferLong: \"\"\n"
              "*DefaultLeadingEdge: PreferLong\n*HWMargins: 0 0 0 0\n"
              "*NonUIOrderDependency: 10 AnySetup *CustomPageSize\n"
              "*CustomPageSize True: \"pop pop pop\"\n"
              "*ParamCustomPageSize Width: 1 points ",
              range, "\n*ParamCustomPageSize Height: 2 points ", range,
              "\n*ParamCustomPageSize Orientation: 3 int 0 0\n"
              "*ParamCustomPageSize WidthOffset: 4 points 0 0\n"
              "*ParamCustomPageSize HeightOffset: 5 points 0 0\n*MaxMediaWidth: \"",
              number(largest), "\"\n*MaxMediaHeight: \"", number(largest), "\"\n"});
  return *this;
}

PpdText& PpdText::option(std::string_view keyword, std::string_view defaultChoice,
                         const std::vector<std::string>& choices) {
  rest_ += concat({"*OpenUI *", keyword, "/", keyword, ": PickOne\n*OrderDependency: 10 AnySetup *",
                   keyword, "\n*Default", keyword, ": ", defaultChoice, "\n"});
  for (const std::string& choice : choices) {
    rest_ += concat({"*", keyword, " ", choice, "/", choice, ": \"\"\n"});
  }
  rest_ += concat({"*CloseUI: *", keyword, "\n"});
  return *this;
}

PpdText& PpdText::attribute(std::string_view name, std::string_view specifier,
                            std::string_view value) {
  return line(concat({"*", name, specifier.empty() ? "" : " ", specifier, ": \"", value, "\""}));
}

PpdText& PpdText::line(std::string_view text) {
  rest_ += concat({text, "\n"});
  return *this;
}

std::string PpdText::text() const {
  std::string text(kHead);
  if (!sizes_.empty()) {
    const std::string chosen = defaultSize_.empty() ? sizes_.front().name : defaultSize_;
    std::string sizes, regions, areas, dimensions;
    for (const Size& size : sizes_) {
      const std::string sheet = number(size.width) + " " + number(size.length);
      sizes += concat({"*PageSize ", size.name, "/", size.name, ": \"\"\n"});
      regions += concat({"*PageRegion ", size.name, "/", size.name, ": \"\"\n"});
      areas +=
          concat({"*ImageableArea ", size.name, "/", size.name, ": \"", number(size.left), " ",
                  number(size.bottom), " ", number(size.right), " ", number(size.top), "\"\n"});
      dimensions += concat({"*PaperDimension ", size.name, "/", size.name, ": \"", sheet, "\"\n"});
    }
    text +=
        concat({"*OpenUI *PageSize/Media Size: PickOne\n*OrderDependency: 10 AnySetup "
                "*PageSize\n*DefaultPageSize: ",
                chosen, "\n", sizes, "*CloseUI: *PageSize\n"});
    text +=
        concat({"*OpenUI *PageRegion/Media Size: PickOne\n*OrderDependency: 10 AnySetup "
                "*PageRegion\n*DefaultPageRegion: ",
                chosen, "\n", regions, "*CloseUI: *PageRegion\n"});
    text += concat({"*DefaultImageableArea: ", chosen, "\n", areas});
    text += concat({"*DefaultPaperDimension: ", chosen, "\n", dimensions});
  }
  return text + rest_;
}

}  // namespace support
