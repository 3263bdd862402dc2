#include "vector/ksvf_mode.h"

#include <cstdio>
#include <optional>
#include <utility>

#include "io/text.h"
#include "shell/options.h"
#include "shell/prog_mode.h"
#include "shell/version.h"

namespace tapforge::progmode_svf2ksvf {
namespace {

using Option = tapforge::Option<KsvfVars>;

constexpr std::int64_t kDefaultRecord = 128;  // bits

// The files of one "-i" are a list.
bool takeInputs(const OptionCall& call, KsvfVars& /*vars*/) {
  RunFiles& files = call.files;
  files.pFC_Input.clear();
  while (const std::optional<std::string> name = call.args.fileName()) files.addInput(*name);
  if (files.pFC_Input.empty()) {
    files.report.fatal("missing [InputFile] filename", Where::nowhere);
  }
  return true;
}

bool takeOutputName(const OptionCall& call, KsvfVars& /*vars*/) {
  RunFiles& files = call.files;
  files.sOutputName.reset();
  const std::string name = fileNameArgument(call, "OutFile");
  files.refuseInputAsOutput(name);
  if (files.iOverWritePrompt && fileExists(name)) {
    files.report.setScreen(true);
    files.report.statusMsg(
        "The specified output file exists. Please delete the existing file and then retry the "
        "operation or specify the '-w' command-line option to overwrite the file.",
        StatusStyle::ownLine);
    throw ProgramEnd{1};
  }
  files.sOutputName = name;
  return true;
}

bool takeListing(const OptionCall& call, KsvfVars& /*vars*/) {
  const std::string name = fileNameArgument(call, "KsvfAscii");
  call.files.makeChannel(call.files.pFC_Ascii, name);
  return true;
}

bool takeRecordLength(const OptionCall& call, KsvfVars& vars) {
  const std::int64_t bits = decimalArgument(call, "specify record length");
  if (bits < 64 || bits % 4 != 0) exitUsage("Record length must be >= 64 or a multiple of 4");
  vars.lFpgaRecSize = bits;
  return true;
}

bool takePrintSource(const OptionCall& call, KsvfVars& vars) {
  const std::int64_t level = decimalArgument(call, "missing print/display control value");
  if (level < 0 || level > 3) exitUsage("Print/Display control value must be in range [0..3]");
  vars.iOptPrintSrc = level;
  return true;
}

bool takeVersionText(const OptionCall& call, KsvfVars& vars) {
  std::optional<std::string> text = call.args.getCmdToken();
  if (!text) {
    exitUsage(concat(call.files.report.style().toolName, ": specify KSVF version string"));
  }
  vars.g_csVerStr = *std::move(text);
  return true;
}

constexpr Option kOptions[] = {
    {"i", takeInputs, ""},
    {"o", takeOutputName, ""},
    kLogOption<KsvfVars>,
    kKeyOption<KsvfVars>,
    // The mode switch, which has done its work.
    {"ksvf", takeNothing, ""},
    {"exact", setFlag<&KsvfVars::exact>, ""},
    {"inorder", setFlag<&KsvfVars::iInOrder>, ""},
    {"runmin",
     [](const OptionCall& call, KsvfVars& vars) {
       vars.lRunMin = decimalArgument(call, "specify min RUNTEST wait time");
       return true;
     },
     ""},
    {"kshowallopts", setFlag<&KsvfVars::iOptShowAllOpts>, ""},
    {"a", takeListing, "\t-a <filename> = generate ASCII KSVF\n"},
    overwriteOption<KsvfVars>("d", "\t-d = delete output file before processing\n"),
    {"extensions", setFlag<&KsvfVars::iKsvfExt>,
     "\t-extensions = support ENDIR/ENDDR (turns off -minkstate)\n"},
    {"fpga", setFlag<&KsvfVars::iFpgaFormat>,
     "\t-fpga = input file being processed is an FPGA SVF file\n"},
    {"minkstate", setFlag<&KsvfVars::iOptMinKstateUsage>,
     "\t-minkstate = use minimum KSTATE set compatible w/ KSVF player v4.x\n"},
    {"multiple_runtest", setFlag<&KsvfVars::iMultipleRunTest>,
     "\t-multiple_runtest = input file has consecutive RUNTEST commands\n"},
    // Repeats are suppressed all the same.
    {"nc", takeNothing, "\t-nc = no compression during translation\n"},
    {"r",
     [](const OptionCall& call, KsvfVars& vars) {
       vars.lKrepeatVal = decimalArgument(call, "specify programming retry count");
       return true;
     },
     "\t-r <num> = set KREPEAT value; default = 32 (0 for FPGAs/SPROMs)\n"},
    {"rlen", takeRecordLength,
     "\t-rlen <rec len> = specify record length (usually for SPROMs)\n"
     "\t   default = 128 bits (32 hex chars) per record; applies only to FPGAs\n"},
    {"s", setFlag<&KsvfVars::iSkipTdoTest>, "\t-s = skip TDO tests\n"},
    kFrequencyOption<KsvfVars>,
    {"useksdr", setFlag<&KsvfVars::iOptUseKSDR>, "\t-useKSDR = use KSDR command if SDR MASK = 0\n"},
    {"v2", setFlag<&KsvfVars::iV2Compatibility>,
     "\t-v2 = generate code compatible with KSVF player v2.x\n"},
    overwriteOption<KsvfVars>("w", "\t-w = overwrite output file (same as -d option)\n"),
    {"kprintsrc", takePrintSource,
     "\t-kprintsrc N (where N = 0 to 3) = print source to output file\n"
     "\t\t0: do not print any source info (default)\n"
     "\t\t1: print SVF source line number\n"
     "\t\t2: print first 70 chars of SVF source line\n"
     "\t\t3: do 1 and 2\n"},
    {"kwait",
     [](const OptionCall&, KsvfVars& vars) {
       vars.giUseKwait = true;
       vars.iInOrder = true;
       return true;
     },
     "\t-kwait = use KWAIT command instead of KRUNTEST\n"},
    {"ver", takeVersionText,
     "\n\t*** Internal options:\n"
     "\t-ver \"str\" = version string to add to top of KSVF file\n",
     true},
    {"kmaxsrclines",
     [](const OptionCall& call, KsvfVars& vars) {
       vars.g_lMaxLinesToCopy = decimalArgument(call, "specify max src lines to copy to KSVF");
       return true;
     },
     // The rule line follows on the same line.
     "\t-kmaxsrclines L = max no. of SVF source lines to copy to\n"
     "\t     SVF file (use with -kprintsrc N)",
     true},
};
constexpr std::span<const Option> kTable = kOptions;

[[noreturn]] void showUsage(const KsvfVars& vars, RunFiles& files) {
  files.report.setScreen(true);
  files.report.statusMsg("Usage: tapforge -ksvf [options] -i <input file> -o <output file>",
                         StatusStyle::line);
  displayProgOptions("--> options for SVF-to-KSVF conversion:", kTable,
                     vars.iOptShowAllOpts ? InternalOptions::shown : InternalOptions::hidden);
  throw ProgramEnd{0};
}

void displayVersion(Reporter& report) {
  report.statusMsg(concat(kKsvfVersion, " ", kCopyright, "\nOndrel SVF-to-KSVF Writer"),
                   StatusStyle::line);
}

// What -exact means for the others.
void chooseExact(const ArgCursor& args, KsvfVars& vars, RunFiles& files) {
  beginExact(args, {"v2", "minkstate", "inorder", "multiple_runtest", "runmin"}, files);
  vars.giUseKwait = vars.iInOrder = vars.iKsvfExt = true;
  if (!args.seen("r")) vars.lKrepeatVal = 0;
  if (vars.lKrepeatVal < 0 || vars.lKrepeatVal > 255) {
    exitUsage(concat(files.report.style().toolName, ": -exact: -r must be in range [0..255]\n"));
  }
}

// Settles what options mean together, or ends the run.
void checkOptCombo(KsvfVars& vars, RunFiles& files) {
  if (!vars.iFpgaFormat && vars.lFpgaRecSize > 0) {
    files.report.setScreen(true);
    displayVersion(files.report);
    std::fputs("Use \"-fpga\" option when specifying FPGA/PROM rec length", stdout);
    throw ProgramEnd{1};
  }
  if (vars.lFpgaRecSize < 0) vars.lFpgaRecSize = kDefaultRecord;
  if (vars.iFpgaFormat) vars.lKrepeatVal = 0;
  if (vars.iKsvfExt) vars.iOptMinKstateUsage = false;
}

// Reads the command line into `vars` and opens its files but for the output, of
// which it sets the name. Returns only when it is complete and its options go
// together; else the help ends the run with status 0, a bad option or file with 1.
void getCmdOptions(std::span<const std::string> arguments, KsvfVars& vars, RunFiles& files) {
  ArgCursor args(arguments);
  if (const auto unknown = walkOptions(args, kTable, vars, files)) {
    exitUsage(concat(files.report.style().toolName, ": unknown option [", *unknown, "]\n"));
  }
  if (files.pFC_Input.empty() || !files.sOutputName || !args.atEnd()) showUsage(vars, files);
  if (vars.exact) chooseExact(args, vars, files);
  checkOptCombo(vars, files);
}

}  // namespace

int main_svf2ksvf(std::span<const std::string> arguments) {
  Reporter report(kMessageStyle);
  RunFiles files(report, EmptyAnswer::takesNextLine);
  return runProgram(files, [&] {
    KsvfVars vars;
    getCmdOptions(arguments, vars, files);
    displayVersion(report);
    report.startClock();
    // The options have made sure that it may be overwritten.
    files.iOverWritePrompt = false;
    files.makeChannel(files.pFC_Output, *files.sOutputName);
    files.beginOutputs();
    for (std::size_t i = 1; i < files.pFC_Input.size(); ++i) {
      report.warning(concat("Input file [", files.pFC_Input[i].name, "] is not converted"),
                     Where::nowhere);
    }
    return processSVF(vars, files.pFC_Input.front(), *files.pFC_Output, files.pFC_Ascii.get(),
                      report);
  });
}

}  // namespace tapforge::progmode_svf2ksvf
