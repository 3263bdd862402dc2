/* A chain that answers as the file expects, but now and then with a wrong bit, and
   keeps a sum of all pins: a file gives the same line on every machine. Reads it from
   standard input on a PC, from registers that avr_machine.c fills on an AVR; on a
   Cortex-M0 it stands between player/serial_port.c and player/microbit.c. */

#include "ksvf_player.h"
#include "ksvf_report.h"

static uint32_t clocks, pins, chance, bit;

static void trace(uint32_t value) { pins = (pins ^ value) * 16777619U + 1; }

static int answer(const struct KsvfPlayer* player) {
  const bool shifting = player->state == KSVF_DR_SHIFT || player->state == KSVF_IR_SHIFT;
  const uint32_t at = bit - player->bits_before;
  bit = shifting ? bit + 1 : 0;
  if (!shifting || player->compare == KSVF_COMPARE_NONE || at >= player->bits) return 0;
  chance = chance * 1664525U + 1013904223U;
  return (player->tdo[(player->bits - 1) / 8 - at / 8] >> at % 8 & 1) ^ (chance >> 22 == 0);
}

void traced_result(const struct KsvfPlayer* player, KsvfPut put) {
  ksvf_report_result(player, put);
  put(player->port, ' ');
  ksvf_put_number(player->port, put, clocks, 10, 1);
  put(player->port, ' ');
  ksvf_put_number(player->port, put, pins, 16, 8);
  clocks = pins = chance = bit = 0;
}

int ksvf_port_wait(void* port, int tms, uint32_t count) {
  (void)port;
  clocks += count;
  trace(count * 8 + (uint32_t)tms);
  return 0;
}

#ifdef __arm__

#define GPIO(offset) (*(volatile uint32_t*)(0x50000000U + (offset)))
int microbit_clock(void* port, int tms, int tdi);

/* Another device than the chip drives TDO; here it does so itself. */
int ksvf_port_clock(void* port, int tms, int tdi) {
  int tdo;
  GPIO(0x518) = 1UL << 22;
  GPIO(answer((const struct KsvfPlayer*)port) ? 0x508 : 0x50c) = 1UL << 22;
  tdo = microbit_clock(port, tms, tdi);
  ++clocks;
  trace((GPIO(0x504) >> 16 & 1) + (GPIO(0x504) >> 21 & 1) * 2 + (uint32_t)tdo * 4);
  return tdo;
}

#else

#ifdef __AVR__
#include <avr/io.h>
#define NEXT_BYTE (GPIOR1 ? -1 : GPIOR0)
#define PUT(character) (GPIOR2 = (uint8_t)(character))
#else
#include <stdio.h>
#define NEXT_BYTE getchar()
#define PUT(character) putchar(character)
#endif

static void put(void* port, char character) {
  (void)port;
  PUT(character);
}

int ksvf_port_read(void* port) {
  (void)port;
  return NEXT_BYTE;
}

int ksvf_port_clock(void* port, int tms, int tdi) {
  const int tdo = answer((const struct KsvfPlayer*)port);
  ++clocks;
  trace((uint32_t)(tms + tdi * 2 + tdo * 4));
  return tdo;
}

int main(void) {
  static struct KsvfPlayer player;
  ksvf_begin(&player, &player);
  ksvf_play(&player);
  traced_result(&player, put);
  put(&player, '\n');
  return 0;
}

#endif
