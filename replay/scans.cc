#include "replay/scans.h"

#include <bit>
#include <cstddef>

namespace tapforge_replay {
namespace {

constexpr std::uint64_t kAll = ~std::uint64_t{0};

// How often, and where for the first time, words of a scan have a 1.
struct BitCount {
  std::uint64_t count = 0;
  std::size_t first = 0;

  void add(std::uint64_t word, std::size_t index) {
    if (word == 0) return;
    if (count == 0) {
      first = index * Bits::kWordBits + static_cast<std::size_t>(std::countr_zero(word));
    }
    count += static_cast<std::uint64_t>(std::popcount(word));
  }
  std::string text() const {
    return count == 1 ? "bit " + std::to_string(first)
                      : std::to_string(count) + " bits from bit " + std::to_string(first);
  }
};

std::uint64_t wordOf(const Bits* bits, std::size_t i, std::uint64_t otherwise) {
  return bits != nullptr ? bits->word(i) : otherwise;
}

}  // namespace

void compareBits(const Operation& from, const Operation& to, Findings& findings) {
  BitCount tdi;
  BitCount tdo;
  BitCount less;
  BitCount more;
  BitCount open;
  const std::size_t words = from.tdi->wordCount();
  const std::size_t above = words * Bits::kWordBits - from.tdi->size();
  for (std::size_t i = 0; i < words; ++i) {
    const std::uint64_t care = wordOf(from.care, i, kAll);
    const std::uint64_t wanted = wordOf(from.mask, i, 0);
    const std::uint64_t seen = wordOf(to.mask, i, 0);
    tdi.add((from.tdi->word(i) ^ to.tdi->word(i)) & care, i);
    less.add(wanted & ~seen, i);
    more.add(seen & ~wanted, i);
    tdo.add((wordOf(from.tdo, i, 0) ^ wordOf(to.tdo, i, 0)) & wanted & seen, i);
    const std::uint64_t inside = i + 1 == words ? kAll >> above : kAll;
    open.add(care & inside & ~wordOf(to.care, i, kAll), i);
  }
  const auto add = [&](Difference difference, const BitCount& bits, const char* what) {
    if (bits.count == 0) return;
    findings.add(difference, static_cast<double>(bits.count), [&] {
      return "scan " + std::to_string(from.number) + ", source " + describe(from.place) +
             ", converted " + describe(to.place) + ": " + what + bits.text();
    });
  };
  add(Difference::kCare, open, "");
  add(Difference::kComparedLess, less, "");
  add(Difference::kComparedMore, more, "");
  add(Difference::kScans, tdi, "TDI differs in ");
  if (tdi.count == 0) add(Difference::kScans, tdo, "expected TDO differs in ");
}

}  // namespace tapforge_replay
