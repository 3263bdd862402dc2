#ifndef SIMULATED_TAP_H_
#define SIMULATED_TAP_H_

/* A chain that exists in software only: one device with an instruction register
   of four bits, an IDCODE, and a register that takes 50 clocks to be written. */

#include <stdint.h>

struct SimulatedTap {
  uint8_t state;       /* numbered as in enum KsvfState */
  uint8_t instruction; /* as updated */
  uint8_t length;      /* bits of the register between TDI and TDO */
  uint8_t busy;        /* clocks in Run-Test/Idle until it has taken what was written */
  uint32_t shifted;    /* that register */
  uint32_t user;       /* what was written */
};

/* Switches it on: the TAP is in Test-Logic-Reset. */
void simulated_tap_begin(struct SimulatedTap* tap);

/* TDO, as it is from the falling edge of TCK to the next one. */
int simulated_tap_tdo(const struct SimulatedTap* tap);

/* A rising edge of TCK, with TMS and TDI as they are then. */
void simulated_tap_clock(struct SimulatedTap* tap, int tms, int tdi);

#endif /* SIMULATED_TAP_H_ */
