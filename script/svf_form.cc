// The SVF form of mode 0.

#include "io/text.h"
#include "script/script_writer.h"

namespace tapforge::progmode_svf2tapbus {
namespace {

constexpr FormWords kSvfWords = {
    .comment = "",
    .scan = {"SIR", "SDR"},
    .scanEnd = " ;",
    .state = "STATE",
    .remark = "",
    .runTest = "RUNTEST",
    .runState = " ",
    .endState = " ENDSTATE ",
    .statementEnd = " ;",
};

class SvfWriter final : public ScriptWriter {
 public:
  SvfWriter(const ScriptVars& vars, OutputFile& output, Reporter& report)
      : ScriptWriter(kSvfWords, vars, output, report) {}

  void endStateStatement(ScanRegister which, TapState state) override {
    sBufStatement_ = which == ScanRegister::data ? ShortText("ENDDR ") : ShortText("ENDIR ");
    sBufStatement_ += xToUpper(getTapStateName(state));
    sBufStatement_ += " ;";
  }

 private:
  void runCount(std::int64_t count, std::string_view unit) override {
    sBufStatement_ += ' ';
    sBufStatement_.appendDecimal(count);
    sBufStatement_ += ' ';
    sBufStatement_ += unit;
  }
  void minTime(float seconds) override {
    sBufStatement_ += concat(" ", shortExponent(seconds), " sec");
  }
  void maxTime(float seconds) override {
    sBufStatement_ += concat(" MAXIMUM ", shortExponent(seconds), " sec");
  }

  // The note ends in "!", which makes the statement's own first line a comment;
  // the lines of its values begin with one.
  void writeHeaderTrailer(std::string_view keyword, const CTapPattern& pattern,
                          std::string_view note, LineRest rest) override {
    output_.write(note);
    output_.write(concat(keyword, " ", pattern.lLength()));
    if (pattern.lLength() > 0) printDataAndMask(keyword, pattern, true);
    output_.write(kSvfWords.statementEnd.view());
    writeSeparator(rest);
  }

  // Values are comment lines, with "(" in the column that it has in merged scans.
  void printValue(const Value& value) override {
    static constexpr ShortText kLabels[] = {"\n!   TDI (", "\n!   TDO (", "\n!  MASK ("};
    static_assert(std::size(kLabels) == Value::kKinds);
    const std::int64_t digits = digitsOf(value.length);
    char* out = output_.reserve(kScanText);
    out = kLabels[indexOf(value.which)].copyTo(out);
    if (value.length <= kChunkBits) {
      out = putDigits(out, value.shortBits(), 0, digits, HexCase::upper);
    } else {
      output_.advance(out);
      value.withBits([&](const auto& bits) {
        writeHexLines(output_, bits, digits, HexCase::upper, "\n!        ", [](std::int64_t) {});
      });
      out = output_.reserve(kScanText);
    }
    *out++ = ')';
    output_.advance(out);
  }
};

}  // namespace

std::unique_ptr<ScriptWriter> makeSvfWriter(const ScriptVars& vars, OutputFile& output,
                                            Reporter& report) {
  return std::make_unique<SvfWriter>(vars, output, report);
}

}  // namespace tapforge::progmode_svf2tapbus
