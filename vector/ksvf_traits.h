#ifndef TAPFORGE_VECTOR_KSVF_TRAITS_H
#define TAPFORGE_VECTOR_KSVF_TRAITS_H

#include "io/reporter.h"
#include "svf/syntax_rules.h"

namespace progmode_svf2ksvf {

/// What mode 1 says and reads differently from mode 0.
extern const tapforge::MessageStyle kMessageStyle;
extern const tapforge::SyntaxRules kSyntaxRules;

}  // namespace progmode_svf2ksvf

#endif  // TAPFORGE_VECTOR_KSVF_TRAITS_H
