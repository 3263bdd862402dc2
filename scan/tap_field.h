#ifndef TAPFORGE_SCAN_TAP_FIELD_H
#define TAPFORGE_SCAN_TAP_FIELD_H

#include <cassert>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "scan/bits.h"

namespace tapforge {

/// One bit vector of a scan statement (TDI, TDO, MASK or SMASK), of any length
/// from 1 bit up. Bit 0 is the least significant bit of the rightmost hex
/// digit, the first one shifted.
///
/// The vector is stored as hex digits, two to a byte: digit c, of which 0 is the
/// least significant one, lies in byte c / 2, in the low half when c is even. Bits
/// of the top digit above the length stay as they were written; readers that go by
/// bit number ignore them.
class CTapField {
 public:
  /// Makes the vector all zero, `length` bits (at least 1) long. Storage is kept
  /// when it suffices. Throws std::bad_alloc; the vector is then lost.
  void initTapField(std::int64_t length);

  /// The same with a value of at most 64 bits for a length of at most 64.
  void initShort(std::int64_t length, std::uint64_t value) {
    assert(length >= 1 && length <= kChunkBits);
    if (capacity_ == 0) initTapField(length);
    lLength_ = length;
    storeLittle(pData_.get(), value);
    // bitsAt() of the highest bit looks this far.
    storeLittle(pData_.get() + 8, 0);
  }

  /// Gives storage for more than kSmall bytes back; the vector is then lost.
  void freeLarge() {
    if (capacity_ <= kSmall) return;
    pData_.reset();
    capacity_ = 0;
  }

  std::int64_t lLength() const { return lLength_; }              // bits
  std::int64_t lNumChars() const { return digitsOf(lLength_); }  // hex digits

  /// A digit (0 to 15), by an index below lNumChars().
  unsigned getTapDataChar(std::int64_t index) const {
    assert(index >= 0 && index < lNumChars());
    const unsigned byte = pData_.get()[index / 2];
    return index % 2 != 0 ? byte >> 4 : byte & 15U;
  }
  void setTapDataChar(std::int64_t index, unsigned digit);

  /// Turns the digits in place, so that the one at `start` (at most lNumChars())
  /// becomes digit 0 and those below it the most significant ones.
  void rotate(std::int64_t start);

  /// 64 bits from bit `low` up, which lies inside the field. What lies beyond the
  /// last byte is 0.
  std::uint64_t bitsAt(std::int64_t low) const {
    assert(low >= 0 && low < lLength_);
    const unsigned char* from = pData_.get() + (low >> 3);
    const int shift = static_cast<int>(low & 7);
    // Adds the bits of the ninth byte. Split into two shifts: one by 64 would be
    // undefined when `shift` is 0.
    return loadLittle(from) >> shift | static_cast<std::uint64_t>(from[8]) << (63 - shift) << 1;
  }

  /// All bits, for a field of at most 64 bits; those above the length are 0.
  std::uint64_t shortBits() const {
    assert(lLength_ <= kChunkBits);
    return loadLittle(pData_.get()) & lowBits(lLength_);
  }

  /// Stores 64 bits from bit `low` up, a multiple of 8. Bits above the length must
  /// be 0.
  void putBits(std::int64_t low, std::uint64_t bits) {
    assert(low % 8 == 0 && low >= 0 && low < lLength_);
    storeLittle(pData_.get() + (low >> 3), bits);
  }

  /// The digits' bytes, for code that fills many digits at a time; kPadding more
  /// may be read and written back.
  unsigned char* pData() { return pData_.get(); }

  /// Bytes after the last one.
  static constexpr std::int64_t kPadding = 16;
  /// Most fields fit into this many bytes.
  static constexpr std::int64_t kSmall = 48;

 private:
  void reverse(std::int64_t from, std::int64_t to);

  struct Free {
    void operator()(unsigned char* data) const { std::free(data); }
  };

  std::int64_t lLength_ = 0;
  std::int64_t capacity_ = 0;  // bytes that pData_ can hold, without the padding
  std::unique_ptr<unsigned char, Free> pData_;
};

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_TAP_FIELD_H
