#ifndef TAPFORGE_SCRIPT_SCRIPT_TRAITS_H
#define TAPFORGE_SCRIPT_SCRIPT_TRAITS_H

#include "io/reporter.h"
#include "svf/syntax_rules.h"

namespace progmode_svf2tapbus {

/// What mode 0 says and reads differently from mode 1.
extern const tapforge::MessageStyle kMessageStyle;
extern const tapforge::SyntaxRules kSyntaxRules;

}  // namespace progmode_svf2tapbus

#endif  // TAPFORGE_SCRIPT_SCRIPT_TRAITS_H
