#ifndef TAPFORGE_SCAN_TAP_OBJ_H
#define TAPFORGE_SCAN_TAP_OBJ_H

#include "scan/composite.h"
#include "scan/tap_pattern.h"
#include "svf/clock_and_reset.h"
#include "svf/keyword.h"
#include "svf/pio.h"
#include "svf/tap_state.h"

namespace tapforge {

/// What stays in force from one SVF statement to the next, in one run.
struct CTapObj {
  TapState iRunState = TapState::idle;     // in which RUNTEST waits
  TapState iRunEndState = TapState::idle;  // after a RUNTEST
  TapState iCurState = TapState::reset;    // that the file has brought the TAP to
  TapState iEndDrState = TapState::idle;
  TapState iEndIrState = TapState::idle;

  float fTckFreq = -1.0F;  // Hz, a 32-bit float by design; -1 means not given

  TrstMode iTrstMode = TrstMode::none;
  /// A scan or a RUNTEST has been met, so TRST ABSENT comes too late.
  bool iSvfTrstRule = false;

  PioMap pPioMap;

  CTapPattern pHeadData;    // HDR
  CTapPattern pTrailData;   // TDR
  CTapPattern pHeadInstr;   // HIR
  CTapPattern pTrailInstr;  // TIR
  CTapPattern pTapData;     // SDR
  CTapPattern pTapInstr;    // SIR

  RegisterScan dataScan{pHeadData, pTapData, pTrailData};
  RegisterScan instructionScan{pHeadInstr, pTapInstr, pTrailInstr};

  CTapObj() = default;
  CTapObj(const CTapObj&) = delete;
  CTapObj& operator=(const CTapObj&) = delete;

  /// -exact: see RegisterScan.
  void compareExactly() {
    dataScan.compareExactly();
    instructionScan.compareExactly();
  }

  TapState& endStateOf(ScanRegister which) {
    return which == ScanRegister::data ? iEndDrState : iEndIrState;
  }

  RegisterScan& scanOf(ScanRegister which) {
    return which == ScanRegister::data ? dataScan : instructionScan;
  }

  /// The pattern that a scan, header or trailer statement is about.
  CTapPattern& patternOf(Keyword keyword) {
    switch (keyword) {
      case Keyword::hdr:
        return pHeadData;
      case Keyword::tdr:
        return pTrailData;
      case Keyword::hir:
        return pHeadInstr;
      case Keyword::tir:
        return pTrailInstr;
      case Keyword::sdr:
        return pTapData;
      default:
        assert(keyword == Keyword::sir);
        return pTapInstr;
    }
  }
};

}  // namespace tapforge

#endif  // TAPFORGE_SCAN_TAP_OBJ_H
