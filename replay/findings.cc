#include "replay/findings.h"

namespace tapforge_replay {
namespace {

// clang-format off
constexpr std::array<DifferenceRule, kDifferenceCount> kRules = {{
    {"scans", "scans that differ", false},
    {"care", "TDI bits that the source fixes and SMASK now leaves open", false},
    {"shorter-waits", "waits that are shorter", false},
    {"lost-waits", "waits that are lost", false},
    {"moved-waits", "waits in another state, by another clock, in parts or after another scan", false},
    {"longer-waits", "waits that are longer or new", true},
    {"compared-less", "scans that compare less", true},
    {"compared-more", "scans that compare more", true},
    {"state-moves", "state moves that differ", false},
    {"end-states", "scans or waits that end in another state", false},
    {"reset-line", "settings of the reset line (TRST) left out or changed", false},
    {"parallel-io", "statements of parallel I/O left out or changed", false},
    {"shared-lines", "commands on the line of another one, an error for a Tcl shell", false},
    {"reset-line-off", "settings of it to OFF or Z, before any ON, left out or changed", true},
    {"frequency", "settings of the TCK frequency left out or changed", true},
    {"maximum-times", "maximum times of waits left out or changed", true},
}};
// clang-format on

}  // namespace

const DifferenceRule& ruleOf(Difference difference) {
  return kRules[static_cast<std::size_t>(difference)];
}

std::optional<Difference> findDifference(std::string_view name) {
  for (std::size_t i = 1; i < kDifferenceCount; ++i) {  // a scan that differs is never allowed
    if (kRules[i].name == name) return static_cast<Difference>(i);
  }
  return std::nullopt;
}

}  // namespace tapforge_replay
