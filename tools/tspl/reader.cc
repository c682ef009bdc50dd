#include "tspl/reader.h"

#include <cstdlib>
#include <limits>
#include <utility>

#include "tspl/cursor.h"

namespace tspl {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::size_t kPreambleLength = 64;
constexpr std::int64_t kMostInt = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kLeastInt = std::numeric_limits<std::int32_t>::min();

// The filter copies the speed from a text of a print setting, which holds 40 characters.
constexpr std::size_t kMostSpeedCharacters = 40;
static_assert(kLongestHead > sizeof "SPEED \r\n" + kMostSpeedCharacters);

struct Rule {
  Kind kind;
  std::string_view head;   // what the stream shows first
  std::vector<Kind> next;  // what may follow
};

const std::vector<Rule>& Rules() {
  using enum Kind;
  static const std::vector<Rule> rules = {
      {kPreamble, "\n", {kSize}},
      {kSize, "SIZE ", {kGap, kBline, kReference}},
      {kGap, "GAP ", {kReference}},
      {kBline, "BLINE ", {kReference}},
      {kReference, "REFERENCE ", {kDirection}},
      {kDirection, "DIRECTION ", {kSpeed, kDensity, kSetRibbon, kOffset}},
      {kSpeed, "SPEED ", {kDensity, kSetRibbon, kOffset}},
      {kDensity, "DENSITY ", {kSetRibbon, kOffset}},
      {kSetRibbon, "SET RIBBON ", {kOffset}},
      {kOffset, "OFFSET ", {kSetTear, kCls}},
      {kSetTear, "SET TEAR ", {kSetPeel}},
      {kSetPeel, "SET PEEL ", {kSetCutter}},
      {kSetCutter, "SET CUTTER ", {kCls}},
      // A page whose pixels could not be read stops at its CLS.
      {kCls, "CLS\r\n", {kBitmap, kSize}},
      {kBitmap, "BITMAP ", {kPrint}},
      {kPrint, "PRINT ", {kSize}},
  };
  return rules;
}

const Rule& RuleOf(Kind kind) { return Rules()[static_cast<std::size_t>(kind)]; }

// Where a whole document can end. Elsewhere its end is taken too, but is not what one would expect
// there.
bool EndsDocument(Kind kind) {
  return kind == Kind::kPreamble || kind == Kind::kCls || kind == Kind::kPrint;
}

class Reader {
 public:
  Reader(std::span<const std::uint8_t> bytes, std::uint64_t offset) : in_(bytes, offset) {}

  Stream Run(bool with_preamble) {
    bool good = !with_preamble || Next(Kind::kPreamble);
    while (good && !in_.AtEnd()) good = Choose() && Next(chosen_);
    stream_.malformed = in_.malformed();
    return std::move(stream_);
  }

 private:
  // Which of the commands that may follow the last one does: one of the same page, the next page,
  // or the next document.
  bool Choose() {
    const std::vector<Kind>& choices = RuleOf(last_).next;
    std::string expected;
    for (std::size_t i = 0; i < choices.size(); ++i) {
      const std::string_view head = RuleOf(choices[i]).head;
      if (in_.Sees(head)) {
        chosen_ = choices[i];
        return true;
      }
      const bool last_choice = i + 1 == choices.size() && !EndsDocument(last_);
      expected += i == 0 ? "" : last_choice ? " or " : ", ";
      expected += Quote(head);
    }
    if (in_.Sees(RuleOf(Kind::kPreamble).head)) {
      chosen_ = Kind::kPreamble;
      return true;
    }
    if (EndsDocument(last_)) {
      expected += ", " + std::string(Name(Kind::kPreamble)) + " or the end of the stream";
    }
    return in_.Fail(in_.offset(), std::move(expected));
  }

  // Reads the command, and on its success adds it to the stream.
  bool Next(Kind kind) {
    const std::uint64_t start = in_.offset();
    if (!Body(kind)) return false;
    const std::uint64_t end = in_.offset();
    stream_.commands.push_back({kind, start, end - start, Line(kind, start, end)});
    last_ = kind;
    if (kind == Kind::kPreamble) return true;
    if (kind == Kind::kSize) {
      page_.first_command = stream_.commands.size() - 1;
      stream_.pages.emplace_back();
    }
    page_.command_count = stream_.commands.size() - page_.first_command;
    stream_.pages.back() = page_;
    return true;
  }

  std::string_view Line(Kind kind, std::uint64_t start, std::uint64_t end) const {
    if (kind == Kind::kPreamble) return {};
    if (kind == Kind::kBitmap) return in_.Text(start, page_.bitmap->data_offset);
    return in_.Text(start, end - kLineEnd.size());
  }

  bool Body(Kind kind) {
    switch (kind) {
      case Kind::kPreamble:
        return Preamble();
      case Kind::kSize:
        page_ = Page{};
        return in_.Literal("SIZE ") && in_.Length(page_.width_tenths_mm) && in_.Literal(" mm, ") &&
               in_.Length(page_.height_tenths_mm) && in_.Literal(" mm\r\n");
      case Kind::kGap:
        // Continuous paper: the only form without decimals and units.
        if (in_.Sees("GAP 0, ")) return in_.Literal("GAP 0, 0\r\n");
        return in_.Literal("GAP ") && Distance();
      case Kind::kBline:
        return in_.Literal("BLINE ") && Distance();
      case Kind::kReference:
        return in_.Literal("REFERENCE 0,0\r\n");
      case Kind::kDirection:
        return Direction();
      case Kind::kSpeed:
        return Speed();
      case Kind::kDensity: {
        std::int64_t density = 0;
        return in_.Literal("DENSITY ") && in_.Integer("a density", 0, 30, density) &&
               in_.Literal(kLineEnd);
      }
      case Kind::kSetRibbon: {
        bool on = false;
        return in_.Literal("SET RIBBON ") && Switch(on);
      }
      case Kind::kOffset:
        return in_.Literal("OFFSET 0.0 mm\r\n");
      case Kind::kSetTear:
        action_taken_ = false;
        return in_.Literal("SET TEAR ") && Action();
      case Kind::kSetPeel:
        return in_.Literal("SET PEEL ") && Action();
      case Kind::kSetCutter:
        return in_.Literal("SET CUTTER ") && Action();
      case Kind::kCls:
        return in_.Literal("CLS\r\n");
      case Kind::kBitmap:
        return Dots();
      case Kind::kPrint: {
        // The copies are an unsigned number of the page's header, sent as a signed one.
        std::int64_t copies = 0;
        if (!in_.Literal("PRINT 1,") ||
            !in_.Integer("a number of copies", kLeastInt, kMostInt, copies) ||
            !in_.Literal(kLineEnd)) {
          return false;
        }
        page_.copies = static_cast<std::int32_t>(copies);
        return true;
      }
    }
    return false;
  }

  bool Preamble() {
    std::size_t length = 0;
    while (length < kPreambleLength && in_.Sees("\n")) {
      in_.Literal("\n");
      ++length;
    }
    if (length == kPreambleLength) return true;
    return in_.Fail(in_.offset(),
                    "64 line feeds, " + std::to_string(kPreambleLength - length) + " more");
  }

  // The gap or the black mark between two labels; without one the command has another form.
  bool Distance() {
    const std::uint64_t start = in_.offset();
    std::int64_t tenths = 0;
    if (!in_.Length(tenths)) return false;
    if (tenths == 0) return in_.Fail(start, "a length above 0.0 mm");
    return in_.Literal(" mm, 0.0 mm\r\n");
  }

  bool Direction() {
    std::int64_t direction = 0;
    if (!in_.Literal("DIRECTION ") || !in_.Integer("a direction", 0, 1, direction) ||
        !in_.Literal(",0\r\n")) {
      return false;
    }
    page_.rotated = direction == 1;
    return true;
  }

  // The setting's text as it stands, of which only this is known: it begins with a number above
  // zero, and a speed called "Normal" is not sent.
  bool Speed() {
    if (!in_.Literal("SPEED ")) return false;
    const std::uint64_t start = in_.offset();
    std::string_view text;
    if (!in_.Printable("a speed", kMostSpeedCharacters, text)) return false;
    const bool above_zero = std::strtod(std::string(text).c_str(), nullptr) > 1e-15;
    if (!above_zero || text.find("Normal") != std::string_view::npos) {
      return in_.Fail(start, "a speed that begins with a number above 0");
    }
    return in_.Literal(kLineEnd);
  }

  bool Switch(bool& on) {
    on = in_.Sees("ON");
    if (!on && !in_.Sees("OFF")) return in_.Fail(in_.offset(), "\"ON\" or \"OFF\"");
    return in_.Literal(on ? "ON\r\n" : "OFF\r\n");
  }

  // Tear, peel and cutter are sent together, and at most one of them is on.
  bool Action() {
    if (action_taken_) return in_.Literal("OFF\r\n");
    return Switch(action_taken_);
  }

  bool Dots() {
    std::int64_t width_bytes = 0;
    std::int64_t height = 0;
    if (!in_.Literal("BITMAP 0,0,") || !in_.Integer("a width in bytes", 0, kMostInt, width_bytes) ||
        !in_.Literal(",") || !in_.Integer("a height in dots", 0, kMostInt, height) ||
        !in_.Literal(",0,")) {
      return false;
    }
    Bitmap bitmap{};
    bitmap.data_offset = in_.offset();
    bitmap.width_bytes = static_cast<std::uint32_t>(width_bytes);
    bitmap.height_dots = static_cast<std::uint32_t>(height);
    const std::uint64_t size = std::uint64_t{bitmap.width_bytes} * bitmap.height_dots;
    if (!in_.Bytes(size, "dots", bitmap.data) || !in_.Literal(kLineEnd)) return false;
    page_.bitmap = bitmap;
    return true;
  }

  Cursor in_;
  Stream stream_;
  Page page_{};
  Kind last_ = Kind::kPreamble;
  Kind chosen_ = Kind::kPreamble;
  bool action_taken_ = false;
};

}  // namespace

std::string_view Name(Kind kind) {
  if (kind == Kind::kPreamble) return "64 line feeds";
  const std::string_view head = RuleOf(kind).head;
  return head.substr(0, head.find_last_not_of(" \r\n") + 1);
}

std::size_t CompletePages(const Stream& stream) {
  const std::size_t pages = stream.pages.size();
  if (pages == 0) return 0;
  const Page& last = stream.pages.back();
  const bool followed = last.first_command + last.command_count < stream.commands.size();
  return last.copies || followed ? pages : pages - 1;
}

Stream Read(std::span<const std::uint8_t> bytes) { return Reader(bytes, 0).Run(true); }

Stream ReadPages(std::span<const std::uint8_t> bytes, std::uint64_t offset) {
  return Reader(bytes, offset).Run(false);
}

}  // namespace tspl
