#ifndef TAPFORGE_VECTOR_COMMAND_WRITER_H
#define TAPFORGE_VECTOR_COMMAND_WRITER_H

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "io/output_file.h"
#include "io/reporter.h"
#include "scan/hex_output.h"
#include "vector/ksvf_commands.h"

namespace tapforge::progmode_svf2ksvf {

/// Writes KSVF commands: one call writes a command to the binary file and, as a
/// line of text, to the listing if there is one.
class CommandWriter {
 public:
  /// `listing` may be null. Both files are the caller's.
  CommandWriter(OutputFile& output, OutputFile* listing, Reporter& report)
      : output_(output), pFC_Ascii_(listing), report_(report) {}

  /// Writes a command: its numbers, and vectors of `count` bits each, those from
  /// bit `low` up of `vectors`, which are called as CompositeScan is. A number
  /// that its operand cannot hold is warned about and cut by leadingDigits().
  template <typename... Vectors>
  void write(Command command, std::initializer_list<std::int64_t> numbers = {},
             [[maybe_unused]] std::int64_t low = 0, [[maybe_unused]] std::int64_t count = 0,
             const Vectors&... vectors) {
    const CommandRow& row = rowOf(command);
    assert(sizeof...(vectors) == row.vectors && numbers.size() == row.numbers());
    char* out = output_.reserve(kHead);
    *out++ = static_cast<char>(command);
    const std::uint8_t* bytes = row.numberBytes.data();
    for (const std::int64_t number : numbers) out = binWrite(out, number, *bytes++, row);
    ((out = bytePrint(out, vectors, low, count)), ...);
    output_.advance(out);
    if (pFC_Ascii_ != nullptr) list(row, numbers, low, count, vectors...);
  }

  /// A data scan of no bits: its KSDRSIZE and KSDR. The listing shows them in a
  /// form of their own.
  void writeEmptyScan();

  /// A KCOMMENT with the text up to its first zero byte; nothing for an empty
  /// text.
  void writeComment(std::string_view text);

 private:
  // Most characters of a command without its long vectors, in the file and in the
  // listing.
  static constexpr std::size_t kHead = 128;
  // Bytes of a vector that are written into one reserved stretch.
  static constexpr std::int64_t kAtOnce = 1024;
  static_assert(OutputFile::kReserve >= kAtOnce + kHead);

  /// Writes a number as `bytes` (1, 2 or 4) bytes to `out`, where eight must be
  /// writable, and returns their end.
  char* binWrite(char* out, std::int64_t number, std::int64_t bytes, const CommandRow& row) {
    auto value = static_cast<std::uint64_t>(number);
    if (value >> (8 * bytes) != 0) value = leadingDigits(number, bytes, row);
    storeBig(out, value << (kChunkBits - 8 * bytes));
    return out + bytes;
  }
  std::uint64_t leadingDigits(std::int64_t number, std::int64_t bytes, const CommandRow& row);

  /// Writes a vector to `out`, in ceil(count / 8) bytes, the most significant one
  /// first, and returns where to go on. A long one goes through reserved stretches
  /// of its own.
  template <typename Bits>
  char* bytePrint(char* out, const Bits& bits, std::int64_t low, std::int64_t count) {
    // The first chunk may hold fewer than eight bytes.
    std::int64_t left = bytesOf(count);
    const std::int64_t first = left - ((left - 1) & ~std::int64_t{7});
    left -= first;
    const std::uint64_t top = bits(low + 8 * left) & lowBits(count - 8 * left);
    storeBig(out, top << (kChunkBits - 8 * first));
    out += first;
    while (left > 0) {
      output_.advance(out);
      out = output_.reserve(kAtOnce + kHead);
      for (char* const stop = out + std::min(left, kAtOnce); out != stop; out += 8) {
        left -= 8;
        storeBig(out, bits(low + 8 * left));
      }
    }
    return out;
  }

  /// The line of a command in the listing.
  template <typename... Vectors>
  void list(const CommandRow& row, std::initializer_list<std::int64_t> numbers,
            [[maybe_unused]] std::int64_t low, [[maybe_unused]] std::int64_t count,
            const Vectors&... vectors) {
    char* out = listHead(row, numbers);
    ((out = listVector(out, vectors, low, count)), ...);
    *out++ = '\n';
    pFC_Ascii_->advance(out);
  }
  char* listHead(const CommandRow& row, std::initializer_list<std::int64_t> numbers);

  /// " 0x" and the digits of a vector, with a 0 in front when their count is odd,
  /// so that whole bytes are shown.
  template <typename Bits>
  char* listVector(char* out, const Bits& bits, std::int64_t low, std::int64_t count) {
    const std::int64_t digits = digitsOf(count);
    out = std::copy_n(" 0x0", 4, out) - (digits % 2 == 0 ? 1 : 0);
    const auto record = [&bits, low](std::int64_t at) { return bits(low + at); };
    if (digits <= 16) return putDigits(out, record, 0, digits, HexCase::lower);
    pFC_Ascii_->advance(out);
    writeDigits(*pFC_Ascii_, record, digits - 1, digits, HexCase::lower);
    return pFC_Ascii_->reserve(kHead);
  }

  OutputFile& output_;
  OutputFile* pFC_Ascii_;
  Reporter& report_;
};

}  // namespace tapforge::progmode_svf2ksvf

#endif  // TAPFORGE_VECTOR_COMMAND_WRITER_H
