#include "scan/scan_statement.h"

#include <algorithm>
#include <utility>

#include "scan/hex_digits.h"
#include "shell/text.h"
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
      if (source_.atEnd() && run_.report.dialect().hexEndsWithFile) break;
      if (c == ')') break;
      if (isSpace(c)) continue;
      const int value = hexValue(c);
      if (value < 0) {
        run_.report.fatal(cat("Invalid SVF data [", static_cast<char>(c), "]"));
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
    run_.report.statusMsg(cat("*** Reading hex char #", paddedDecimal(position_, 8)),
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

/// The value that a word of a scan statement names; null for any other word.
FieldPtr ScanValues::*valueNamed(const Lexer& lexer) {
  if (lexer.is("tdi")) return &ScanValues::pTdi;
  if (lexer.is("tdo")) return &ScanValues::pTdo;
  if (lexer.is("mask")) return &ScanValues::pMask;
  if (lexer.is("smask")) return &ScanValues::pSmask;
  return nullptr;
}

}  // namespace

void readSvfHexData(long length, CTapField& field, Run& run) {
  run.lexer.strSearch("(");
  field.initTapField(length, run.report);
  HexReader(field, run).read();
  const long used = length % 4;
  if (used == 0) return;
  const int top = field.getTapDataChar(field.numChars() - 1);
  if ((top >> used) == 0) return;
  run.report.warning(cat("1's in ", 4 - used, " MSB bits of leading hex char (",
                         paddedHex(static_cast<std::uint32_t>(top), 1, true), ") will be ignored"));
}

ScanValues readTapData(bool dataRequired, CTapPattern& pattern, Run& run) {
  Lexer& lexer = run.lexer;
  ScanValues values;
  values.lLength = lGetLong(Sign::any, lexer);
  if (values.lLength < 1) {
    if (dataRequired) run.report.fatal("Data length must be > 0");
    lexer.skipUntil(";");
    return values;
  }
  while (!lexer.lexIs(";")) {
    FieldPtr ScanValues::*const kind = valueNamed(lexer);
    if (kind == nullptr) {
      run.report.fatal(cat("Invalid SDR format [", lexer.token(), "]"));
    }
    FieldPtr& value = values.*kind;
    if (value != nullptr) {
      run.report.fatal(cat("Unknown token or ", lexer.token(), " already specified"));
    }
    value = pattern.giveUp(kind);
    if (value == nullptr) value = std::make_unique<CTapField>();
    readSvfHexData(values.lLength, *value, run);
  }
  if (values.pTdo != nullptr && values.pMask != nullptr && isZero(*values.pMask)) {
    values.pTdo.reset();
  }
  return values;
}

}  // namespace tapforge
