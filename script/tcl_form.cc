// The Tcl form of mode 0: commands for a console with a tapbus.

#include <utility>
#include "io/text.h"

#include "scan/hex_output.h"
#include "script/script_writer.h"
#include "svf/numbers.h"

namespace tapforge::progmode_svf2tapbus {
namespace {

constexpr FormWords kTclWords = {
    .comment = "#-",
    .scan = {"scan_ir_tapbus ", "scan_dr_tapbus "},
    .scanEnd = "\n",
    .state = "run_state_tapbus",
    .remark = "# ",
    .runTest = "runtest_tapbus",
    .runState = " -wait ",
    .endState = " -end_state ",
    .statementEnd = "",
};

constexpr std::int64_t kDefaultTckFreq = 1000000;  // Hz, of -tck_freq

class TclWriter final : public ScriptWriter {
 public:
  TclWriter(const ScriptVars& vars, OutputFile& output, Reporter& report)
      : ScriptWriter(kTclWords, vars, output, report) {}

  void endStateStatement(ScanRegister which, TapState state) override {
    sBufStatement_.clear();
    sBufStatement_ += concat("set_property ENDSTATE_", which == ScanRegister::data ? "DR" : "IR",
                             " {", xToUpper(getTapStateName(state)), "} $current_tapbus");
  }

  // In a comment a Tcl shell minds a backslash before the line end, and a 0x1a; others
  // may mind what is not ASCII.
  void commentText(std::string_view piece) override {
    if (!vars_.exact) return ScriptWriter::commentText(piece);
    std::string text(held_ ? "\\" : "");
    for (const char c : piece) text += c == '\t' || (c >= ' ' && c <= '~') ? c : '?';
    held_ = text.ends_with('\\');
    if (held_) text.pop_back();
    ScriptWriter::commentText(text);
  }
  void commentEnd() override {
    if (std::exchange(held_, false)) output_.put('?');
    ScriptWriter::commentEnd();
  }

  bool waitsInClocks() const override { return true; }
  // The first commands of a long wait stay in its state, where the next one goes on.
  void exactWait(TapState state, TapState endState, std::int64_t clocks) override {
    const std::int64_t most = vars_.lGlobOptMaxRtiTck;
    const auto command = [&](TapState end, std::int64_t count) {
      output_.write(concat("runtest_tapbus -wait ", getTapStateName(state), " -tck ", count,
                           " -end_state ", getTapStateName(end), "\n"));
    };
    for (; clocks > most; clocks -= most) command(state, most);
    command(endState, clocks);
  }

 private:
  void runCount(std::int64_t count, std::string_view /*unit*/) override { splitWait(count); }
  void minTime(float seconds) override {
    const std::int64_t hertz = vars_.lGlobTckFreq > 0 ? vars_.lGlobTckFreq : kDefaultTckFreq;
    splitWait(truncated(static_cast<float>(hertz) * seconds));
  }
  void maxTime(float /*seconds*/) override {
    report_.fatal("RUNTEST MAXIMUM not supported in tapbus mode");
  }

  // A console command waits at most so many clocks: all but the last command of a
  // longer wait go out at once, and what the statement adds joins the last.
  void splitWait(std::int64_t clocks) {
    const std::int64_t most = vars_.lGlobOptMaxRtiTck;
    while (clocks > most) {
      sBufStatement_ += concat(" -tck ", most);
      writeLine();
      sBufStatement_ = kTclWords.runTest;
      clocks -= most;
    }
    sBufStatement_ += " -tck ";
    sBufStatement_.appendDecimal(clocks);
  }

  void writeHeaderTrailer(std::string_view keyword, const CTapPattern& pattern,
                          std::string_view note, LineRest rest) override {
    output_.write(
        concat("set_property ", keyword, "_length {", pattern.lLength(), "} $current_tapbus"));
    if (vars_.exact) return exactProperties(keyword, pattern);
    writeSeparator(rest);
    if (pattern.lLength() > 0) printDataAndMask(keyword, pattern, true);
    output_.write(note);
    output_.put('\n');
    writeSeparator(rest);
  }

  // A property stays until it is set anew, so without expected bits there are some that
  // are compared nowhere.
  void exactProperties(std::string_view keyword, const CTapPattern& pattern) {
    const bool compares = pattern.pTdo() != nullptr && !vars_.iSkipTdoTest;
    if (pattern.lLength() > 0) printDataAndMask(keyword, pattern, compares);
    for (const ScanValue value : {ScanValue::tdo, ScanValue::mask}) {
      if (compares || pattern.lLength() == 0) continue;
      printValue({keyword, value, {nullptr, 0}, nullptr, pattern.lLength()});
    }
    output_.put('\n');
  }

  // Values of scans are arguments, those of headers and trailers properties.
  void printValue(const Value& value) override {
    const std::size_t which = indexOf(value.which);
    if (value.keyword.empty()) {
      static constexpr ShortText kArguments[] = {" -tdi ", " -tdo ", " -mask "};
      static_assert(std::size(kArguments) == Value::kKinds);
      output_.write(kArguments[which].view());
    } else {
      static constexpr ShortText kProperties[] = {"_TDI {", "_TDO {", "_TDO_mask {"};
      static_assert(std::size(kProperties) == Value::kKinds);
      output_.write(concat("\nset_property ", value.keyword, kProperties[which].view()));
    }
    printDigits(value);
    if (!value.keyword.empty()) output_.write("} $current_tapbus");
  }

  void printDigits(const Value& value) {
    constexpr std::int64_t kTclProgress = 10000;  // digits of one value that are left
    const bool isMask = value.which == ScanValue::mask;
    const std::string_view progress = isMask ? "Process mask data char " : "Process data char ";
    value.withBits([&](const auto& bits) {
      for (std::int64_t top = digitsOf(value.length) - 1; top >= 0;) {
        const std::int64_t last = top - top % kTclProgress;
        writeDigits(output_, bits, top, top - last + 1, HexCase::upper);
        if (report_.wantsStatus()) {
          report_.statusMsg(concat(progress, last), StatusStyle::rewind);
        }
        top = last - 1;
      }
    });
  }

  bool held_ = false;  // a backslash of a comment, which may be its last
};

}  // namespace

std::unique_ptr<ScriptWriter> makeTclWriter(const ScriptVars& vars, OutputFile& output,
                                            Reporter& report) {
  return std::make_unique<TclWriter>(vars, output, report);
}

}  // namespace tapforge::progmode_svf2tapbus
