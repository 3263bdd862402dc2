#include "scan/scan_statement.h"

#include <algorithm>

#include "scan/hex_digits.h"
#include "shell/io/text.h"
#include "svf/char_class.h"

namespace tapforge {
namespace {

constexpr long kProgressStep = 200000;  // digits

/// Fills one field with the digits of a hex value as they are read. Digits
/// arrive most significant first, so the row is filled downwards: its start
/// then names the last digit read, and nothing has to move.
class HexReader {
 public:
  HexReader(CTapField& field, Run& run)
      : field_(field), run_(run), source_(run.lexer.source()), position_(field.numChars() - 1) {}

  void read() {
    for (;;) {
      takeRun();
      const auto c = static_cast<unsigned char>(source_.nextRaw());
      if (source_.atEnd() && source_.syntax().hexEndsWithFile) break;
      if (c == ')') break;
      if (isSpace(c)) continue;
      const int value = hexValue(c);
      if (value < 0) {
        run_.report.fatal(concat("Invalid SVF data [", static_cast<char>(c), "]"));
      }
      takeDigit(static_cast<unsigned>(value));
    }
    if (shownProgress_) run_.report.statusMsg("", StatusStyle::wipe);
    field_.normalise();
  }

 private:
  // All digits up to the next other character, the end of the window or a
  // point where something is to be reported.
  void takeRun() {
    while (position_ >= 0 && !full_) {
      const unsigned char* text = source_.begin();
      auto count = std::min<long>(source_.end() - text, position_ + 1);
      // A position that is a multiple of the step is reported when it is next
      // to be written, so a run stops above it.
      if (position_ > kProgressStep) {
        count = std::min(count, (position_ - 1) % kProgressStep + 1);
      }
      const auto done = static_cast<long>(
          decodeHex(text, static_cast<std::size_t>(count), field_.bytes(), position_));
      if (done == 0) return;
      source_.advanceTo(text + done);
      source_.setLastItem(text[done - 1]);
      source_.markToken(text + done - 1);
      position_ -= done;
      field_.setStart(position_ + 1);
      showProgress();
    }
  }

  // One digit when the row is full: it goes where the most significant digit
  // still held is.
  void takeDigit(unsigned value) {
    if (position_ < 0) {
      position_ = field_.numChars() - 1;
      full_ = true;
    }
    if (full_ && field_.physicalDigit(position_) != 0) {
      run_.report.warning("Ignoring excess MSB chars in field");
    }
    field_.setTapDataChar(position_, value);
    --position_;
    showProgress();
  }

  void showProgress() {
    if (position_ <= 0 || position_ % kProgressStep != 0) return;
    run_.report.statusMsg(concat("*** Reading hex char #", paddedDecimal(position_, 8)),
                          StatusStyle::rewind);
    shownProgress_ = true;
  }

  CTapField& field_;
  Run& run_;
  SourceReader& source_;
  long position_;  // the digit to be written next
  bool full_ = false;
  bool shownProgress_ = false;
};

bool isZero(const CTapField& field) {
  for (long low = 0; low < field.length(); low += 64) {
    const long rest = field.length() - low;
    std::uint64_t bits = field.bitsAt(low);
    if (rest < 64) bits &= (std::uint64_t{1} << rest) - 1;
    if (bits != 0) return false;
  }
  return true;
}

/// The value that the current word of a scan statement names.
ScanValue valueNamed(Lexer& lexer) {
  if (lexer.is("tdi")) return ScanValue::tdi;
  if (lexer.is("tdo")) return ScanValue::tdo;
  if (lexer.is("mask")) return ScanValue::mask;
  if (lexer.is("smask")) return ScanValue::smask;
  lexer.report().fatal(concat("Invalid SDR format [", lexer.token(), "]"));
}

}  // namespace

namespace {

// The common case at one glance: «(» up to sixteen digits «)», all in the
// window and no more than the length asks for. False when it is another one,
// and nothing has been read.
bool readShortValue(long length, CTapField& field, Run& run) {
  SourceReader& source = run.lexer.source();
  const unsigned char* open = source.begin();
  const unsigned char* const end = source.end();
  while (open != end && *open == ' ') ++open;
  if (length > 64 || open == end || *open != '(') return false;
  // Text read 16 characters at a time, wherever the window ends.
  const ShortHex hex = decodeShortHex(open + 1);
  const unsigned char* const close = open + 1 + hex.digits;
  if (close >= end || *close != ')') return false;
  if (hex.digits == 0 || hex.digits > (static_cast<unsigned>(length) + 3) / 4) return false;
  field.initShort(length, hex.value, run.report);
  source.setLastItem(close[-1]);
  source.markToken(close - 1);
  source.advanceTo(close + 1);
  return true;
}

}  // namespace

void readSvfHexData(long length, CTapField& field, Run& run) {
  if (!readShortValue(length, field, run)) {
    run.lexer.strSearch("(");
    field.initTapField(length, run.report);
    HexReader(field, run).read();
  }
  const auto used = static_cast<unsigned long>(length) % 4;
  if (used == 0) return;
  const int top = field.getTapDataChar(field.numChars() - 1);
  if ((top >> used) == 0) return;
  run.report.warning(concat("1's in ", 4 - used, " MSB bits of leading hex char (",
                            paddedHex(static_cast<std::uint32_t>(top), 1, HexCase::upper),
                            ") will be ignored"));
}

ScanData readTapData(bool dataRequired, CTapPattern& pattern, Run& run) {
  Lexer& lexer = run.lexer;
  ScanData data;
  data.lLength = lGetLong(Sign::any, lexer);
  if (data.lLength < 1) {
    if (dataRequired) run.report.fatal("Data length must be > 0");
    lexer.skipUntil(";");
    return data;
  }
  ScanValues& given = data.given;
  while (!lexer.lexIs(";")) {
    const ScanValue kind = valueNamed(lexer);
    if (given.has(kind)) {
      run.report.fatal(concat("Unknown token or ", lexer.token(), " already specified"));
    }
    given.add(kind);
    readSvfHexData(data.lLength, pattern.storage(kind), run);
  }
  if (given.has(ScanValue::tdo) && given.has(ScanValue::mask) &&
      isZero(pattern.storage(ScanValue::mask))) {
    given.remove(ScanValue::tdo);
  }
  return data;
}

}  // namespace tapforge
