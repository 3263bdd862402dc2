#include "script/script_mode.h"

#include <cstdio>

#include "io/text.h"
#include "shell/options.h"
#include "shell/prog_mode.h"
#include "shell/version.h"

namespace tapforge::progmode_svf2tapbus {
namespace {

using Option = tapforge::Option<ScriptVars>;

bool takeInput(const OptionCall& call, ScriptVars& /*vars*/) {
  const std::string name = fileNameArgument(call, "InputFile");
  call.files.pFC_Input.clear();
  call.files.addInput(name);
  return true;
}

bool takeOutput(const OptionCall& call, ScriptVars& /*vars*/) {
  const std::string name = fileNameArgument(call, "OutFile");
  call.files.makeChannel(call.files.pFC_Output, name);
  call.files.sOutputName = name;
  return true;
}

constexpr Option kOptions[] = {
    {"i", takeInput, ""},
    {"o", takeOutput, ""},
    kLogOption<ScriptVars>,
    kKeyOption<ScriptVars>,
    overwriteOption<ScriptVars>("d", ""),
    {"exact", setFlag<&ScriptVars::exact>, ""},
    {"c", setFlag<&ScriptVars::iSvfSyntaxCheck>,
     "\t-c = do SVF syntax check (no header/trailer integration)\n"},
    {"tapbus", setFlag<&ScriptVars::iGlobOutFormat>,
     "\t-tapbus = output in tapbus command format\n"},
    {"max_rti_tck",
     // At least 1: a wait cannot be split into parts of no clocks.
     setNumber<&ScriptVars::lGlobOptMaxRtiTck, 1>,
     "\t-max_rti_tck N = Convert \"RUNTEST X TCK;\" statement into multiple\n"
     "\t    \"RUNTEST N TCK;\" statements where number of TCKs adds up to X\n"},
    {"s", setFlag<&ScriptVars::iSkipTdoTest>, "\t-s = skip TDO test\n"},
    {"linenum", setNumber<&ScriptVars::lGlobPrintLine>,
     "\t-linenum N = print line number after every N lines (use with -tapbus only)\n"},
    kFrequencyOption<ScriptVars>,
    {"wait", setNumber<&ScriptVars::iInsertWait>,
     "\t-wait N = insert a \"RUNTEST N TCK;\" statement after SIR/SDR\n"},
    overwriteOption<ScriptVars>("w",
                                "\t-w = overwrite output file w/out prompting if file exists\n"),
};

// Reads the command line into `vars` and opens its files. Returns only when it is
// complete; else the help ends the run with status 0, a bad option or file with 1.
void getCmdOptions(std::span<const std::string> arguments, ScriptVars& vars, RunFiles& files) {
  constexpr std::span<const Option> kTable = kOptions;
  ArgCursor args(arguments);
  if (const auto unknown = walkOptions(args, kTable, vars, files)) {
    exitUsage(concat(files.report.style().toolName, ": unknown or incorrectly specified option [",
                     *unknown, "]\n"));
  }
  if (!files.pFC_Input.empty() && files.pFC_Output != nullptr) {
    // Behind an argument that is none it would be ignored without a word.
    for (const std::string& argument : args.rest()) {
      vars.exact = vars.exact || argument == "-exact" || argument == "-EXACT";
    }
    if (vars.exact && vars.iGlobOutFormat) {
      beginExact(args, {"wait"}, files);
      vars.iSvfSyntaxCheck = true;
    } else if (vars.exact) {
      beginExact(args, {"c", "wait", "linenum"}, files);
    }
    return;
  }
  std::puts("Usage: tapforge -tapbus [options] -i <input file> -o <output file>");
  displayProgOptions("--> options for SVF-to-tapbus tcl conversion:", kTable,
                     InternalOptions::hidden);
  throw ProgramEnd{0};
}

void displayVersion(Reporter& report) {
  report.statusMsg(concat(kScriptVersion, " ", kCopyright), StatusStyle::line);
}

}  // namespace

int main_svf2tapbus(std::span<const std::string> arguments) {
  Reporter report(kMessageStyle);
  RunFiles files(report, EmptyAnswer::asksAgain);
  return runProgram(files, [&] {
    ScriptVars vars;
    getCmdOptions(arguments, vars, files);
    files.beginOutputs();
    displayVersion(report);
    report.startClock();
    return processSVF(vars, files.pFC_Input.front(), *files.pFC_Output, report);
  });
}

}  // namespace tapforge::progmode_svf2tapbus
