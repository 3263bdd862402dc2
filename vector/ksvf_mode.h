#ifndef TAPFORGE_VECTOR_KSVF_MODE_H
#define TAPFORGE_VECTOR_KSVF_MODE_H

#include <cstdint>
#include <string>

#include "io/files.h"
#include "io/output_file.h"
#include "io/reporter.h"
#include "svf/syntax_rules.h"

/// Mode 1, as the shell starts it.
namespace tapforge::progmode_svf2ksvf {

/// The options of mode 1, with their defaults.
struct KsvfVars {
  bool iFpgaFormat = false;             // -fpga: long data scans are cut into records
  std::int64_t lFpgaRecSize = -1;       // -rlen: record length in bits; below 0 not given
  std::int64_t lKrepeatVal = 32;        // -r: retries on a TDO mismatch
  bool iInOrder = false;                // -inorder: instruction scans are written at once
  bool iMultipleRunTest = false;        // -multiple_runtest: an empty data scan per KRUNTEST
  std::int64_t iOptPrintSrc = 0;        // -kprintsrc: level 0 to 3 of the source comments
  bool iOptMinKstateUsage = true;       // -minkstate: only KSTATE to reset and idle
  bool iKsvfExt = false;                // -extensions: KENDIR and KENDDR
  bool iOptUseKSDR = false;             // -useKSDR: KSDR where nothing is compared
  bool iV2Compatibility = false;        // -v2: for a player of version 2
  std::int64_t lRunMin = -1;            // -runmin: smallest run count (TCKs)
  bool iSkipTdoTest = false;            // -s: no expected values
  bool giUseKwait = false;              // -kwait: KWAIT instead of KRUNTEST
  bool iOptShowAllOpts = false;         // -kshowallopts: the help lists internal options
  std::int64_t g_lMaxLinesToCopy = -1;  // -kmaxsrclines: last line echoed; below 1 all
  std::string g_csVerStr{};             // -ver: a comment at the top of the file
  std::int64_t lGlobTckFreq = -1;       // -tck_freq: Hz; -1 not given
  bool exact = false;                   // -exact: right, or refused
};

/// What mode 1 says and reads differently from mode 0.
extern const MessageStyle kMessageStyle;
extern const SyntaxRules kSyntaxRules;

/// The statement loop: reads the input, whose handle it takes over, to its end and
/// writes the whole KSVF file, and its listing unless that is null. False when a
/// keyword was unknown; its statement is then missing in the output.
bool processSVF(const KsvfVars& vars, InputFile& input, OutputFile& output, OutputFile* listing,
                Reporter& report);

}  // namespace tapforge::progmode_svf2ksvf

namespace progmode_svf2ksvf = tapforge::progmode_svf2ksvf;

#endif  // TAPFORGE_VECTOR_KSVF_MODE_H
