#ifndef TAPFORGE_SCRIPT_SCAN_WRITER_H
#define TAPFORGE_SCRIPT_SCAN_WRITER_H

#include "scan/composite.h"
#include "script/script_vars.h"
#include "script/script_writer.h"
#include "shell/io/output_file.h"
#include "shell/io/reporter.h"
#include "svf/statements.h"

namespace progmode_svf2tapbus {

using tapforge::CompositeScan;
using tapforge::CTapField;
using tapforge::CTapObj;
using tapforge::CTapPattern;
using tapforge::Keyword;
using tapforge::RegisterPatterns;

/// Writes the scan statements: SIR and SDR as the scan of the whole chain, or
/// unmerged with -c; header and trailer statements as comments or properties,
/// since their bits travel in every merged scan. Digits go straight into the
/// output, 64 to a line.
class ScanWriter {
 public:
  ScanWriter(const ScriptVars& vars, OutputFile& output, ScriptWriter& script, Reporter& report)
      : vars_(vars), output_(output), script_(script), report_(report) {}

  /// Writes one statement from the patterns as they stand.
  void doDataShift(Keyword scan, CTapObj& tap);

 private:
  bool isTcl() const { return vars_.iGlobOutFormat; }
  void writeScan(Keyword scan, const RegisterPatterns& patterns);
  void writeHeaderTrailer(Keyword scan, const CTapPattern& pattern);
  void combineHeaderDataTrailer(const RegisterPatterns& patterns, long length);
  void consolidateData(const CompositeScan& scan);
  void printDataAndMask(const CTapPattern& pattern, bool isTdo, Keyword scan);
  void printValue(const CTapField& data, const CTapField* mask, long length,
                  std::string_view progress);

  const ScriptVars& vars_;
  OutputFile& output_;
  ScriptWriter& script_;
  Reporter& report_;
};

}  // namespace progmode_svf2tapbus

#endif  // TAPFORGE_SCRIPT_SCAN_WRITER_H
