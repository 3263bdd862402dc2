#ifndef TAPFORGE_SVF_RUN_H
#define TAPFORGE_SVF_RUN_H

#include "scan/tap_obj.h"
#include "shell/io/reporter.h"
#include "svf/tokens.h"

namespace tapforge {

/// What every statement parser works on. Parsers read tokens, check them, store
/// what stands for later statements in `tap`, and report through the lexer's
/// reporter; they never write output.
struct Run {
  Run(SourceReader& source, Reporter& reporter) : lexer(source, reporter), report(reporter) {}

  Lexer lexer;
  Reporter& report;
  CTapObj tap;
};

}  // namespace tapforge

#endif  // TAPFORGE_SVF_RUN_H
