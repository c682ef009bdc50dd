// Reads a stream while it arrives.
#ifndef TARVO_TSPL_FOLLOWER_H_
#define TARVO_TSPL_FOLLOWER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "tspl/reader.h"

namespace tspl {

/// However a stream is cut into pieces, its pages and its first damage are those that Read() finds
/// in the whole. Holds the bytes of the page that is arriving, and none behind damage.
class Follower {
 public:
  /// Gets each page with its last command, in order, each once and as soon as it is complete: with
  /// its PRINT, or when the next page or document begins. Their texts and dots are good during the
  /// call only.
  using OnPage = std::function<void(const Page& page, const Command& last)>;

  explicit Follower(OnPage on_page) : on_page_(std::move(on_page)) {}

  /// The next bytes of the stream.
  void Take(std::span<const std::uint8_t> bytes);

  /// The stream has ended. A page that ends with it after any complete command is handed out too.
  void End();

  /// Why the stream is not one of the filter's. Before its end, only what no further bytes mend.
  const std::optional<Malformed>& malformed() const { return malformed_; }

 private:
  void ReadOn(bool ended);

  OnPage on_page_;
  std::vector<std::uint8_t> pending_;  // what follows the last page that was handed out
  std::uint64_t offset_ = 0;           // of pending_ in the stream
  std::optional<Malformed> malformed_;
};

}  // namespace tspl

#endif  // TARVO_TSPL_FOLLOWER_H_
