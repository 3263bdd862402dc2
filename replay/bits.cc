#include "replay/bits.h"

#include <algorithm>
#include <utility>

namespace tapforge_replay {
namespace {

constexpr std::size_t kDigitBits = 4;

std::uint64_t lowBits(std::size_t count) {
  return count >= Bits::kWordBits ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

}  // namespace

void Bits::append(std::uint64_t word, unsigned count) {
  if (count == 0) return;
  word &= lowBits(count);
  const std::size_t used = size_ % kWordBits;
  if (used == 0) {
    words_.push_back(word);
  } else {
    words_.back() |= word << used;
    if (used + count > kWordBits) words_.push_back(word >> (kWordBits - used));
  }
  size_ += count;
}

void Bits::append(std::size_t count, bool value) {
  for (std::size_t part = 0; count > 0; count -= part) {
    part = std::min(count, kWordBits);
    append(value ? ~std::uint64_t{0} : 0, static_cast<unsigned>(part));
  }
}

void Bits::append(const Bits& more) {
  std::size_t left = more.size_;
  for (const std::uint64_t word : more.words_) {
    const std::size_t part = std::min(left, kWordBits);
    append(word, static_cast<unsigned>(part));
    left -= part;
  }
}

bool Bits::assignDigits(std::vector<std::uint64_t>& digits, unsigned lastDigits, std::size_t size) {
  words_.swap(digits);  // the storage goes to and fro
  std::reverse(words_.begin(), words_.end());
  const std::size_t own = lastDigits * kDigitBits;  // bits of the lowest word
  for (std::size_t i = 0; own < kWordBits && i + 1 < words_.size(); ++i) {
    words_[i] |= words_[i + 1] << own;
    words_[i + 1] >>= kWordBits - own;
  }
  const std::size_t count = (size + kWordBits - 1) / kWordBits;
  bool fits = true;
  for (std::size_t i = count; i < words_.size(); ++i) fits = fits && words_[i] == 0;
  words_.resize(count);
  if (size % kWordBits != 0) {
    fits = fits && (words_.back() & ~lowBits(size % kWordBits)) == 0;
    words_.back() &= lowBits(size % kWordBits);
  }
  size_ = size;
  return fits;
}

std::string hexOf(const Bits& bits, std::size_t most) {
  const std::size_t digits = (bits.size() + kDigitBits - 1) / kDigitBits;
  std::string text;
  text.reserve(std::min(most, digits) + 3);
  for (std::size_t i = digits; i > 0 && digits - i < most; --i) {
    const std::size_t at = (i - 1) * kDigitBits;
    text += "0123456789abcdef"[bits.word(at / Bits::kWordBits) >> at % Bits::kWordBits & 15];
  }
  if (digits > most) text += "...";
  return text;
}

}  // namespace tapforge_replay
