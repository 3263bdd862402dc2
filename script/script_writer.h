#ifndef TAPFORGE_SCRIPT_SCRIPT_WRITER_H
#define TAPFORGE_SCRIPT_SCRIPT_WRITER_H

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include "io/output_file.h"
#include "io/reporter.h"
#include "scan/hex_output.h"
#include "scan/tap_obj.h"
#include "script/script_mode.h"
#include "script/statement_text.h"
#include "svf/clock_and_reset.h"
#include "svf/file_channel.h"
#include "svf/runtest.h"

namespace tapforge::progmode_svf2tapbus {

using LineRest = FileChannel::LineRest;

/// Hex digits on one line of an SVF value.
inline constexpr std::int64_t kDigitsPerLine = 64;

/// Writes the digits of a value in lines. `eachLine(first)` is called before each
/// line with the number of digits before it.
template <typename Bits, typename EachLine>
void writeHexLines(OutputFile& output, const Bits& bits, std::int64_t digits, HexCase hexCase,
                   std::string_view lineBreak, const EachLine& eachLine) {
  for (std::int64_t first = 0; first < digits; first += kDigitsPerLine) {
    eachLine(first);
    if (first != 0) output.write(lineBreak);
    writeDigits(output, bits, digits - first - 1, std::min(kDigitsPerLine, digits - first),
                hexCase);
  }
}

/// The words of an output form, for places that are the same in all forms.
struct FormWords {
  ShortText comment;  // before a comment of the source
  ShortText scan[2];  // of an instruction scan and of a data scan
  ShortText scanEnd;
  ShortText state;     // before a state path
  ShortText remark;    // before a statement that the form cannot express
  ShortText runTest;   // before the parts of a RUNTEST
  ShortText runState;  // before its states
  ShortText endState;
  ShortText statementEnd;
};

/// Writes the statements of mode 0. What the forms of output do alike is here; each
/// form is a class derived from it (svf_form.cc, tcl_form.cc) that gives its words
/// and writes what differs.
///
/// Text goes out in one of three ways:
/// - gathered: the text of a statement that is no scan grows in sBufStatement_ while
///   the statement is read, so that a comment inside the statement is written before
///   it; writeStatement() writes it, writeLine() a line of a statement that has
///   several;
/// - reserved: a scan has been read whole, and each stretch of it whose length is
///   bounded is put by ShortText::copyTo(), putDecimal() and putDigits() into space
///   that OutputFile::reserve() gives and advance() takes;
/// - written: all else, which is rare or long, by OutputFile::write().
/// `rest` is what follows the statement on its source line: statements on one line
/// of the source come to one line of the output, with the same blanks between them.
class ScriptWriter : public CommentSink {
 public:
  ScriptWriter(const FormWords& words, const ScriptVars& vars, OutputFile& output, Reporter& report)
      : words_(words), vars_(vars), output_(output), report_(report) {}
  ScriptWriter(const ScriptWriter&) = delete;
  ScriptWriter& operator=(const ScriptWriter&) = delete;

  // Comments go to the output where they are met. The line end that commentEnd()
  // writes also ends the line of a statement in front of the comment.
  void commentText(std::string_view piece) override;
  void commentEnd() override;

  /// A Tcl command that prints the number of a source line.
  void lineMarker(std::int64_t line);

  /// Writes a scan, header or trailer statement with the values now in force: SIR
  /// and SDR as the scan of the whole chain, or unmerged with -c; headers and
  /// trailers as comments or properties, since merged scans hold their bits.
  void doDataShift(Keyword keyword, CTapObj& tap, LineRest rest);

  // The other statements; each ends with writeStatement().
  virtual void endStateStatement(ScanRegister which, TapState state) = 0;
  void beginState() { sBufStatement_ = words_.state; }
  void pathState(std::string_view asWritten);
  void endState() { sBufStatement_ += words_.statementEnd; }
  void frequency(const Frequency& frequency);
  void trst(std::string_view modeAsWritten);
  void beginRunTest() { sBufStatement_ = words_.runTest; }
  void runTestPart(const RunTestPart& part);
  void endRunTest() { sBufStatement_ += words_.statementEnd; }

  // Only under -exact.
  /// A part of a RUNTEST with its number as written.
  void exactPart(const RunTestPart& part, std::string_view number);
  /// Whether a RUNTEST is written by exactWait() and not by its parts.
  virtual bool waitsInClocks() const { return false; }
  /// A RUNTEST that waits so many TCKs in a state and then goes to another one.
  virtual void exactWait(TapState /*state*/, TapState /*endState*/, std::int64_t /*clocks*/) {}
  /// PIO or PIOMAP with what stands in its parentheses.
  void parallelIo(std::string_view keyword, std::string_view asWritten);

  void writeStatement(LineRest rest);

 protected:
  /// The parts of a RUNTEST that the forms write differently: a count (TCKs) with
  /// its unit as written, and times in seconds.
  virtual void runCount(std::int64_t count, std::string_view unit) = 0;
  virtual void minTime(float seconds) = 0;
  virtual void maxTime(float seconds) = 0;

  /// A header or trailer statement; `note` is the remark that its bits are in
  /// the scans, or empty.
  virtual void writeHeaderTrailer(std::string_view keyword, const CTapPattern& pattern,
                                  std::string_view note, LineRest rest) = 0;

  /// One value (TDI, TDO or MASK) of an unmerged statement: its bits without what
  /// a mask leaves out.
  struct Value {
    std::string_view keyword;  // of a header or trailer statement, else empty
    ScanValue which;
    BitSource data;
    const CTapField* mask;  // null: all bits
    std::int64_t length;    // bits

    static constexpr std::size_t kKinds = indexOf(ScanValue::mask) + 1;

    /// All bits of a value of at most 64 bits.
    ShortScan shortBits() const {
      const std::uint64_t bits = data.shortBits(length);
      return {mask != nullptr ? bits & mask->shortBits() : bits};
    }

    /// Calls `use` with the bits, in a form that writeDigits() takes.
    template <typename Use>
    void withBits(const Use& use) const {
      if (length <= kChunkBits) {
        use(shortBits());
        return;
      }
      const CompositeScan bits(data, length);
      const CompositeScan kept(mask != nullptr ? BitSource{mask} : data, length);
      use([&bits, &kept](std::int64_t low) { return bits(low) & kept(low); });
    }
  };
  virtual void printValue(const Value& value) = 0;

  /// The values of an unmerged statement: TDI under SMASK, TDO under MASK, MASK. Under
  /// -exact a TDO always has a MASK.
  void printDataAndMask(std::string_view keyword, const CTapPattern& pattern, bool withTdo);

  /// Writes what has been gathered, and a line end.
  void writeLine();
  void writeSeparator(LineRest rest) {
    if (rest.lineEnds || vars_.exact) {
      output_.put('\n');
    } else {
      writeBlanks(rest.blanks);
    }
  }

  // Most characters of a scan without its long values.
  static constexpr std::size_t kScanText = 256;
  static_assert(kScanText <= OutputFile::kReserve);

  const FormWords& words_;
  const ScriptVars& vars_;
  OutputFile& output_;
  Reporter& report_;
  StatementText sBufStatement_;

 private:
  void writeScan(Keyword keyword, RegisterScan& scan, LineRest rest);
  bool exactSmask(Keyword keyword, const RegisterScan& scan, std::int64_t length);
  void writeBlanks(std::size_t count);
  char* combineHeaderDataTrailer(char* out, Keyword keyword, const RegisterScan& scan,
                                 std::int64_t length);
  char* consolidateData(char* out, const RegisterScan& scan, ScanValue value, std::int64_t length);

  bool inComment_ = false;
  // Under -exact, by register: the length of the merged scan whose SMASK is in force for
  // a reader of the output; 0 for none.
  std::array<std::int64_t, 2> smaskLength_{};
};

std::unique_ptr<ScriptWriter> makeSvfWriter(const ScriptVars& vars, OutputFile& output,
                                            Reporter& report);
std::unique_ptr<ScriptWriter> makeTclWriter(const ScriptVars& vars, OutputFile& output,
                                            Reporter& report);

}  // namespace tapforge::progmode_svf2tapbus

#endif  // TAPFORGE_SCRIPT_SCRIPT_WRITER_H
