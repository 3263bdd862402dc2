#include "shell/run_program.h"

#include <new>
#include <optional>

namespace tapforge {
namespace {

// Runs one step; the exit status if the step ended the run.
std::optional<int> statusOf(Reporter& report, const std::function<void()>& step) {
  try {
    step();
    return std::nullopt;
  } catch (const ProgramEnd& end) {
    return end.status;
  } catch (const WriteFailed& failed) {
    // The report can fail too, on the log. A file fails only once, so this ends.
    return statusOf(report, [&] { report.chkFileErr(failed.name); });
  }
}

bool convert(Reporter& report, const std::function<bool()>& conversion) {
  try {
    return conversion();
  } catch (const std::bad_alloc&) {
    report.fatal("Null Ptr [memory]", Where::nowhere);
  }
}

// Closes one file; false, with a message, if it did not take everything.
bool closeFile(OutputFile& file, Reporter& report) {
  const auto printLoss = [&report](const WriteFailed& failed) {
    report.errHandler(Level::error, Reporter::fileErrorText(failed.name), Where::nowhere);
  };
  try {
    file.close();
    return true;
  } catch (const WriteFailed& failed) {
    try {
      printLoss(failed);
    } catch (const WriteFailed& log) {
      printLoss(log);
    }
    return false;
  }
}

// Closes the files; false, with a message for each, if any lost something.
bool freeMem(RunFiles& files) {
  bool whole = true;
  for (OutputFile* file : files.outputs()) whole = closeFile(*file, files.report) && whole;
  return whole;
}

}  // namespace

int runProgram(RunFiles& files, const std::function<bool()>& conversion) {
  bool good = false;
  const std::optional<int> ended = statusOf(files.report, [&] {
    good = convert(files.report, conversion);
    // Before the run is reported as finished: a full disk shows only here.
    for (OutputFile* file : files.outputs()) {
      if (file != files.pFC_Log.get()) file->close();
    }
    files.report.finishClock();
  });
  const int status = ended.value_or(good ? 0 : 1);
  if (freeMem(files)) return status;
  // An error that came before has had its times.
  if (ended.value_or(0) == 0) files.report.finishClock();
  return 1;
}

}  // namespace tapforge
