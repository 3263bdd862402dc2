#ifndef TAPFORGE_TESTS_SUPPORT_IN_MEMORY_H
#define TAPFORGE_TESTS_SUPPORT_IN_MEMORY_H

#include <string>
#include <string_view>

#include "script/script_mode.h"
#include "vector/ksvf_mode.h"

namespace tapforge::testing {

/// What a conversion gave: all in memory, in one process.
struct Converted {
  std::string output;
  std::string listing;   // mode 1 only
  std::string messages;  // as on standard output
  std::string status;    // progress lines, as on a screen that is on
  bool good = false;     // status 0
};

Converted toScript(std::string_view svf, const progmode_svf2tapbus::ScriptVars& vars = {});

/// The record length must be given, as the option check gives it.
Converted toKsvf(std::string_view svf,
                 const progmode_svf2ksvf::KsvfVars& vars = {.lFpgaRecSize = 128});

}  // namespace tapforge::testing

#endif  // TAPFORGE_TESTS_SUPPORT_IN_MEMORY_H
