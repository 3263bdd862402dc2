#ifndef TAPFORGE_SCRIPT_SCRIPT_WRITER_H
#define TAPFORGE_SCRIPT_SCRIPT_WRITER_H

#include <string_view>

#include "script/script_vars.h"
#include "script/statement_text.h"
#include "shell/io/output_file.h"
#include "svf/line_reader.h"
#include "svf/runtest.h"
#include "svf/state_statements.h"

namespace progmode_svf2tapbus {

using tapforge::OutputFile;
using tapforge::ScanRegister;
using tapforge::TapState;

/// Copies the comments of the source into the output, where they are met.
class CommentCopier final : public CommentSink {
 public:
  CommentCopier(const ScriptVars& vars, OutputFile& output) : vars_(vars), output_(output) {}
  void beginComment(std::string_view text) override;
  void appendComment(std::string_view text) override { output_.write(text); }
  void endComment() override { output_.put('\n'); }

 private:
  const ScriptVars& vars_;
  OutputFile& output_;
};

/// Writes the statements that are not scans, as SVF or as Tcl commands.
///
/// The text of a statement is gathered while the statement is read and written
/// at its end, so that a comment inside the statement comes out in front of it.
class ScriptWriter final : public tapforge::RunTestSink {
 public:
  ScriptWriter(const ScriptVars& vars, OutputFile& output, const LineReader& source,
               Reporter& report)
      : vars_(vars), output_(output), source_(source), report_(report) {}

  void lineMarker(long line);
  void endStateStatement(ScanRegister which, TapState state);
  void beginState();
  void pathState(std::string_view asWritten);
  void endOfState();
  void frequency(float hertz);
  void beginTrst(std::string_view modeAsWritten);
  void endOfTrst() { writeStatement(); }

  void beginRunTest();
  void runState(std::string_view name) override;
  void runCount(long count, std::string_view unit) override;
  void minTime(float seconds) override;
  void maxTime(float seconds) override;
  void endState(std::string_view name) override;
  void endOfRunTest();

  /// Writes what has been gathered, and separates it from what follows:
  /// statements that share a line of the source share one of the output, and
  /// keep their distance.
  void writeStatement();
  void writeSeparator();

 private:
  bool isTcl() const { return vars_.iGlobOutFormat; }
  void writeLine();
  void splitWait(long clocks);

  const ScriptVars& vars_;
  OutputFile& output_;
  const LineReader& source_;
  Reporter& report_;
  StatementText sBufStatement_;
};

}  // namespace progmode_svf2tapbus

#endif  // TAPFORGE_SCRIPT_SCRIPT_WRITER_H
