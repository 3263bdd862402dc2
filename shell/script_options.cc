#include "shell/script_options.h"

#include <cstdio>

#include "shell/options.h"

namespace progmode_svf2tapbus {
namespace {

using tapforge::concat;
using tapforge::fileNameArgument;
using tapforge::OptionCall;
using tapforge::overwriteOption;
using tapforge::RunFiles;
using tapforge::setFlag;
using tapforge::setNumber;
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
    tapforge::kLogOption<ScriptVars>,
    tapforge::kKeyOption<ScriptVars>,
    overwriteOption<ScriptVars>("d", ""),
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
    tapforge::kFrequencyOption<ScriptVars>,
    {"wait", setNumber<&ScriptVars::iInsertWait>,
     "\t-wait N = insert a \"RUNTEST N TCK;\" statement after SIR/SDR\n"},
    overwriteOption<ScriptVars>("w",
                                "\t-w = overwrite output file w/out prompting if file exists\n"),
};

}  // namespace

void getCmdOptions(std::span<const std::string> arguments, ScriptVars& vars, RunFiles& files) {
  constexpr std::span<const Option> kTable = kOptions;
  tapforge::ArgCursor args(arguments);
  if (const auto unknown = tapforge::walkOptions(args, kTable, vars, files)) {
    tapforge::exitUsage(concat(files.report.style().toolName,
                               ": unknown or incorrectly specified option [", *unknown, "]\n"));
  }
  if (!files.pFC_Input.empty() && files.pFC_Output != nullptr) return;
  std::puts("Usage: tapforge -tapbus [options] -i <input file> -o <output file>");
  tapforge::displayProgOptions("--> options for SVF-to-tapbus tcl conversion:", kTable,
                               tapforge::InternalOptions::hidden);
  throw tapforge::ProgramEnd{0};
}

}  // namespace progmode_svf2tapbus
