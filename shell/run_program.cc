#include "shell/run_program.h"

#include <new>

namespace tapforge {
namespace {

// Runs one step; the exit status when the step ended the run.
std::optional<int> endedBy(Reporter& report, const std::function<void()>& step) {
  try {
    try {
      step();
    } catch (const std::bad_alloc&) {
      report.nullPtrChk(false, "memory");
    }
  } catch (const ProgramEnd& end) {
    if (end.status != 0) report.beginEnd();
    return end.status;
  }
  return std::nullopt;
}

void closeOutputs(Shell& shell) {
  for (OutputFile* output : {shell.pFC_Output.get(), shell.pFC_Ascii.get()}) {
    if (output != nullptr) output->close();
  }
}

}  // namespace

const std::string_view kCopyright = "Copyright (c) 2026 Ondrel. All rights reserved.";

int runProgram(Shell& shell, const std::function<bool()>& conversion) {
  bool good = false;
  const auto ended = endedBy(shell.report, [&] {
    good = conversion();
    // Before the run is reported as finished: a full disk shows only here.
    closeOutputs(shell);
    shell.report.finishClock();
  });
  const auto endedLate = endedBy(shell.report, [&] {
    closeOutputs(shell);
    if (shell.pFC_Log != nullptr) shell.pFC_Log->close();
  });
  if (endedLate) return *endedLate;
  return ended.value_or(good ? 0 : 1);
}

}  // namespace tapforge
