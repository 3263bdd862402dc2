#ifndef TAPFORGE_SHELL_RUN_H
#define TAPFORGE_SHELL_RUN_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "io/files.h"
#include "io/output_file.h"
#include "io/reporter.h"

namespace tapforge {

/// The files of a run, as the options name them. They are opened when they are
/// named and stay open, so that pipes work. An output keeps what it holds until
/// all files are named, because it can turn out to be an input, and an input is
/// never overwritten.
class RunFiles {
 public:
  /// `emptyAnswer` is the mode's rule for the question before overwriting.
  RunFiles(Reporter& reporter, EmptyAnswer emptyAnswer)
      : report(reporter), emptyAnswer_(emptyAnswer) {}

  Reporter& report;

  /// Whether an existing file is asked about before it is overwritten.
  bool iOverWritePrompt = true;

  /// Of several inputs the first is converted; the others are closed.
  std::vector<InputFile> pFC_Input;
  std::unique_ptr<OutputFile> pFC_Output;
  std::unique_ptr<OutputFile> pFC_Ascii;  // the listing of mode 1
  std::unique_ptr<OutputFile> pFC_Log;
  /// The name of the output; mode 1 opens it only after all options.
  std::optional<std::string> sOutputName;

  /// Standard input is an input of the run, which is not to be taken for an answer.
  bool stdinIsInput = false;

  /// -exact: an output or listing that is not finished is removed.
  bool removesUnfinished = false;

  /// Opens an input. Fatal "Input filename same as output" if it has the name
  /// of the output or is the file of any output, which is then let go; and
  /// "cannot open".
  void addInput(const std::string& name);

  /// Opens an output as `output`, in place of an earlier one, after asking if
  /// need be; a refusal ends the run with status 1. Fatal as
  /// refuseInputAsOutput(), "[name] is already written by this run" if it is
  /// another output or the file that standard output or error goes to, and
  /// "cannot open".
  void makeChannel(std::unique_ptr<OutputFile>& output, const std::string& name);

  /// Fatal "Output filename same as input" if this is the name of the first
  /// input or the file of any.
  void refuseInputAsOutput(const std::string& name);

  /// Empties the outputs. To be called when all files are open; closing one does
  /// the same.
  void beginOutputs();

  /// Removes the output and the listing, which are closed, if they are regular files that
  /// were begun, and says so. Behind a link the file is emptied.
  void discardUnfinished();

  /// All outputs, also those that were replaced, in the order in which they are
  /// to be closed: the log last. Not owned by the caller.
  std::vector<OutputFile*> outputs() const;

 private:
  EmptyAnswer emptyAnswer_;
  bool begun_ = false;
  // Outputs whose option was repeated, unless they are empty.
  std::vector<std::unique_ptr<OutputFile>> replaced_;
};

/// Runs a mode to its exit status. `conversion` reads the options and converts;
/// it returns whether all went well, or ends early by ProgramEnd, WriteFailed
/// or std::bad_alloc. Afterwards every file has been flushed and closed, and
/// whatever could not be written has been reported and made the status 1.
int runProgram(RunFiles& files, const std::function<bool()>& conversion);

}  // namespace tapforge

#endif  // TAPFORGE_SHELL_RUN_H
