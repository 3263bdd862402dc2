#ifndef TAPFORGE_SCAN_TAP_OBJ_H
#define TAPFORGE_SCAN_TAP_OBJ_H

#include <vector>

#include "scan/tap_pattern.h"
#include "svf/tap_state.h"

namespace tapforge {

/// How a pin of the parallel port is used, in PIOMAP's words.
enum class PinDirection { in, out, inout };

enum class TrstMode { none, on, off, z, absent };

/// The three patterns that make up the scans of one register.
struct RegisterPatterns {
  CTapPattern head;   // HIR or HDR: the bits shifted first
  CTapPattern data;   // SIR or SDR
  CTapPattern trail;  // TIR or TDR: the bits shifted last
};

/// What SVF statements leave standing for the ones after them.
struct CTapObj {
  TapState iRunState = TapState::idle;
  TapState iRunEndState = TapState::idle;
  TapState iEndDrState = TapState::idle;
  TapState iEndIrState = TapState::idle;
  TapState iCurState = TapState::reset;  // kept by mode 1 only

  // 32-bit floats by design; -1 means not given.
  float fTckFreq = -1.0F;   // Hz
  float fRunCount = -1.0F;  // TCKs
  float fMinTime = -1.0F;   // seconds
  float fMaxTime = -1.0F;   // seconds

  TrstMode iTrstMode = TrstMode::none;
  /// A scan or a RUNTEST has been met, so TRST ABSENT comes too late.
  bool iSvfTrstRule = false;

  std::vector<PinDirection> pPioMap;  // in the order of the PIO characters
  RegisterPatterns instruction;
  RegisterPatterns data;
};

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_TAP_OBJ_H
