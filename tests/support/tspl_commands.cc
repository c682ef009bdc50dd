#include "support/tspl_commands.h"

#include <array>
#include <cstddef>
#include <regex>

#include "support/differences.h"

namespace support {

namespace {

constexpr std::size_t kPreambleBytes = 64;

/// Every line that the filter can send, but BITMAP.
bool isKnown(const std::string& line) {
  static const std::array<std::regex, 11> kKnown{
      std::regex(R"(SIZE \d+\.\d mm, \d+\.\d mm)"),
      std::regex(R"(GAP 0, 0)"),
      std::regex(R"((GAP|BLINE) \d+\.\d mm, \d+\.\d mm)"),
      std::regex(R"(REFERENCE 0,0)"),
      std::regex(R"(DIRECTION [01],0)"),
      std::regex(R"(SPEED \S+)"),
      std::regex(R"(DENSITY \d+)"),
      std::regex(R"(SET (RIBBON|TEAR|PEEL|CUTTER) (ON|OFF))"),
      std::regex(R"(OFFSET \d+\.\d mm)"),
      std::regex(R"(CLS)"),
      std::regex(R"(PRINT 1,\d+)")};
  for (const std::regex& known : kKnown) {
    if (std::regex_match(line, known)) return true;
  }
  return false;
}

class Reader {
 public:
  explicit Reader(std::string_view stream) : stream_(stream) {}

  Commands read() {
    bool whole = readPreamble();
    while (whole && offset_ < stream_.size()) {
      whole = stream_[offset_] == '\n'                  ? readPreamble()
              : stream_.substr(offset_, 7) == "BITMAP " ? readBitmap()
                                                        : readLine();
    }
    return result_;
  }

 private:
  // False, as what to answer.
  bool fault(const std::string& what) {
    result_.fault = "at byte " + std::to_string(offset_) + ": " + what + ": " +
                    printable(stream_.substr(offset_, 60));
    return false;
  }

  bool readPreamble() {
    if (stream_.substr(offset_, kPreambleBytes) != std::string(kPreambleBytes, '\n')) {
      return fault("a document does not begin with 64 line feeds");
    }
    ++result_.documents;
    offset_ += kPreambleBytes;
    return true;
  }

  bool readLine() {
    const std::size_t end = stream_.find("\r\n", offset_);
    if (end == std::string_view::npos) return fault("a line without its end");
    const std::string line(stream_.substr(offset_, end - offset_));
    if (!isKnown(line)) return fault("an unknown command");
    result_.list.push_back({line, ""});
    offset_ = end + 2;
    return true;
  }

  bool readBitmap() {
    static const std::regex kHead(R"(BITMAP 0,0,(\d+),(\d+),0,)");
    const std::string start(stream_.substr(offset_, 64));
    std::smatch head;
    if (!std::regex_search(start, head, kHead, std::regex_constants::match_continuous)) {
      return fault("not the head of a bitmap");
    }
    const std::size_t size = std::stoul(head[1]) * std::stoul(head[2]);
    const std::size_t begin = offset_ + head[0].str().size();
    if (begin > stream_.size() || stream_.size() - begin < size + 2) {
      return fault("a bitmap cut short");
    }
    if (stream_.substr(begin + size, 2) != "\r\n") {
      return fault("no line end after the dots of a bitmap");
    }
    result_.list.push_back({head[0].str(), std::string(stream_.substr(begin, size))});
    offset_ = begin + size + 2;
    return true;
  }

  std::string_view stream_;
  std::size_t offset_ = 0;
  Commands result_;
};

}  // namespace

std::vector<std::string> Commands::lines() const {
  std::vector<std::string> all;
  for (const Command& command : list) all.push_back(command.line);
  return all;
}

Commands commandsOf(std::string_view stream) { return Reader(stream).read(); }

}  // namespace support
