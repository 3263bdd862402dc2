#ifndef TAPFORGE_SCAN_TAP_PATTERN_H
#define TAPFORGE_SCAN_TAP_PATTERN_H

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>

#include "scan/tap_field.h"
#include "svf/word.h"

namespace tapforge {

/// The values of a scan: bits shifted in, bits expected out, which of these are
/// compared, which of those shifted in matter.
enum class ScanValue : std::uint8_t { tdi, tdo, mask, smask, count };

constexpr std::size_t indexOf(ScanValue value) { return static_cast<std::size_t>(value); }

struct ScanValueRow {
  ScanValue value;
  Word word;           // in a statement
  std::uint64_t fill;  // 64 bits of it where a header or trailer does not give it
};
inline constexpr std::array kScanValues = std::to_array<ScanValueRow>({
    {ScanValue::tdi, "tdi", ~std::uint64_t{0}},
    {ScanValue::tdo, "tdo", 0},
    {ScanValue::mask, "mask", 0},
    {ScanValue::smask, "smask", ~std::uint64_t{0}},
});
static_assert(kScanValues.size() == indexOf(ScanValue::count) &&
              rowsByNumber(kScanValues, &ScanValueRow::value));

/// A set of the values.
class ScanValues {
 public:
  bool has(ScanValue value) const { return (bits_ & bitOf(value)) != 0; }
  void add(ScanValue value) { bits_ |= bitOf(value); }
  void add(ScanValues values) { bits_ |= values.bits_; }
  void remove(ScanValue value) { bits_ &= ~bitOf(value); }
  bool operator==(const ScanValues&) const = default;

 private:
  static unsigned bitOf(ScanValue value) { return 1U << static_cast<unsigned>(value); }
  unsigned bits_ = 0;
};

/// The values in force for one kind of scan (SIR, SDR, HIR, HDR, TIR or TDR),
/// with SVF's rules for what carries over from statement to statement.
class CTapPattern {
 public:
  /// Puts in force what a statement gives: its length in bits, and values whose
  /// bits are in storage() already. While the length stays the same TDI, MASK
  /// and SMASK stay until given again and TDO must be given each time; a new
  /// length drops all of them and must come with a TDI. Length 0 clears.
  /// False when TDI is missing. The pattern must not be used afterwards: its
  /// storage already holds the new values.
  [[nodiscard]] bool setPattern(std::int64_t length, ScanValues given);

  std::int64_t lLength() const { return lLength_; }  // bits

  /// A value, or null when it is not in force.
  const CTapField* operator[](ScanValue value) const {
    assert(indexOf(value) < fields_.size());
    return inForce_.has(value) ? &fields_[indexOf(value)] : nullptr;
  }
  const CTapField* pTdi() const { return (*this)[ScanValue::tdi]; }
  const CTapField* pTdo() const { return (*this)[ScanValue::tdo]; }
  const CTapField* pMask() const { return (*this)[ScanValue::mask]; }
  const CTapField* pSmask() const { return (*this)[ScanValue::smask]; }

  /// Where the statement being read puts a value that it gives anew. There is
  /// one storage for the old and the new one, so both never exist together;
  /// setPattern() must follow.
  CTapField& storage(ScanValue value) {
    assert(indexOf(value) < fields_.size());
    held_.add(value);
    return fields_[indexOf(value)];
  }

 private:
  void freeUnused();

  std::int64_t lLength_ = 0;
  ScanValues inForce_;
  ScanValues held_;  // values whose storage may be larger than CTapField::kSmall
  std::array<CTapField, kScanValues.size()> fields_;
};

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_TAP_PATTERN_H
