#ifndef TAPFORGE_SCRIPT_SCRIPT_VARS_H
#define TAPFORGE_SCRIPT_SCRIPT_VARS_H

#include <cstdint>

namespace progmode_svf2tapbus {

/// The options of mode 0, with their defaults.
struct ScriptVars {
  bool iSvfSyntaxCheck = false;            // -c: scans unmerged
  bool iGlobOutFormat = false;             // -tapbus: a Tcl script instead of SVF
  bool iSkipTdoTest = false;               // -s: no expected values
  std::int64_t iInsertWait = 0;            // -wait: TCKs after each scan; below 1 none
  std::int64_t lGlobOptMaxRtiTck = 40000;  // -max_rti_tck: most TCKs of one Tcl wait
  std::int64_t lGlobTckFreq = 1000000;     // -tck_freq: Hz, to turn times into TCKs
  std::int64_t lGlobPrintLine = 0;         // -linenum: marker every so many lines
};

}  // namespace progmode_svf2tapbus

#endif  // TAPFORGE_SCRIPT_SCRIPT_VARS_H
