#include "shell/script_options.h"

#include <cstdio>

namespace progmode_svf2tapbus {
namespace {

using tapforge::ArgCursor;
using tapforge::concat;
using tapforge::numberValue;
using tapforge::Shell;
using Option = tapforge::Option<ScriptVars>;

bool takeInput(ArgCursor& args, ScriptVars& /*vars*/, Shell& shell) {
  const std::string name = tapforge::fileNameArgument(args, "InputFile", shell.report);
  shell.inputs.clear();
  tapforge::refuseOutputAsInput(name, shell);
  shell.inputs.push_back({name, tapforge::fileCheck(name, tapforge::OpenMode::read, shell.report)});
  return true;
}

bool takeOutput(ArgCursor& args, ScriptVars& /*vars*/, Shell& shell) {
  const std::string name = tapforge::fileNameArgument(args, "OutFile", shell.report);
  shell.pFC_Output.reset();
  shell.pFC_Output = tapforge::createFile(name, shell);
  shell.outputName = name;
  return true;
}

bool takeMaxRtiTck(ArgCursor& args, ScriptVars& vars, Shell& shell) {
  const auto clocks = numberValue(args, "max_rti_tck", shell.report);
  if (!clocks) return false;
  if (*clocks < 1) {
    // A wait could never be split into parts of less than one clock.
    tapforge::warnInvalidNumber(args.last(), "max_rti_tck", shell.report);
    return false;
  }
  vars.lGlobOptMaxRtiTck = *clocks;
  return true;
}

// The help stands in the order of the table.
constexpr Option kOptions[] = {
    {"i", takeInput, ""},
    {"o", takeOutput, ""},
    tapforge::kLogOption<ScriptVars>,
    tapforge::kKeyOption<ScriptVars>,
    tapforge::overwriteOption<ScriptVars>("d", ""),
    {"c", [](ArgCursor&, ScriptVars& vars, Shell&) { return vars.iSvfSyntaxCheck = true; },
     "\t-c = do SVF syntax check (no header/trailer integration)\n"},
    {"tapbus", [](ArgCursor&, ScriptVars& vars, Shell&) { return vars.iGlobOutFormat = true; },
     "\t-tapbus = output in tapbus command format\n"},
    {"max_rti_tck", takeMaxRtiTck,
     "\t-max_rti_tck N = Convert \"RUNTEST X TCK;\" statement into multiple\n"
     "\t    \"RUNTEST N TCK;\" statements where number of TCKs adds up to X\n"},
    {"s", [](ArgCursor&, ScriptVars& vars, Shell&) { return vars.iSkipTdoTest = true; },
     "\t-s = skip TDO test\n"},
    {"linenum",
     [](ArgCursor& args, ScriptVars& vars, Shell& shell) {
       return takeNumber(args, "linenum", vars.lGlobPrintLine, shell);
     },
     "\t-linenum N = print line number after every N lines (use with -tapbus only)\n"},
    {"tck_freq",
     [](ArgCursor& args, ScriptVars& vars, Shell& shell) {
       return takeNumber(args, "tck_freq", vars.lGlobTckFreq, shell);
     },
     "\t-tck_freq N = specify cable frequency in TCK (e.g., N = 1000000 for 1 MHz)\n"},
    {"wait",
     [](ArgCursor& args, ScriptVars& vars, Shell& shell) {
       return takeNumber(args, "wait", vars.iInsertWait, shell);
     },
     "\t-wait N = insert a \"RUNTEST N TCK;\" statement after SIR/SDR\n"},
    tapforge::overwriteOption<ScriptVars>(
        "w", "\t-w = overwrite output file w/out prompting if file exists\n"),
};

}  // namespace

void getCmdOptions(std::span<char*> arguments, ScriptVars& vars, Shell& shell) {
  ArgCursor args(arguments);
  const std::span<const Option> table = kOptions;
  std::string unknown;
  if (!tapforge::walkOptions(args, table, vars, shell, unknown)) {
    tapforge::refuse(shell.report,
                     concat("unknown or incorrectly specified option [", unknown, "]\n"));
  }
  if (!shell.inputs.empty() && shell.pFC_Output != nullptr) return;
  std::puts("Usage: tapforge -tapbus [options] -i <input file> -o <output file>");
  tapforge::displayProgOptions("--> options for SVF-to-tapbus tcl conversion:", table, false);
  throw tapforge::ProgramEnd{0};
}

}  // namespace progmode_svf2tapbus
