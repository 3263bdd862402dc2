#include "vector/byte_writer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "scan/hex_output.h"
#include "shell/io/text.h"

namespace progmode_svf2ksvf {
namespace {

constexpr std::array<std::string_view, 24> kNames = {
    "KCOMPLETE", "KTDOMASK", "KSIR",   "KSDR",   "KRUNTEST", "",      "",         "KREPEAT",
    "KSDRSIZE",  "KSDRTDO",  "",       "",       "KSDRB",    "KSDRC", "KSDRE",    "KSDRTDOB",
    "KSDRTDOC",  "KSDRTDOE", "KSTATE", "KENDIR", "KENDDR",   "KSIR2", "KCOMMENT", "KWAIT"};

// The listing shows whole bytes, so an odd digit gets a 0 in front.
bool hasOddDigits(long bits) { return (bits - 1) % 8 < 4; }

// Without a sign, because a length can be the largest long.
long digitsOf(long bits) { return static_cast<long>((static_cast<unsigned long>(bits) + 3) / 4); }
long bytesOf(long bits) { return static_cast<long>((static_cast<unsigned long>(bits) + 7) / 8); }

}  // namespace

std::string_view nameOf(Command command) { return kNames[static_cast<std::size_t>(command)]; }

void ByteWriter::operand(Command code, long number, int digits) {
  if (number < 0 || number >> (4 * digits) != 0) {
    report_.warning(tapforge::concat(nameOf(code), " operand ", number, " does not fit"),
                    tapforge::Where::nowhere);
  }
  binWrite(number, digits);
}

void ByteWriter::binWrite(long value, int digits) {
  auto number = static_cast<std::uint32_t>(value);
  const int width = (static_cast<int>(std::bit_width(number)) + 3) / 4;
  if (width > digits) number >>= 4 * (width - digits);
  // Moved up, so that the bytes wanted come first.
  number <<= 4 * (8 - digits);
  if constexpr (std::endian::native == std::endian::little) number = __builtin_bswap32(number);
  char* const out = output_.reserve(sizeof number);
  std::memcpy(out, &number, sizeof number);
  output_.advance(out + digits / 2);
}

void ByteWriter::bytePrint(const VectorBits& bits, long low, long count) {
  if (pFC_Ascii_ != nullptr) {
    list(hasOddDigits(count) ? "0x0" : "0x");
    const auto record = [&bits, low](long at) { return bits(low + at); };
    tapforge::writeDigits(*pFC_Ascii_, record, digitsOf(count) - 1, digitsOf(count),
                          tapforge::HexCase::lower);
  }
  // Eight bytes at a time; the first word of a vector may hold fewer.
  long left = bytesOf(count);
  while (left > 0) {
    const long bytes = ((left - 1) & 7) + 1;
    left -= bytes;
    std::uint64_t word = bits(low + 8 * left);
    if (count - 8 * left < 64) word &= (std::uint64_t{1} << (count - 8 * left)) - 1;
    word <<= 64 - 8 * bytes;
    if constexpr (std::endian::native == std::endian::little) word = __builtin_bswap64(word);
    char* out = output_.reserve(sizeof word);
    std::memcpy(out, &word, sizeof word);
    output_.advance(out + bytes);
  }
}

void ByteWriter::bytePrintZeros(long count) {
  const auto fill = [](OutputFile& file, long length, char c) {
    constexpr long kAtOnce = 1024;
    for (; length > 0; length -= kAtOnce) {
      char* out = file.reserve(kAtOnce);
      file.advance(std::fill_n(out, std::min(length, kAtOnce), c));
    }
  };
  if (pFC_Ascii_ != nullptr) {
    list(hasOddDigits(count) ? "0x0" : "0x");
    fill(*pFC_Ascii_, digitsOf(count), '0');
  }
  fill(output_, bytesOf(count), '\0');
}

void ByteWriter::listAnyNumber(Command code, long value, int width, std::string_view end) {
  pFC_Ascii_->write(nameOf(code));
  pFC_Ascii_->write(" 0x");
  const auto number = static_cast<std::uint32_t>(value);
  const int digits = std::max(width, (static_cast<int>(std::bit_width(number)) + 3) / 4);
  const auto bits = [number](long) { return std::uint64_t{number}; };
  tapforge::writeDigits(*pFC_Ascii_, bits, digits - 1, digits, tapforge::HexCase::upper);
  pFC_Ascii_->write(end);
}

void ByteWriter::writeSvfSrc(CharReader& source, bool reset) {
  if (vars_.iOptPrintSrc < 2) return;
  writeComment(source.srcEcho());
  if (reset) source.resetSrcLineBuf();
}

void ByteWriter::writeComment(std::string_view text) {
  if (text.empty()) return;
  text = text.substr(0, text.find('\0'));
  list("KCOMMENT ");
  command(Command::KCOMMENT);
  // A character of 128 or more counts as negative and keeps only 1s.
  for (const char c : text) output_.put(static_cast<unsigned char>(c) < 128 ? c : '\xff');
  list(text);
  list("\n");
  output_.put('\0');
}

void ByteWriter::ksvfHeader() {
  listNumber(Command::KREPEAT, vars_.lKrepeatVal, 2, "\n");
  commandWith(Command::KREPEAT, vars_.lKrepeatVal, 2);
}

void ByteWriter::ksvfTrailer() {
  list("KCOMPLETE\n");
  command(Command::KCOMPLETE);
}

}  // namespace progmode_svf2ksvf
