#include "ksvf_player.h"

/* A function that stays out of its caller: then the registers of a small processor are
   enough for the loop over the bits. On an AVR a clock takes 36 cycles, and 41 without,
   with 300 bytes of code more. */
#ifdef __GNUC__
#define KSVF_APART __attribute__((noinline))
#else
#define KSVF_APART
#endif

/* What a command is, as bits of its entry in `kinds`. */
enum {
  kKnown = 1,        /* there is a command with this code */
  kMidScan = 2,      /* it may stand between the records of a partitioned scan */
  kFirst = 4,        /* the first record of a scan, or all of it */
  kLast = 8,         /* the last record of a scan, or all of it */
  kMasked = 16,      /* TDO is compared under the mask: bit 0 of enum KsvfCompare */
  kAll = 32,         /* TDO is compared in all bits: bit 1 of it */
  kInstruction = 64, /* instruction scan */
  kData = 128        /* data scan, or a record of one */
};

static const uint8_t kinds[KSVF_KWAIT + 1] = {
    kKnown,                                    /* KCOMPLETE */
    kKnown,                                    /* KTDOMASK */
    kKnown | kInstruction | kFirst | kLast,    /* KSIR */
    kKnown | kData | kFirst | kLast,           /* KSDR */
    kKnown,                                    /* KRUNTEST */
    0,                                         /* 5 */
    0,                                         /* 6 */
    kKnown,                                    /* KREPEAT */
    kKnown | kMidScan,                         /* KSDRSIZE */
    kKnown | kData | kFirst | kLast | kMasked, /* KSDRTDO */
    0,                                         /* 10 */
    0,                                         /* 11 */
    kKnown | kData | kMidScan | kFirst,        /* KSDRB */
    kKnown | kData | kMidScan,                 /* KSDRC */
    kKnown | kData | kMidScan | kLast,         /* KSDRE */
    kKnown | kData | kMidScan | kFirst | kAll, /* KSDRTDOB */
    kKnown | kData | kMidScan | kAll,          /* KSDRTDOC */
    kKnown | kData | kMidScan | kLast | kAll,  /* KSDRTDOE */
    kKnown,                                    /* KSTATE */
    kKnown,                                    /* KENDIR */
    kKnown,                                    /* KENDDR */
    kKnown | kInstruction | kFirst | kLast,    /* KSIR2 */
    kKnown,                                    /* KCOMMENT */
    kKnown                                     /* KWAIT */
};

/* Bit s: state s can be held. */
static const uint16_t stable_states = 0x2043;

/* The states to which the shortest way begins with TMS 0: the first one in the high
   digit, and how many more in the low one. */
static const uint8_t by_tms_0[16] = {0x1e, 0x10, 0x26, 0x40, 0x40, 0x43, 0x60, 0x43,
                                     0x10, 0xa5, 0xb0, 0xb0, 0xb3, 0xd0, 0xb3, 0x10};

/* The state after a clock: with TMS 0 in the low digit, with TMS 1 in the high one. */
static const uint8_t next_state[16] = {0x01, 0x21, 0x93, 0x54, 0x54, 0x86, 0x76, 0x84,
                                       0x21, 0x0a, 0xcb, 0xcb, 0xfd, 0xed, 0xfb, 0x21};

static size_t bytes_of(KsvfBits bits) { return (size_t)((bits + 7) / 8); }
static bool playing(const struct KsvfPlayer* player) { return player->result == KSVF_PLAYING; }

/* The first fault ends the play, so what comes after it does not hide it. */
static void end_with(struct KsvfPlayer* player, enum KsvfResult result) {
  if (playing(player)) {
    player->result = (uint8_t)result;
  }
}

/* Reading the file. At its end all of these end the play, and give zeros. */

static void read_bytes(struct KsvfPlayer* player, uint8_t* bytes, size_t count) {
  size_t i;
  for (i = 0; (i < count) && playing(player); ++i) {
    const int byte = ksvf_port_read(player->port);
    if (byte < 0) {
      player->result = (byte == KSVF_STOP) ? KSVF_STOPPED : KSVF_TOO_SHORT;
      return;
    }
    bytes[i] = (uint8_t)byte;
    ++player->offset;
  }
}

static uint8_t read_byte(struct KsvfPlayer* player) {
  uint8_t byte = 0;
  read_bytes(player, &byte, 1);
  return byte;
}

static uint32_t read_number(struct KsvfPlayer* player, int bytes) {
  uint32_t number = 0;
  int i;
  for (i = 0; i < bytes; ++i) {
    number = (number << 8) | read_byte(player);
  }
  return number;
}

static KsvfBits read_length(struct KsvfPlayer* player, int bytes) {
  const uint32_t bits = read_number(player, bytes);
  if (bits > KSVF_MAX_BITS) {
    end_with(player, KSVF_SCAN_TOO_LONG);
  }
  return (KsvfBits)bits;
}

static uint8_t read_state(struct KsvfPlayer* player) {
  const uint8_t state = read_byte(player);
  if (state > KSVF_IR_UPDATE) {
    end_with(player, KSVF_BAD_OPERAND);
  }
  return state & 15;
}

static uint8_t read_stable_state(struct KsvfPlayer* player) {
  const uint8_t state = read_state(player);
  if (((stable_states >> state) & 1) == 0) {
    end_with(player, KSVF_BAD_OPERAND);
  }
  return state;
}

static uint8_t read_end_state(struct KsvfPlayer* player, enum KsvfState pause) {
  const uint8_t operand = read_byte(player);
  if (operand > 1) {
    end_with(player, KSVF_BAD_OPERAND);
  }
  return (uint8_t)((operand == 0) ? KSVF_IDLE : pause);
}

/* Moving the TAP. TDI is 1 wherever no bit of a vector is shifted. A dry run moves
   `state` only. */

/* Whether a port function that answers so has ended the play. */
static bool stops(struct KsvfPlayer* player, int answer) {
  if (answer == KSVF_STOP) {
    player->result = KSVF_STOPPED;
  }
  return answer == KSVF_STOP;
}

static bool stopped(const struct KsvfPlayer* player) { return player->result == KSVF_STOPPED; }

static void follow(struct KsvfPlayer* player, int tms) {
  const uint8_t next = next_state[player->state];
  player->state = (tms != 0) ? (next >> 4) : (next & 15);
}

/* The shortest way, and so many clocks at least: a stable target is held meanwhile. To
   reset it is five, which lead there from anywhere, so that a TAP that lost a clock on
   the board is with the player again. */
static void move(struct KsvfPlayer* player, uint8_t target, uint8_t least) {
  uint8_t left = (target == KSVF_RESET) ? 5 : least;
  if (stopped(player)) {
    return;
  }
  if (player->dry) {
    player->state = target;
    return;
  }
  while ((player->state != target) || (left != 0)) {
    const uint8_t range = by_tms_0[player->state];
    const uint8_t more = range & 15;
    const uint8_t place = (uint8_t)(target - (range >> 4));
    uint8_t next = next_state[player->state];
    int tms = 0;
    if (place > more) {
      next >>= 4;
      tms = 1;
    }
    if (stops(player, ksvf_port_clock(player->port, tms, 1))) {
      return;
    }
    player->state = next & 15;
    if (left != 0) {
      --left;
    }
  }
}

static void go_to(struct KsvfPlayer* player, uint8_t target) { move(player, target, 0); }

/* The writer may name each step of a path, also one that stays where it is. */
static void step_to(struct KsvfPlayer* player, uint8_t target) {
  const bool stays = (player->state == target) && ((next_state[target] & 15) == target);
  move(player, target, stays ? 1 : 0);
}

static void wait_in(struct KsvfPlayer* player, uint8_t state, uint32_t clocks) {
  const int tms = (state == KSVF_RESET) ? 1 : 0;
  if (player->state != state) {
    go_to(player, state);
  }
  if ((clocks > 0) && !player->dry && !stopped(player)) {
#if KSVF_OWN_WAIT
    (void)stops(player, ksvf_port_wait(player->port, tms, clocks));
#else
    uint32_t left = clocks;
    while ((left > 0) && !stops(player, ksvf_port_clock(player->port, tms, 1))) {
      --left;
    }
#endif
  }
}

/* Scans. */

static uint8_t mask_or_0(const struct KsvfPlayer* player, size_t at) {
  return (at < bytes_of(player->mask_bits)) ? player->mask[at] : 0;
}

/* The mask for byte `at` of a vector as it is stored. A scan takes the leading digits
   of the last mask, as many as it has itself: where one of the two has an odd count
   of digits and the other one has not, they lie in different halves of the bytes. */
static uint8_t mask_at(const struct KsvfPlayer* player, size_t at) {
  const bool odd = ((player->bits - 1) & 4) == 0;
  const bool odd_mask = ((player->mask_bits - 1) & 4) == 0;
  const size_t low = odd_mask ? (at + 1) : at;
  if (player->compare != KSVF_COMPARE_MASKED) {
    return (player->compare == KSVF_COMPARE_ALL) ? 255 : 0;
  }
  if (odd == odd_mask) {
    return mask_or_0(player, at);
  }
  return (uint8_t)((mask_or_0(player, low - 1) << 4) | (mask_or_0(player, low) >> 4));
}

uint8_t ksvf_mask_byte(const struct KsvfPlayer* player, uint32_t index) {
  return mask_at(player, bytes_of(player->bits) - 1 - (size_t)index);
}

/* The bits above a vector's length in its first byte. */
static uint8_t unused_of(const struct KsvfPlayer* player) {
  return (uint8_t)((0U - player->bits) & 7);
}

/* Compares byte `at` of the answer with that of the file. */
static void compare(struct KsvfPlayer* player, size_t at, uint8_t seen) {
  const uint8_t expected = player->tdo[at];
  uint8_t differing = (seen ^ expected) & mask_at(player, at);
  uint8_t bit;
  if (at == 0) {
    differing &= (uint8_t)(255U >> unused_of(player));
  }
  for (bit = 0; differing != 0; ++bit) {
    if ((differing & 1) != 0) {
      if (player->wrong_bits == 0) {
        player->mismatch_bit =
            player->bits_before + ((uint32_t)(bytes_of(player->bits) - 1 - at) * 8) + bit;
        player->expected = ((expected >> bit) & 1) != 0;
      }
      ++player->wrong_bits;
    }
    differing >>= 1;
  }
}

/* Clocks the vector through the register; `leave` takes the TAP out of the shift
   state with the last bit. All bits are shifted even when one has differed:
   Update must never find a vector that is only half there. */
KSVF_APART static bool shift(struct KsvfPlayer* player, bool leave) {
  size_t at = bytes_of(player->bits);
  int tms = 0;
  player->wrong_bits = 0;
  if (stopped(player)) {
    return true;
  }
  if (player->dry) {
    at = 0;
  }
  while (at != 0) {
    uint8_t left = 8;
    uint8_t last = 0;
    uint8_t out;
    uint8_t in = 0;
    --at;
    out = player->tdi[at];
    if (at == 0) {
      left = (uint8_t)(8 - unused_of(player));
      last = leave ? 1 : 0;
    }
    do {
      int tdo;
      if (left == last) {
        tms = 1;
      }
      tdo = ksvf_port_clock(player->port, tms, out & 1);
      out >>= 1;
      in >>= 1;
      if (tdo != 0) {
        if (stops(player, tdo)) {
          return true;
        }
        in |= 0x80U;
      }
      --left;
    } while (left != 0);
    if (at == 0) {
      in = (uint8_t)(in >> unused_of(player));
    }
    if ((player->compare != KSVF_COMPARE_NONE) && (in != player->tdo[at])) {
      compare(player, at, in);
    }
  }
  if (leave) {
    follow(player, 1);
  }
  return player->wrong_bits == 0;
}

/* Reads the vectors of a scan or record, which is then the current one. */
static void read_scan(struct KsvfPlayer* player, uint8_t kind, KsvfBits bits) {
  const bool first = (kind & kFirst) != 0;
  if (first == player->in_records) {
    end_with(player, KSVF_BAD_ORDER);
  }
  if ((bits == 0) && ((kind & (kInstruction | kMidScan)) != 0)) {
    end_with(player, KSVF_BAD_OPERAND);
  }
  if (!playing(player)) {
    return;
  }
  player->bits_before = first ? 0 : (player->bits_before + player->bits);
  player->bits = bits;
  player->compare = (uint8_t)((kind / kMasked) & 3);
  player->tries = 0;
  read_bytes(player, player->tdi, bytes_of(bits));
  if (player->compare != KSVF_COMPARE_NONE) {
    read_bytes(player, player->tdo, bytes_of(bits));
  }
}

/* Plays the scan or record that was read once. For records the TAP stays in Shift-DR
   until the last. False where its TDO differed: after a try that is to be repeated it
   has come to its end like after one that matched, since only Capture brings another
   answer and the only way there leads through Update. The last try is held in Pause. */
static bool try_scan(struct KsvfPlayer* player, uint8_t kind) {
  const bool instruction = (kind & kInstruction) != 0;
  const bool last = (kind & kLast) != 0;
  bool same = true;
  if (player->bits > 0) {
    if ((kind & kFirst) != 0) {
      const uint8_t capture = instruction ? KSVF_IR_CAPTURE : KSVF_DR_CAPTURE;
      if (player->state > KSVF_DR_SELECT) {
        go_to(player, capture);
      }
      go_to(player, (uint8_t)(capture + 1));
    }
    same = shift(player, last);
    if (!same && ((player->compare == KSVF_COMPARE_ALL) || (player->tries == player->repeat))) {
      go_to(player, KSVF_DR_PAUSE);
      end_with(player, KSVF_MISMATCH);
    }
    if (!last || !playing(player)) {
      return same;
    }
    go_to(player, instruction ? player->end_ir : player->end_dr);
  }
  if ((player->run_count > 0) && !(instruction && player->wait_after_data_only)) {
    wait_in(player, KSVF_IDLE, player->run_count);
  }
  return same;
}

static void scan(struct KsvfPlayer* player, uint8_t kind, KsvfBits bits) {
  read_scan(player, kind, bits);
  if (!playing(player)) {
    return;
  }
  if (((kind & kFirst) != 0) && (bits > 0)) {
    ++player->scan;
    player->instruction = (kind & kInstruction) != 0;
  }
  player->in_records = (kind & kLast) == 0;
  while (!try_scan(player, kind) && playing(player)) {
    ++player->tries;
  }
}

static void comment(struct KsvfPlayer* player) {
  uint8_t character;
  do {
    character = read_byte(player);
#if KSVF_OWN_COMMENT
    if (playing(player) && !player->dry) {
      ksvf_port_comment(player->port, character);
    }
#endif
  } while (character != 0);
}

static void play_command(struct KsvfPlayer* player) {
  const uint32_t offset = player->offset;
  uint32_t number;
  uint8_t state;
  uint8_t code;
  uint8_t kind;
  read_bytes(player, &player->command, 1);
  if (!playing(player)) {
    return;
  }
  player->command_offset = offset;
  code = player->command;
  kind = (code <= KSVF_KWAIT) ? kinds[code] : 0;
  if (kind == 0) {
    end_with(player, KSVF_UNKNOWN_COMMAND);
    return;
  }
  if (((offset == 0) && (code != KSVF_KREPEAT)) ||
      (player->in_records && ((kind & kMidScan) == 0))) {
    end_with(player, KSVF_BAD_ORDER);
    return;
  }
  if ((kind & (kInstruction | kData)) != 0) {
    KsvfBits bits = player->data_bits;
    if ((kind & kInstruction) != 0) {
      bits = read_length(player, (code == KSVF_KSIR) ? 1 : 2);
    }
    scan(player, kind, bits);
    return;
  }
  switch (code) {
    case KSVF_KCOMPLETE:
      end_with(player, KSVF_DONE);
      return;
    case KSVF_KTDOMASK:
      read_bytes(player, player->mask, bytes_of(player->data_bits));
      player->mask_bits = player->data_bits;
      return;
    case KSVF_KRUNTEST:
      player->run_count = read_number(player, 4);
      return;
    case KSVF_KREPEAT:
      player->repeat = read_byte(player);
      return;
    case KSVF_KSDRSIZE:
      player->data_bits = read_length(player, 4);
      return;
    case KSVF_KSTATE:
      state = read_state(player);
      if (playing(player)) {
        step_to(player, state);
      }
      return;
    case KSVF_KENDIR:
      player->end_ir = read_end_state(player, KSVF_IR_PAUSE);
      return;
    case KSVF_KENDDR:
      player->end_dr = read_end_state(player, KSVF_DR_PAUSE);
      return;
    case KSVF_KCOMMENT:
      comment(player);
      return;
    case KSVF_KWAIT: {
      const uint8_t during = read_stable_state(player);
      const uint8_t after = read_stable_state(player);
      number = read_number(player, 4);
      if (playing(player)) {
        wait_in(player, during, number);
        wait_in(player, after, 0);
      }
      return;
    }
    default:
      return;
  }
}

void ksvf_begin_play(struct KsvfPlayer* player, void* port, size_t size, bool dry) {
  /* Volatile, or a compiler may make a call of memset() out of the loop. */
  volatile unsigned char* bytes = (volatile unsigned char*)player;
  size_t i;
  if (size != sizeof(struct KsvfPlayer)) {
    player->result = KSVF_WRONG_SIZE; /* which has its place in all sizes */
    return;
  }
  for (i = 0; i < offsetof(struct KsvfPlayer, tdi); ++i) {
    bytes[i] = 0;
  }
  player->port = port;
  player->dry = dry;
  player->end_ir = KSVF_IDLE;
  player->end_dr = KSVF_IDLE;
  go_to(player, KSVF_RESET);
}

enum KsvfResult ksvf_step(struct KsvfPlayer* player) {
  if (playing(player)) {
    play_command(player);
    if ((player->result > KSVF_DONE) &&
        ((player->state == KSVF_DR_SHIFT) || (player->state == KSVF_IR_SHIFT))) {
      go_to(player, (uint8_t)(player->state + 2)); /* the pause state of the register */
    }
  }
  return (enum KsvfResult)player->result;
}

enum KsvfResult ksvf_play(struct KsvfPlayer* player) {
  enum KsvfResult result;
  do {
    result = ksvf_step(player);
  } while (result == KSVF_PLAYING);
  return result;
}
