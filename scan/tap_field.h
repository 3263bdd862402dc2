#ifndef TAPFORGE_SCAN_TAP_FIELD_H
#define TAPFORGE_SCAN_TAP_FIELD_H

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "shell/io/reporter.h"

namespace tapforge {

/// One bit vector of a scan statement (TDI, TDO, MASK or SMASK), of any length
/// from 1 bit up. Bit 0 is the least significant bit of the rightmost hex
/// digit, the first one shifted.
///
/// The vector is a row of hex digits, two to a byte: physical digit c lies in
/// byte c / 2, in the low nibble when c is even. The row is circular: logical
/// digit 0, the least significant one, stands at physical digit start(), so
/// that a reader can write digits as they arrive and keep the last ones when
/// too many do. Bits of the top digit above the length stay as they were
/// written; readers that go by bit number ignore them.
class CTapField {
 public:
  /// Makes the vector all zero, `length` bits (at least 1) long. Storage is
  /// kept when it suffices. Memory that cannot be had is fatal: "Null Ptr
  /// [pData NULL]".
  void initTapField(long length, Reporter& report);

  /// The same with a value of at most 64 bits for a length of at most 64.
  void initShort(long length, std::uint64_t value, Reporter& report) {
    if (capacity_ < kSmall) initTapField(length, report);
    setLength(length);
    putBits(0, value);
    // All that bitsAt() can see behind it.
    putBits(64, 0);
    putBits(128, 0);
  }

  /// Gives storage for more than kSmall bytes back; the vector is then lost.
  void freeLarge() {
    if (capacity_ <= kSmall) return;
    pData_.reset();
    capacity_ = 0;
  }

  long length() const { return lLength_; }      // bits
  long numChars() const { return lNumChars_; }  // hex digits
  long start() const { return lStartChar_; }

  /// The digit at a logical index.
  int getTapDataChar(long index) const;

  /// The digit at a physical index.
  int physicalDigit(long index) const;

  /// Says which physical digit is logical digit 0.
  void setStart(long index) { lStartChar_ = index; }

  /// Writes a digit by its physical index; it becomes logical digit 0.
  void setTapDataChar(long index, unsigned value);

  /// Turns the row in place until start() is 0.
  void normalise();

  /// 64 bits from logical bit `low` up, for a field with start() 0 and `low`
  /// inside it. What lies beyond the last byte is 0.
  std::uint64_t bitsAt(long low) const {
    const unsigned char* from = pData_.get() + (low >> 3);
    const int shift = static_cast<int>(low & 7);
    const std::uint64_t bits = loadLittle(from) >> shift;
    // The byte behind the word, in two steps because a shift by 64 is none.
    return bits | (static_cast<std::uint64_t>(from[8]) << (63 - shift) << 1);
  }

  /// As bitsAt(0), for a field of at most 64 bits.
  std::uint64_t shortBits() const { return loadLittle(pData_.get()); }

  /// Stores 64 bits from bit `low` up, a multiple of 8, for a field with start()
  /// 0. Bits above the length must be 0.
  void putBits(long low, std::uint64_t bits) {
    if constexpr (std::endian::native == std::endian::big) bits = __builtin_bswap64(bits);
    std::memcpy(pData_.get() + (low >> 3), &bits, sizeof bits);
  }

  /// The digits' bytes, for code that fills many digits at a time.
  unsigned char* bytes() { return pData_.get(); }

  /// Bytes behind the last one that may be read.
  static constexpr long kPadding = 16;
  /// Most fields fit into this many bytes.
  static constexpr long kSmall = 48;

 private:
  static std::uint64_t loadLittle(const unsigned char* from) {
    std::uint64_t word = 0;
    std::memcpy(&word, from, sizeof word);
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
    return word;
  }
  void setLength(long length) {
    // Without a sign, because the length can be the largest long.
    const auto bits = static_cast<unsigned long>(length);
    lLength_ = length;
    lNumChars_ = static_cast<long>((bits + 3) / 4);
    lNumBytes_ = static_cast<long>((bits + 7) / 8);
    lStartChar_ = 0;
  }
  void putDigit(long index, unsigned value);
  void reverse(long from, long to);

  struct Free {
    void operator()(unsigned char* data) const { std::free(data); }
  };

  long lLength_ = 0;
  long lNumChars_ = 0;
  long lNumBytes_ = 0;
  long lStartChar_ = 0;
  long capacity_ = 0;  // bytes that pData_ can hold, without the padding
  std::unique_ptr<unsigned char, Free> pData_;
};

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_TAP_FIELD_H
