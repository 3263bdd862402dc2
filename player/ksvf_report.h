#ifndef KSVF_REPORT_H_
#define KSVF_REPORT_H_

/* What a port tells people, for a serial line as well as for a terminal: no C
   library, a character at a time through a function of yours. On an AVR its texts
   take half a KiB of RAM. */

#include "ksvf_player.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Takes the next character; gets the pointer of your port. */
typedef void (*KsvfPut)(void* port, char character);

/* Text, and a number of 32 bits in base 10 or 16 with at least so many digits. */
void ksvf_put_text(void* port, KsvfPut put, const char* text);
void ksvf_put_number(void* port, KsvfPut put, uint32_t number, uint8_t base, uint8_t least);

/* How a play ended, such as "done, 5 scans", without a line end. */
void ksvf_report_result(const struct KsvfPlayer* player, KsvfPut put);

/* The devices of a chain, a line each, the one nearest to TDO first. Needs no file:
   after Test-Logic-Reset a data scan brings out the IDCODE of each device, and a
   single 0 of one that has none. It moves all TAPs through Shift-DR and back to
   Test-Logic-Reset, and leaves the devices as they were, unless a play was stopped or
   did not match: what it left in a register passes Update. KSVF_STOP is a 1 here.
   Returns their number; where TDO keeps one level, it says so. */
unsigned ksvf_report_chain(void* port, KsvfPut put);

#ifdef __cplusplus
}
#endif

#endif /* KSVF_REPORT_H_ */
