#ifndef TAPFORGE_VECTOR_BYTE_WRITER_H
#define TAPFORGE_VECTOR_BYTE_WRITER_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "scan/composite.h"
#include "shell/io/output_file.h"
#include "shell/io/reporter.h"
#include "svf/char_reader.h"
#include "svf/tap_state.h"
#include "vector/ksvf_vars.h"

namespace progmode_svf2ksvf {

using tapforge::CompositeScan;
using tapforge::OutputFile;
using tapforge::TapState;

/// The commands of the KSVF format by their codes: one byte each, followed by
/// their operands, numbers with the most significant byte first.
enum class Command : unsigned char {
  KCOMPLETE = 0,
  KTDOMASK = 1,
  KSIR = 2,
  KSDR = 3,
  KRUNTEST = 4,
  KREPEAT = 7,
  KSDRSIZE = 8,
  KSDRTDO = 9,
  KSDRB = 12,
  KSDRC = 13,
  KSDRE = 14,
  KSDRTDOB = 15,
  KSDRTDOC = 16,
  KSDRTDOE = 17,
  KSTATE = 18,
  KENDIR = 19,
  KENDDR = 20,
  KSIR2 = 21,
  KCOMMENT = 22,
  KWAIT = 23
};

std::string_view nameOf(Command command);

/// What a vector command writes: a value of a scan, with the bits outside a
/// mask as 0 when there is one. Read in place.
struct VectorBits {
  CompositeScan value;
  std::optional<CompositeScan> mask;

  std::uint64_t operator()(long low) const {
    const std::uint64_t bits = value.bits(low);
    return mask ? bits & mask->bits(low) : bits;
  }
};

/// Writes the parts that commands are made of, into the binary file and, when
/// there is one, into the listing.
class ByteWriter {
 public:
  /// `listing` may be null. Both files are the caller's.
  ByteWriter(const KsvfVars& vars, OutputFile& output, OutputFile* listing, Reporter& report)
      : vars_(vars), output_(output), pFC_Ascii_(listing), report_(report) {}

  void command(Command code) { output_.put(static_cast<char>(code)); }

  /// A command with one number of `digits` / 2 bytes.
  void commandWith(Command code, long number, int digits) {
    command(code);
    operand(code, number, digits);
  }
  /// A number of the command; one that does not fit is warned about.
  void operand(Command code, long number, int digits);

  /// Writes the low 32 bits of `value` as `digits` / 2 bytes. A wider value
  /// keeps its leading hex digits, not its low ones.
  void binWrite(long value, int digits);

  /// A vector: bits `low` to `low` + `count` - 1 of `bits` in ceil(count / 8)
  /// bytes. The listing shows whole bytes, "0x" in front.
  void bytePrint(const VectorBits& bits, long low, long count);
  void bytePrintZeros(long count);

  void list(std::string_view text) {
    if (pFC_Ascii_ != nullptr) pFC_Ascii_->write(text);
  }
  /// "COMMAND 0x", the value with at least `width` upper-case hex digits, `end`.
  void listNumber(Command code, long value, int width, std::string_view end) {
    if (pFC_Ascii_ != nullptr) listAnyNumber(code, value, width, end);
  }

  /// Writes the source's echo as a KCOMMENT, if there is any; `reset` clears it.
  void writeSvfSrc(CharReader& source, bool reset);
  void writeComment(std::string_view text);

  void ksvfHeader();
  void ksvfTrailer();

 private:
  void listAnyNumber(Command code, long value, int width, std::string_view end);

  const KsvfVars& vars_;
  OutputFile& output_;
  OutputFile* pFC_Ascii_;
  Reporter& report_;
};

}  // namespace progmode_svf2ksvf

#endif  // TAPFORGE_VECTOR_BYTE_WRITER_H
