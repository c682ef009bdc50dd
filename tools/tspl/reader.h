// Reads the stream of TSPL commands that the filter sends to a printer, and nothing else: what the
// filter cannot send is an error, even where a printer would take it. A job of several documents,
// banner pages among them, is one stream: the filter is started for each of them, and what it sends
// comes one after another.
#ifndef TARVO_TSPL_READER_H_
#define TARVO_TSPL_READER_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tspl {

/// The commands, in the order in which a page sends them; the preamble comes before the first page
/// of each document.
enum class Kind {
  kPreamble,  // 64 line feeds
  kSize,
  kGap,
  kBline,
  kReference,
  kDirection,
  kSpeed,
  kDensity,
  kSetRibbon,
  kOffset,
  kSetTear,
  kSetPeel,
  kSetCutter,
  kCls,
  kBitmap,
  kPrint,
};

/// The words that begin a command of this kind, such as "SET TEAR"; for the preamble, what it is
/// in plain words.
std::string_view Name(Kind kind);

/// One command where it stands in the stream.
struct Command {
  Kind kind;
  std::uint64_t offset;   // of its first byte, from 0
  std::uint64_t length;   // in bytes, with its line end and, for BITMAP, its data
  std::string_view text;  // without its line end; for BITMAP the head; empty for the preamble
};

/// The dots of a BITMAP. Rows lie one after another without a gap, eight dots a byte, the leftmost
/// dot in the most significant bit; a clear bit is ink, a set bit is paper.
struct Bitmap {
  std::uint64_t data_offset;  // of the first byte of its data in the stream
  std::uint32_t width_bytes;
  std::uint32_t height_dots;
  std::span<const std::uint8_t> data;  // width_bytes x height_dots bytes
};

/// One page: from its SIZE up to the next one, or to the end of its document.
struct Page {
  std::size_t first_command;  // index of its SIZE in Stream::commands
  std::size_t command_count;
  std::int64_t width_tenths_mm;        // SIZE, in tenths of a millimetre, 0 or more
  std::int64_t height_tenths_mm;       // SIZE, likewise
  bool rotated;                        // DIRECTION 1: the printer turns the page by 180 degrees
  std::optional<Bitmap> bitmap;        // none for a page whose dots were never sent
  std::optional<std::int32_t> copies;  // PRINT; none for a page that is not printed
};

/// Why a stream is not one of the filter's, and where.
struct Malformed {
  std::uint64_t offset;  // of the first byte that is wrong, from 0; the stream's size for its end
  std::string expected;  // in words, texts of the stream quoted and escaped
  std::string found;     // likewise
};

/// A stream read as far as it is good. Texts and dots point into the bytes that were read.
struct Stream {
  std::vector<Command> commands;
  std::vector<Page> pages;
  std::optional<Malformed> malformed;  // none when the whole stream is good
};

/// How many pages of the stream are complete, whatever may be wrong behind them or missing: all, or
/// all but the last. A page is complete with its PRINT, or when another page or document follows.
std::size_t CompletePages(const Stream& stream);

/// Reads a whole stream. `bytes` may hold anything; they must outlive the result, which points
/// into them. A document may end after any complete command, as that of a cancelled job does; a
/// page's `copies` say whether it was printed. Memory is in proportion to the commands that are
/// there, whatever their numbers claim.
Stream Read(std::span<const std::uint8_t> bytes);

/// Reads on in a stream whose preamble, or a whole page, ends before `bytes`: as Read(), but
/// without a preamble at the start. `offset` is where `bytes` stand in the stream, whose start all
/// offsets count from.
Stream ReadPages(std::span<const std::uint8_t> bytes, std::uint64_t offset);

/// With this many bytes behind its offset or more, a failure stays one whatever else arrives: no
/// command is so long before its dots. Nearer to the end it may only be that bytes are missing.
constexpr std::uint64_t kLongestHead = 64;

}  // namespace tspl

#endif  // TARVO_TSPL_READER_H_
