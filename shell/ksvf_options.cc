#include "shell/ksvf_options.h"

#include <cstdio>
#include <utility>

#include "shell/run_program.h"

namespace progmode_svf2ksvf {
namespace {

using tapforge::ArgCursor;
using tapforge::concat;
using tapforge::Shell;
using tapforge::StatusStyle;
using Option = tapforge::Option<KsvfVars>;

// The files of one "-i" are a list; only the first is converted.
bool takeInputs(ArgCursor& args, KsvfVars& /*vars*/, Shell& shell) {
  shell.inputs.clear();
  std::optional<std::string> name = args.fileName();
  if (!name) shell.report.fatal("missing [InputFile] filename", tapforge::Where::nowhere);
  for (; name; name = args.fileName()) {
    tapforge::refuseOutputAsInput(*name, shell);
    tapforge::FilePtr file = tapforge::fileCheck(*name, tapforge::OpenMode::read, shell.report);
    // Of the further ones only the name is kept: being readable is all they need.
    if (!shell.inputs.empty()) file.reset();
    shell.inputs.push_back({*name, std::move(file)});
  }
  return true;
}

bool takeOutput(ArgCursor& args, KsvfVars& /*vars*/, Shell& shell) {
  shell.outputName.reset();
  const std::string name = tapforge::fileNameArgument(args, "OutFile", shell.report);
  tapforge::refuseInputAsOutput(name, shell);
  if (shell.iOverWritePrompt && tapforge::fileExists(name)) {
    shell.report.setScreen(true);
    shell.report.statusMsg(
        "The specified output file exists. Please delete the existing file and then retry the "
        "operation or specify the '-w' command-line option to overwrite the file.",
        StatusStyle::ownLine);
    throw tapforge::ProgramEnd{1};
  }
  shell.outputName = name;
  return true;
}

bool takeListing(ArgCursor& args, KsvfVars& /*vars*/, Shell& shell) {
  const std::string name = tapforge::fileNameArgument(args, "KsvfAscii", shell.report);
  shell.pFC_Ascii.reset();
  shell.pFC_Ascii = tapforge::createFile(name, shell);
  return true;
}

bool takeRecordLength(ArgCursor& args, KsvfVars& vars, Shell& shell) {
  const long bits = tapforge::decimalArgument(args, "specify record length", shell.report);
  if (bits < 64 || bits % 4 != 0) {
    tapforge::refuseText("Record length must be >= 64 or a multiple of 4");
  }
  vars.lFpgaRecSize = bits;
  return true;
}

bool takePrintSource(ArgCursor& args, KsvfVars& vars, Shell& shell) {
  const long level =
      tapforge::decimalArgument(args, "missing print/display control value", shell.report);
  if (level < 0 || level > 3) {
    tapforge::refuseText("Print/Display control value must be in range [0..3]");
  }
  vars.iOptPrintSrc = level;
  return true;
}

// Options without a value, and options whose value is a plain number.
template <bool KsvfVars::*variable>
constexpr bool set(ArgCursor& /*args*/, KsvfVars& vars, Shell& /*shell*/) {
  return vars.*variable = true;
}

// The help stands in the order of the table.
constexpr Option kOptions[] = {
    {"i", takeInputs, ""},
    {"o", takeOutput, ""},
    tapforge::kLogOption<KsvfVars>,
    tapforge::kKeyOption<KsvfVars>,
    {"ksvf", [](ArgCursor&, KsvfVars&, Shell&) { return true; }, ""},
    {"inorder", set<&KsvfVars::iInOrder>, ""},
    {"runmin",
     [](ArgCursor& args, KsvfVars& vars, Shell& shell) {
       vars.lRunMin =
           tapforge::decimalArgument(args, "specify min RUNTEST wait time", shell.report);
       return true;
     },
     ""},
    {"kshowallopts", set<&KsvfVars::iOptShowAllOpts>, ""},
    {"a", takeListing, "\t-a <filename> = generate ASCII KSVF\n"},
    tapforge::overwriteOption<KsvfVars>("d", "\t-d = delete output file before processing\n"),
    {"extensions", set<&KsvfVars::iKsvfExt>,
     "\t-extensions = support ENDIR/ENDDR (turns off -minkstate)\n"},
    {"fpga", set<&KsvfVars::iFpgaFormat>,
     "\t-fpga = input file being processed is an FPGA SVF file\n"},
    {"minkstate", set<&KsvfVars::iOptMinKstateUsage>,
     "\t-minkstate = use minimum KSTATE set compatible w/ KSVF player v4.x\n"},
    {"multiple_runtest", set<&KsvfVars::iMultipleRunTest>,
     "\t-multiple_runtest = input file has consecutive RUNTEST commands\n"},
    {"nc", set<&KsvfVars::iSvfCompress>, "\t-nc = no compression during translation\n"},
    {"r",
     [](ArgCursor& args, KsvfVars& vars, Shell& shell) {
       vars.lKrepeatVal =
           tapforge::decimalArgument(args, "specify programming retry count", shell.report);
       return true;
     },
     "\t-r <num> = set KREPEAT value; default = 32 (0 for FPGAs/SPROMs)\n"},
    {"rlen", takeRecordLength,
     "\t-rlen <rec len> = specify record length (usually for SPROMs)\n"
     "\t   default = 128 bits (32 hex chars) per record; applies only to FPGAs\n"},
    {"s", set<&KsvfVars::iSkipTdoTest>, "\t-s = skip TDO tests\n"},
    {"tck_freq",
     [](ArgCursor& args, KsvfVars& vars, Shell& shell) {
       return tapforge::takeNumber(args, "tck_freq", vars.lGlobTckFreq, shell);
     },
     "\t-tck_freq N = specify cable frequency in TCK (e.g., N = 1000000 for 1 MHz)\n"},
    {"useksdr", set<&KsvfVars::iOptUseKSDR>, "\t-useKSDR = use KSDR command if SDR MASK = 0\n"},
    {"v2", set<&KsvfVars::iV2Compatibility>,
     "\t-v2 = generate code compatible with KSVF player v2.x\n"},
    tapforge::overwriteOption<KsvfVars>("w", "\t-w = overwrite output file (same as -d option)\n"),
    {"kprintsrc", takePrintSource,
     "\t-kprintsrc N (where N = 0 to 3) = print source to output file\n"
     "\t\t0: do not print any source info (default)\n"
     "\t\t1: print SVF source line number\n"
     "\t\t2: print first 70 chars of SVF source line\n"
     "\t\t3: do 1 and 2\n"},
    {"kwait",
     [](ArgCursor&, KsvfVars& vars, Shell&) { return vars.giUseKwait = vars.iInOrder = true; },
     "\t-kwait = use KWAIT command instead of KRUNTEST\n"},
    {"ver",
     [](ArgCursor& args, KsvfVars& vars, Shell& shell) {
       std::optional<std::string> text = args.value();
       if (!text) tapforge::refuse(shell.report, "specify KSVF version string");
       vars.g_csVerStr = *std::move(text);
       return true;
     },
     "\n\t*** Internal options:\n"
     "\t-ver \"str\" = version string to add to top of KSVF file\n",
     true},
    {"kmaxsrclines",
     [](ArgCursor& args, KsvfVars& vars, Shell& shell) {
       vars.g_lMaxLinesToCopy =
           tapforge::decimalArgument(args, "specify max src lines to copy to KSVF", shell.report);
       return true;
     },
     // The rule line follows on the same line.
     "\t-kmaxsrclines L = max no. of SVF source lines to copy to\n"
     "\t     SVF file (use with -kprintsrc N)",
     true},
};

[[noreturn]] void showUsage(const KsvfVars& vars, Shell& shell) {
  shell.report.setScreen(true);
  shell.report.statusMsg("Usage: tapforge -ksvf [options] -i <input file> -o <output file>",
                         StatusStyle::line);
  tapforge::displayProgOptions("--> options for SVF-to-KSVF conversion:",
                               std::span<const Option>(kOptions), vars.iOptShowAllOpts);
  throw tapforge::ProgramEnd{0};
}

void checkOptCombo(KsvfVars& vars, Shell& shell) {
  constexpr long kDefaultRecord = 128;  // bits
  if (!vars.iFpgaFormat && vars.lFpgaRecSize > 0) {
    shell.report.setScreen(true);
    displayVersion(shell.report);
    std::fputs("Use \"-fpga\" option when specifying FPGA/PROM rec length", stdout);
    throw tapforge::ProgramEnd{1};
  }
  if (vars.lFpgaRecSize < 0) vars.lFpgaRecSize = kDefaultRecord;
  if (vars.iFpgaFormat) vars.lKrepeatVal = 0;
  if (vars.iKsvfExt) vars.iOptMinKstateUsage = false;
}

}  // namespace

void displayVersion(tapforge::Reporter& report) {
  report.statusMsg(
      concat("svf2ksvf Version 5.05 ", tapforge::kCopyright, "\nOndrel SVF-to-KSVF Writer"),
      StatusStyle::line);
}

void getCmdOptions(std::span<char*> arguments, KsvfVars& vars, Shell& shell) {
  ArgCursor args(arguments);
  std::string unknown;
  if (!tapforge::walkOptions(args, std::span<const Option>(kOptions), vars, shell, unknown)) {
    tapforge::refuse(shell.report, concat("unknown option [", unknown, "]\n"));
  }
  if (shell.inputs.empty() || !shell.outputName || !args.atEnd()) showUsage(vars, shell);
  checkOptCombo(vars, shell);
}

}  // namespace progmode_svf2ksvf
