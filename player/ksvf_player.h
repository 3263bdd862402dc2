#ifndef KSVF_PLAYER_H_
#define KSVF_PLAYER_H_

/* A player for KSVF files: C99, no heap, no library functions. It fetches the
   file byte by byte and clocks the pins of a JTAG chain, both through functions
   that you write for your board. docs/player.md tells how to port it,
   docs/ksvf.md what it plays. */

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/* Settings: macros in a header ksvf_config.h of your own, included where the compiler
   finds one, or a -D of the compiler for each. */
#ifdef __has_include
#if __has_include("ksvf_config.h")
#include "ksvf_config.h"
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

#ifndef KSVF_MAX_BITS /* Bits of the longest scan, or record of one; a plain number. */
#define KSVF_MAX_BITS 4096
#endif
#ifndef KSVF_OWN_WAIT /* 1: you write ksvf_port_wait(). */
#define KSVF_OWN_WAIT 0
#endif
#ifndef KSVF_OWN_COMMENT /* 1: you write ksvf_port_comment(). */
#define KSVF_OWN_COMMENT 0
#endif

#if (KSVF_MAX_BITS < 1) || (KSVF_MAX_BITS > 0x40000000)
#error "KSVF_MAX_BITS must lie between 1 and 2^30"
#endif
#define KSVF_MAX_BYTES (((KSVF_MAX_BITS - 1) / 8) + 1)
#if defined PTRDIFF_MAX && (KSVF_MAX_BYTES > ((PTRDIFF_MAX - 128) / 3))
#error "KSVF_MAX_BITS is too large for an object of this machine"
#endif

/* TAP states, numbered as in the file. */
enum KsvfState {
  KSVF_RESET,
  KSVF_IDLE,
  KSVF_DR_SELECT,
  KSVF_DR_CAPTURE,
  KSVF_DR_SHIFT,
  KSVF_DR_EXIT1,
  KSVF_DR_PAUSE,
  KSVF_DR_EXIT2,
  KSVF_DR_UPDATE,
  KSVF_IR_SELECT,
  KSVF_IR_CAPTURE,
  KSVF_IR_SHIFT,
  KSVF_IR_EXIT1,
  KSVF_IR_PAUSE,
  KSVF_IR_EXIT2,
  KSVF_IR_UPDATE
};

/* Commands by their codes in the file. */
enum KsvfCommand {
  KSVF_KCOMPLETE = 0,
  KSVF_KTDOMASK = 1,
  KSVF_KSIR = 2,
  KSVF_KSDR = 3,
  KSVF_KRUNTEST = 4,
  KSVF_KREPEAT = 7,
  KSVF_KSDRSIZE = 8,
  KSVF_KSDRTDO = 9,
  KSVF_KSDRB = 12,
  KSVF_KSDRC = 13,
  KSVF_KSDRE = 14,
  KSVF_KSDRTDOB = 15,
  KSVF_KSDRTDOC = 16,
  KSVF_KSDRTDOE = 17,
  KSVF_KSTATE = 18,
  KSVF_KENDIR = 19,
  KSVF_KENDDR = 20,
  KSVF_KSIR2 = 21,
  KSVF_KCOMMENT = 22,
  KSVF_KWAIT = 23
};

enum KsvfResult {
  KSVF_PLAYING,         /* not at the end yet */
  KSVF_DONE,            /* KCOMPLETE reached */
  KSVF_MISMATCH,        /* TDO differed in all tries: see scan and wrong_bits */
  KSVF_UNKNOWN_COMMAND, /* no KSVF command has this code */
  KSVF_BAD_ORDER,       /* KREPEAT is not first, or records are not in order */
  KSVF_BAD_OPERAND,     /* no such state, not a stable one, or no bits to shift */
  KSVF_SCAN_TOO_LONG,   /* more than KSVF_MAX_BITS bits */
  KSVF_TOO_SHORT,       /* the stream ended before KCOMPLETE */
  KSVF_STOPPED,         /* a port function returned KSVF_STOP */
  KSVF_WRONG_SIZE       /* player and caller were compiled with another KSVF_MAX_BITS */
};

/* Which TDO bits of a scan are compared. */
enum KsvfCompare { KSVF_COMPARE_NONE, KSVF_COMPARE_MASKED, KSVF_COMPARE_ALL };

/* A number of bits, of one scan or record at most. */
#if KSVF_MAX_BITS <= 0xfff8
typedef uint16_t KsvfBits;
#else
typedef uint32_t KsvfBits;
#endif

/* All that a player knows. Read what you like, also from within the port
   functions; what you may write is said where it stands. Vectors are stored as
   in the file: a vector of n bits in the first (n + 7) / 8 bytes, most
   significant byte first, so that bit 0, the first one to be shifted, is the
   lowest bit of the last of these bytes. */
struct KsvfPlayer {
  void* port;                /* what the port functions get */
  bool dry;                  /* only reads and checks: see ksvf_begin_dry() */
  bool wait_after_data_only; /* players of version 2; set it between ksvf_begin and the play */

  /* Where the play is. */
  uint8_t result;  /* enum KsvfResult */
  uint8_t state;   /* enum KsvfState: where the TAP is, in ksvf_port_clock() before the clock */
  uint8_t command; /* enum KsvfCommand: the last one read, or an unknown code */

  /* The current scan, after its end the last one. */
  bool instruction; /* register: instruction (true) or data */
  bool in_records;  /* between the first and the last record of a partitioned scan */
  uint8_t compare;  /* enum KsvfCompare */
  uint8_t tries;    /* how often it has been tried again */
  bool expected;    /* the first wrong bit of its last try (see wrong_bits): as the file has it */

  /* What holds for the scans to come. */
  uint8_t repeat;     /* KREPEAT: times to try again */
  uint8_t end_ir;     /* enum KsvfState: where instruction scans end */
  uint8_t end_dr;     /* the same for data scans */
  KsvfBits data_bits; /* KSDRSIZE */
  KsvfBits mask_bits; /* length of the mask when it was sent, 0 before the first */
  uint32_t run_count; /* KRUNTEST: clocks after a scan */

  /* Numbers of the play and of the current scan. */
  uint32_t offset;         /* bytes read */
  uint32_t command_offset; /* offset of the code of the command */
  uint32_t scan;           /* number, from 1; the records of a partitioned scan have the same */
  KsvfBits bits;           /* length of the scan or record */
  uint32_t bits_before;    /* bits of a partitioned scan before this record, else 0 */
  KsvfBits wrong_bits;     /* TDO bits of the last try or record that differed under the mask */
  uint32_t mismatch_bit;   /* the first of them: its number in the (whole) scan, from 0 */

  uint8_t tdi[KSVF_MAX_BYTES];
  uint8_t tdo[KSVF_MAX_BYTES];  /* expected; meaningless with KSVF_COMPARE_NONE */
  uint8_t mask[KSVF_MAX_BYTES]; /* as it was sent: ask ksvf_mask_byte() */
};

/* What the two functions below call; call those. */
void ksvf_begin_play(struct KsvfPlayer* player, void* port, size_t size, bool dry);

/* Makes a player ready for a file and takes the TAP to Test-Logic-Reset, whatever
   the last play left behind. The play ends with KSVF_WRONG_SIZE, and never touches
   a pin, where ksvf_player.c was compiled with another KSVF_MAX_BITS. */
static inline void ksvf_begin(struct KsvfPlayer* player, void* port) {
  ksvf_begin_play(player, port, sizeof(struct KsvfPlayer), false);
}

/* The same for a dry run: its ksvf_step() and ksvf_play() read the file and check
   order, operands, sizes and KCOMPLETE, and call no port function but
   ksvf_port_read(). What a play refuses for its format, a dry run refuses at the
   same place with the same result. Members are as in a play in which every TDO bit
   comes as expected; also `state`, though no TAP moves. */
static inline void ksvf_begin_dry(struct KsvfPlayer* player, void* port) {
  ksvf_begin_play(player, port, sizeof(struct KsvfPlayer), true);
}

/* Plays the next command. Returns KSVF_PLAYING while there may be more, else
   how the play ended, and then the same at each further call. */
enum KsvfResult ksvf_step(struct KsvfPlayer* player);

/* Plays to the end. After KSVF_DONE the TAP is where the last command left it,
   after KSVF_STOPPED where the last clock left it. After any other result it is not
   in a shift state: from there it was taken to the pause state of that register, so
   that the bits of an unfinished scan, and of the last try of one that differed, have
   not passed Update. Those of the tries before have. */
enum KsvfResult ksvf_play(struct KsvfPlayer* player);

/* The mask of the current scan for its TDO bits 8 * index (lowest bit of the
   result) to 8 * index + 7. What stands for bits past the end of the scan means
   nothing. */
uint8_t ksvf_mask_byte(const struct KsvfPlayer* player, uint32_t index);

/* The port: you write these. */

/* Returned by a port function, it ends the play with KSVF_STOPPED: no clock follows,
   and `state` says where the TAP is. */
#define KSVF_STOP (-256)

/* The next byte of the file, 0 to 255. Waits for it as long as that takes: TCK may
   rest meanwhile. -1 at the end of the file, or when the wait has become too long;
   or KSVF_STOP. */
int ksvf_port_read(void* port);

/* One TCK: sets TMS and TDI (0 or 1), then raises and lowers TCK. Returns TDO as it
   was before TCK rose: 0, or anything else for a 1. Or KSVF_STOP, and then TCK has
   not risen. */
int ksvf_port_clock(void* port, int tms, int tdi);

#if KSVF_OWN_WAIT
/* A wait of so many TCKs, 1 or more, with TMS held at a level that keeps the TAP in
   its state. Returns 0 or KSVF_STOP. Without KSVF_OWN_WAIT the player calls
   ksvf_port_clock() that often. */
int ksvf_port_wait(void* port, int tms, uint32_t clocks);
#endif

#if KSVF_OWN_COMMENT
/* A character of a comment, 1 to 255; 0 at the end of each comment. */
void ksvf_port_comment(void* port, int character);
#endif

#ifdef __cplusplus
}
#endif

#endif /* KSVF_PLAYER_H_ */
