#include "scan/scan_statement.h"

#include <algorithm>
#include <new>
#include <span>

#include "io/text.h"
#include "scan/hex_digits.h"
#include "svf/char_class.h"
#include "svf/numbers.h"

namespace tapforge {
namespace {

constexpr std::int64_t kReadProgress = 200000;  // digits of one value that are left

// What decodeHex and decodeShortHex read after the text, and decodeHex after the digits.
static_assert(FileChannel::kPadding >= 16 && CTapField::kPadding >= 8);

/// Fills one field with the digits of a hex value as they are read. Digits arrive
/// most significant first, so they are stored downwards from the top; only when
/// there are too few or too many do they have to be turned afterwards.
class HexReader {
 public:
  HexReader(CTapField& field, FileChannel& channel)
      : field_(field), channel_(channel), position_(field.lNumChars() - 1) {}

  void read() {
    for (;;) {
      takeDigits();
      const auto c = static_cast<unsigned char>(channel_.getFChanChar());
      if (channel_.atEnd() && channel_.rules().hexEndsWithFile) break;
      if (c == ')') break;
      if (isSpace(c)) continue;
      const int digit = hexValue(c);
      if (digit < 0) {
        channel_.report().fatal(concat("Invalid SVF data [", static_cast<char>(c), "]"));
      }
      takeDigit(static_cast<unsigned>(digit));
    }
    if (channel_.rules().exact && !any_) channel_.report().fatal("-exact: a value without digits");
    if (shownProgress_) channel_.report().statusMsg("", StatusStyle::wipe);
    field_.rotate(position_ + 1);
  }

 private:
  // All digits up to the next other character, the end of the block or a point
  // where something is to be reported.
  void takeDigits() {
    while (position_ >= 0 && !full_) {
      const std::span<const unsigned char> text = channel_.ahead();
      auto count = std::min<std::int64_t>(std::ssize(text), position_ + 1);
      // Progress is shown when position_ becomes a multiple of kReadProgress, so
      // digits are decoded at most up to the next multiple.
      if (position_ > kReadProgress) count = std::min(count, (position_ - 1) % kReadProgress + 1);
      const auto done = static_cast<std::int64_t>(
          decodeHex(text.data(), static_cast<std::size_t>(count), field_.pData(), position_));
      if (done == 0) return;
      channel_.advancePast(text.data() + done - 1, text.data() + done);
      any_ = true;
      position_ -= done;
      showProgress();
    }
  }

  // One digit when all are stored: it goes where the most significant one that is
  // still held is.
  void takeDigit(unsigned digit) {
    if (position_ < 0) {
      position_ = field_.lNumChars() - 1;
      full_ = true;
    }
    if (full_ && field_.getTapDataChar(position_) != 0) {
      channel_.report().warning("Ignoring excess MSB chars in field");
    }
    field_.setTapDataChar(position_, digit);
    any_ = true;
    --position_;
    showProgress();
  }

  void showProgress() {
    if (position_ <= 0 || position_ % kReadProgress != 0) return;
    channel_.report().statusMsg(concat("*** Reading hex char #", paddedDecimal(position_, 8)),
                                StatusStyle::rewind);
    shownProgress_ = true;
  }

  CTapField& field_;
  FileChannel& channel_;
  std::int64_t position_;  // the digit to be written next
  bool full_ = false;
  bool any_ = false;
  bool shownProgress_ = false;
};

bool isZero(const CTapField& field) {
  for (std::int64_t low = 0; low < field.lLength(); low += kChunkBits) {
    std::uint64_t bits = field.bitsAt(low);
    const std::int64_t rest = field.lLength() - low;
    if (rest < kChunkBits) bits &= lowBits(rest);
    if (bits != 0) return false;
  }
  return true;
}

/// The value that the current word of a scan statement names.
inline ScanValue valueNamed(FileChannel& channel) {
  for (const ScanValueRow& row : kScanValues) {
    if (channel.is(row.word)) return row.value;
  }
  channel.report().fatal(concat("Invalid SDR format [", channel.tokenLower(), "]"));
}

// The values of a length of 0, which say nothing, up to ";".
void skipValues(FileChannel& channel) {
  while (!channel.lexIs(";")) {
    static_cast<void>(valueNamed(channel));
    channel.strSearch("(");
    channel.skipUntil(")");
  }
}

void warnOfBitsAboveLength(std::int64_t length, const CTapField& field, Reporter& report) {
  const unsigned topDigit = field.getTapDataChar(field.lNumChars() - 1);
  const std::int64_t used = length % 4;
  if (used == 0 || topDigit >> used == 0) return;
  report.warning(concat("1's in ", 4 - used, " MSB bits of leading hex char (",
                        "0123456789ABCDEF"[topDigit], ") will be ignored"));
}

/// The common case: «(», one to sixteen digits, «)», all in the block and no more
/// than the length asks for. False when it is another one, and nothing has been
/// read. Without it short statements take 15 % more instructions.
bool readShortValue(std::int64_t length, CTapField& field, FileChannel& channel) {
  // The bytes after the block's text are 0, so no test needs its end.
  const unsigned char* open = channel.ahead().data();
  while (*open == ' ') ++open;
  if (*open != '(' || length > kChunkBits) return false;
  const ShortHex hex = decodeShortHex(open + 1);
  const unsigned char* const close = open + 1 + hex.digits;
  if (*close != ')' || hex.digits == 0 || hex.digits > digitsOf(length)) return false;
  field.initShort(length, hex.value);
  channel.advancePast(close - 1, close + 1);
  if (length % 4 != 0) warnOfBitsAboveLength(length, field, channel.report());
  return true;
}

/// Reads one parenthesised hex value into `field`, `length` bits long. White
/// space may be anywhere in it. Missing digits are 0 and the most significant
/// ones; surplus digits push out the most significant ones, with a warning for
/// each that is not 0.
void readSvfHexData(std::int64_t length, CTapField& field, FileChannel& channel) {
  if (readShortValue(length, field, channel)) return;
  channel.strSearch("(");
  initTapField(field, length, channel.report());
  HexReader(field, channel).read();
  warnOfBitsAboveLength(length, field, channel.report());
}

}  // namespace

bool readTapData(Keyword keyword, CTapObj& tap, FileChannel& channel) {
  CTapPattern& pattern = tap.patternOf(keyword);
  if (!shiftsData(keyword)) tap.scanOf(registerOf(keyword)).frameChanged();
  const std::int64_t length = lGetLong(Sign::any, channel);
  ScanValues given;
  if (length < 1) {
    if (shiftsData(keyword)) channel.report().fatal("Data length must be > 0");
    if (channel.rules().exact) {
      skipValues(channel);
    } else {
      channel.skipUntil(";");
    }
    return pattern.setPattern(length, given);
  }
  while (!channel.lexIs(";")) {
    const ScanValue value = valueNamed(channel);
    if (given.has(value)) {
      channel.report().fatal(
          concat("Unknown token or ", channel.tokenLower(), " already specified"));
    }
    given.add(value);
    readSvfHexData(length, pattern.storage(value), channel);
  }
  if (given.has(ScanValue::tdo) && given.has(ScanValue::mask) &&
      isZero(pattern.storage(ScanValue::mask))) {
    given.remove(ScanValue::tdo);
  }
  return pattern.setPattern(length, given);
}

void endByRuleViolation(Reporter& report) {
  report.warning("TDI data required", Where::nowhere);
  report.fatal("SVF rule violation");
}

void initTapField(CTapField& field, std::int64_t length, Reporter& report) {
  try {
    field.initTapField(length);
  } catch (const std::bad_alloc&) {
    report.fatal("Null Ptr [pData NULL]", Where::nowhere);
  }
}

}  // namespace tapforge
