// The Tcl form of mode 0: commands for a console with a tapbus.

#include "io/text.h"
#include "scan/hex_output.h"
#include "script/script_writer.h"
#include "svf/numbers.h"

namespace tapforge::progmode_svf2tapbus {
namespace {

constexpr FormWords kWords = {
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

class TclWriter final : public ScriptWriter {
 public:
  TclWriter(const ScriptVars& vars, OutputFile& output, Reporter& report)
      : ScriptWriter(kWords, vars, output, report) {}

  void endStateStatement(ScanRegister which, TapState state) override {
    sBufStatement_.clear();
    sBufStatement_ += concat("set_property ENDSTATE_", which == ScanRegister::data ? "DR" : "IR",
                             " {", xToUpper(getTapStateName(state)), "} $current_tapbus");
  }

 private:
  void runCount(std::int64_t count, std::string_view /*unit*/) override { splitWait(count); }
  void minTime(float seconds) override {
    splitWait(truncated(static_cast<float>(vars_.lGlobTckFreq) * seconds));
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
      sBufStatement_ = kWords.runTest;
      clocks -= most;
    }
    sBufStatement_ += " -tck ";
    sBufStatement_.appendDecimal(clocks);
  }

  void writeHeaderTrailer(std::string_view keyword, const CTapPattern& pattern,
                          std::string_view note, LineRest rest) override {
    output_.write(
        concat("set_property ", keyword, "_length {", pattern.lLength(), "} $current_tapbus"));
    writeSeparator(rest);
    if (pattern.lLength() > 0) printDataAndMask(keyword, pattern, true);
    output_.write(note);
    output_.put('\n');
    writeSeparator(rest);
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
};

}  // namespace

std::unique_ptr<ScriptWriter> makeTclWriter(const ScriptVars& vars, OutputFile& output,
                                            Reporter& report) {
  return std::make_unique<TclWriter>(vars, output, report);
}

}  // namespace tapforge::progmode_svf2tapbus
