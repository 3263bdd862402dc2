#include "replay/findings.h"

namespace tapforge_replay {

using enum Weight;

// clang-format off
const std::array<DifferenceRule, kDifferenceCount> kDifferenceRules = {{
    {"scans", "scans that differ", kFatal},
    {"not-playable", "what no player or Tcl shell takes as it is meant", kFatal},
    {"no-scans", "a source without any scan, which proves nothing"},
    {"care", "TDI bits that the source fixes and SMASK now leaves open"},
    {"compared-less", "scans that compare less", kHarmless},
    {"compared-more", "scans that compare more", kHarmless},
    {"unknown-rate", "waits that are long enough at some rates of TCK only"},
    {"shorter-waits", "waits that are shorter"},
    {"lost-waits", "waits that are lost"},
    {"moved-waits", "waits at another place, in another state, by another clock or in parts"},
    {"rounded-waits", "waits shorter by the rounding of their times"},
    {"longer-waits", "waits that are longer or new", kHarmless},
    {"beyond-maximum", "waits longer than their MAXIMUM, or with a new one"},
    {"maximum-times", "maximum times of waits left out or changed", kHarmless},
    {"state-moves", "state moves that differ"},
    {"end-states", "scans or waits that end in another state"},
    {"reset-line", "settings of the reset line (TRST) left out or changed"},
    {"reset-line-off", "settings of it to OFF or Z, before any ON", kHarmless},
    {"parallel-io", "statements of parallel I/O left out or changed"},
    {"too-fast", "TCK faster than the source's FREQUENCY"},
    {"frequency", "a FREQUENCY left out or lowered", kHarmless},
}};
// clang-format on

std::optional<Difference> findDifference(std::string_view name) {
  for (std::size_t i = 0; i < kDifferenceCount; ++i) {
    const DifferenceRule& rule = kDifferenceRules[i];
    if (rule.name == name && rule.weight != kFatal) return static_cast<Difference>(i);
  }
  return std::nullopt;
}

std::string Findings::text() const {
  std::string text;
  for (std::size_t i = 0; i < kDifferenceCount; ++i) {
    const Entry& entry = entries_[i];
    if (entry.count == 0) continue;
    text.append(kDifferenceRules[i].name).append(": " + std::to_string(entry.count) + " (");
    text.append(kDifferenceRules[i].meaning).append(")\n  first: " + entry.first + "\n");
    if (!entry.largest.empty()) text += "  largest: " + entry.largest + "\n";
  }
  return text;
}

}  // namespace tapforge_replay
