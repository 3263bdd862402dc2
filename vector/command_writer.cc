#include "vector/command_writer.h"

#include <bit>

#include "io/text.h"
#include "scan/composite.h"

namespace tapforge::progmode_svf2ksvf {
namespace {

int digitsOfNumber(std::uint32_t value) {
  return (static_cast<int>(std::bit_width(value)) + 3) / 4;
}

}  // namespace

// Warns of a number that does not fit into its bytes, and returns what is written
// for it: of its low 32 bits as many leading hex digits as the bytes have.
std::uint64_t CommandWriter::leadingDigits(std::int64_t number, std::int64_t bytes,
                                           const CommandRow& row) {
  report_.warning(concat(row.name, " operand ", number, " does not fit"), Where::nowhere);
  const auto value = static_cast<std::uint32_t>(number);
  const std::int64_t surplus = digitsOfNumber(value) - 2 * bytes;
  return surplus > 0 ? value >> (4 * surplus) : value;
}

// The name and the numbers, each with at least the digits of its bytes.
char* CommandWriter::listHead(const CommandRow& row, std::initializer_list<std::int64_t> numbers) {
  char* out = pFC_Ascii_->reserve(kHead);
  out = std::copy(row.name.begin(), row.name.end(), out);
  const std::uint8_t* bytes = row.numberBytes.data();
  for (const std::int64_t number : numbers) {
    const auto value = static_cast<std::uint32_t>(number);
    const int digits = std::max(2 * *bytes++, digitsOfNumber(value));
    out = std::copy_n(" 0x", 3, out);
    out = putDigits(out, ShortScan{value}, 0, digits, row.listedIn);
  }
  return out;
}

void CommandWriter::writeEmptyScan() {
  const CommandRow& size = rowOf(Command::KSDRSIZE);
  char* out = output_.reserve(kHead);
  *out++ = static_cast<char>(Command::KSDRSIZE);
  out = binWrite(out, 0, size.numberBytes[0], size);
  *out++ = static_cast<char>(Command::KSDR);
  output_.advance(out);
  if (pFC_Ascii_ != nullptr) pFC_Ascii_->write("KSDRSIZE 00000000\nKSDR\n");
}

void CommandWriter::writeComment(std::string_view text) {
  if (text.empty()) return;
  text = text.substr(0, text.find('\0'));
  output_.put(static_cast<char>(Command::KCOMMENT));
  // A character of 128 or more counts as negative and keeps only 1s.
  for (const char c : text) output_.put(static_cast<unsigned char>(c) < 128 ? c : '\xff');
  output_.put('\0');
  if (pFC_Ascii_ == nullptr) return;
  pFC_Ascii_->write(rowOf(Command::KCOMMENT).name);
  pFC_Ascii_->write(" ");
  pFC_Ascii_->write(text);
  pFC_Ascii_->write("\n");
}

}  // namespace tapforge::progmode_svf2ksvf
