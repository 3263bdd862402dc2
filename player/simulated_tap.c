#include "simulated_tap.h"

#include "ksvf_player.h"

/* Instructions; every other one is bypass. */
enum { kIdcode = 1, kUser = 2 };

static void capture(struct SimulatedTap* tap) {
  tap->length = 32;
  if (tap->instruction == kIdcode) {
    tap->shifted = 0x1c0de0ff;
  } else if (tap->instruction == kUser) {
    tap->shifted = tap->busy == 0 ? tap->user : 0;
  } else {
    tap->shifted = 0;
    tap->length = 1;
  }
}

static void enter(struct SimulatedTap* tap, uint8_t state) {
  tap->state = state;
  if (state == KSVF_RESET) {
    tap->instruction = kIdcode;
    tap->busy = 0;
  }
  if (state == KSVF_IDLE && tap->busy > 0) {
    --tap->busy;
  }
  if (state == KSVF_DR_CAPTURE) {
    capture(tap);
  }
  if (state == KSVF_IR_CAPTURE) {
    tap->shifted = 1;
    tap->length = 4;
  }
  if (state == KSVF_IR_UPDATE) {
    tap->instruction = (uint8_t)tap->shifted;
  }
  if (state == KSVF_DR_UPDATE && tap->instruction == kUser && tap->busy == 0) {
    tap->user = tap->shifted;
    tap->busy = 50;
  }
}

void simulated_tap_begin(struct SimulatedTap* tap) {
  tap->user = 0;
  tap->shifted = 0;
  tap->length = 1;
  enter(tap, KSVF_RESET);
}

int simulated_tap_tdo(const struct SimulatedTap* tap) { return (int)(tap->shifted & 1U); }

void simulated_tap_clock(struct SimulatedTap* tap, int tms, int tdi) {
  static const uint8_t after[16][2] = {{1, 0},   {1, 2},   {3, 9},   {4, 5},  {4, 5},   {6, 8},
                                       {6, 7},   {4, 8},   {1, 2},   {10, 0}, {11, 12}, {11, 12},
                                       {13, 15}, {13, 14}, {11, 15}, {1, 2}};
  if (tap->state == KSVF_DR_SHIFT || tap->state == KSVF_IR_SHIFT) {
    tap->shifted >>= 1;
    tap->shifted |= (uint32_t)tdi << (tap->length - 1);
  }
  enter(tap, after[tap->state][tms]);
}
