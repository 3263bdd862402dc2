#ifndef TAPFORGE_REPLAY_BITS_H_
#define TAPFORGE_REPLAY_BITS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tapforge_replay {

/// A row of bits, 64 to a word. Bit 0 is the one that is shifted first; it is the
/// lowest bit of word 0. What stands above the size in the last word is 0.
class Bits {
 public:
  static constexpr std::size_t kWordBits = 64;

  std::size_t size() const { return size_; }
  std::size_t wordCount() const { return words_.size(); }
  std::uint64_t word(std::size_t index) const { return words_[index]; }
  bool bit(std::size_t index) const {
    return (words_[index / kWordBits] >> index % kWordBits & 1) != 0;
  }

  void reserve(std::size_t size) { words_.reserve((size + kWordBits - 1) / kWordBits); }

  /// Keeps the storage.
  void clear() {
    words_.clear();
    size_ = 0;
  }

  /// Adds bits behind the last one: the lowest `count` (up to 64) of a word, as
  /// many of one value, or another row.
  void append(std::uint64_t word, unsigned count);
  void append(std::size_t count, bool value);
  void append(const Bits& more);

  /// Takes hex digits that come most significant first, sixteen in a word; the
  /// last word holds `lastDigits` (1 to 16) of them in its low bits. Returns
  /// false when a 1 stands above the size; it is dropped.
  bool assignDigits(std::vector<std::uint64_t>& digits, unsigned lastDigits, std::size_t size);

 private:
  std::vector<std::uint64_t> words_;
  std::size_t size_ = 0;
};

/// Lower-case hex digits, most significant first: all of them, or the first
/// `most` and "..." when there are more.
std::string hexOf(const Bits& bits, std::size_t most);

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_BITS_H_
