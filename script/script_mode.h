#ifndef TAPFORGE_SCRIPT_SCRIPT_MODE_H
#define TAPFORGE_SCRIPT_SCRIPT_MODE_H

#include <cstdint>

#include "io/files.h"
#include "io/output_file.h"
#include "io/reporter.h"
#include "svf/syntax_rules.h"

/// Mode 0, as the shell starts it.
namespace tapforge::progmode_svf2tapbus {

/// The options of mode 0, with their defaults.
struct ScriptVars {
  bool iSvfSyntaxCheck = false;            // -c: scans unmerged
  bool iGlobOutFormat = false;             // -tapbus: a Tcl script instead of SVF
  bool iSkipTdoTest = false;               // -s: no expected values
  std::int64_t iInsertWait = 0;            // -wait: TCKs after each scan; below 1 none
  std::int64_t lGlobOptMaxRtiTck = 40000;  // -max_rti_tck: most TCKs of one Tcl wait
  std::int64_t lGlobTckFreq = -1;          // -tck_freq: Hz, to turn times into TCKs; -1 not given
  std::int64_t lGlobPrintLine = 0;         // -linenum: marker every so many lines
  bool exact = false;                      // -exact: right, or refused
};

/// What mode 0 says and reads differently from mode 1.
extern const MessageStyle kMessageStyle;
extern const SyntaxRules kSyntaxRules;

/// The statement loop: reads the input, whose handle it takes over, to its end and
/// writes each statement as soon as it has been read. False when a keyword was
/// unknown; its statement is then missing in the output.
bool processSVF(const ScriptVars& vars, InputFile& input, OutputFile& output, Reporter& report);

}  // namespace tapforge::progmode_svf2tapbus

namespace progmode_svf2tapbus = tapforge::progmode_svf2tapbus;

#endif  // TAPFORGE_SCRIPT_SCRIPT_MODE_H
