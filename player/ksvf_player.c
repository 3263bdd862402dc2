#include "ksvf_player.h"

#include <stddef.h>

/* Bit c: there is a command with code c. */
static const uint32_t known_codes = 0xfff39f;

/* The state after a clock: with TMS 0 in the low digit, with TMS 1 in the high one. */
static const uint8_t next_state[16] = {0x01, 0x21, 0x93, 0x54, 0x54, 0x86, 0x76, 0x84,
                                       0x21, 0x0a, 0xcb, 0xcb, 0xfd, 0xed, 0xfb, 0x21};

/* Bit t of a state's entry is TMS for the first clock of the shortest way from
   there to state t. */
static const uint16_t way[16] = {0x0001, 0xfffd, 0xfe03, 0xffef, 0xffef, 0xff0f, 0xffbf, 0xff0f,
                                 0xfffd, 0x03ff, 0xf7ff, 0xf7ff, 0x87ff, 0xdfff, 0x87ff, 0xfffd};

static uint32_t bytes_of(uint32_t bits) { return (bits + 7) / 8; }
static uint32_t digits_of(uint32_t bits) { return (bits + 3) / 4; }
static bool playing(const struct KsvfPlayer* player) { return player->result == KSVF_PLAYING; }

/* The first fault ends the play, so what comes after it does not hide it. */
static void end_with(struct KsvfPlayer* player, enum KsvfResult result) {
  if (playing(player)) player->result = (uint8_t)result;
}

/* Reading the file. At its end all of these end the play, and give zeros. */

static uint8_t read_byte(struct KsvfPlayer* player) {
  const int byte = playing(player) ? ksvf_port_read(player->port) : -1;
  if (byte < 0) {
    end_with(player, KSVF_TOO_SHORT);
    return 0;
  }
  ++player->offset;
  return (uint8_t)byte;
}

static uint32_t read_number(struct KsvfPlayer* player, int bytes) {
  uint32_t number = 0;
  while (bytes-- > 0) number = number << 8 | read_byte(player);
  return number;
}

static void read_vector(struct KsvfPlayer* player, uint8_t* vector, uint32_t bits) {
  uint32_t i;
  for (i = 0; i < bytes_of(bits) && playing(player); ++i) vector[i] = read_byte(player);
}

static uint8_t read_state(struct KsvfPlayer* player) {
  const uint8_t state = read_byte(player);
  if (state > KSVF_IR_UPDATE) end_with(player, KSVF_BAD_OPERAND);
  return state & 15;
}

static uint8_t read_stable_state(struct KsvfPlayer* player) {
  const uint8_t state = read_state(player);
  const bool stable =
      state == KSVF_RESET || state == KSVF_IDLE || state == KSVF_DR_PAUSE || state == KSVF_IR_PAUSE;
  if (!stable) end_with(player, KSVF_BAD_OPERAND);
  return state;
}

static uint8_t read_end_state(struct KsvfPlayer* player, enum KsvfState pause) {
  const uint8_t operand = read_byte(player);
  if (operand > 1) end_with(player, KSVF_BAD_OPERAND);
  return (uint8_t)(operand == 0 ? KSVF_IDLE : pause);
}

/* Moving the TAP. TDI is 1 wherever no bit of a vector is shifted. */

static void follow(struct KsvfPlayer* player, int tms) {
  const uint8_t next = next_state[player->state];
  player->state = tms != 0 ? next >> 4 : next & 15;
}

static void clock_tms(struct KsvfPlayer* player, int tms) {
  (void)ksvf_port_clock(player->port, tms, 1);
  follow(player, tms);
}

/* The shortest way; to reset five clocks, which lead there from anywhere, so
   that a TAP that lost a clock on the board is with the player again. */
static void go_to(struct KsvfPlayer* player, uint8_t target) {
  if (target == KSVF_RESET) {
    int i;
    for (i = 0; i < 5; ++i) clock_tms(player, 1);
  }
  while (player->state != target) clock_tms(player, way[player->state] >> target & 1);
}

/* The writer may name each step of a path, also one that stays where it is. */
static void step_to(struct KsvfPlayer* player, uint8_t target) {
  const bool stays = (next_state[target] & 15) == target;
  if (player->state == target && stays) clock_tms(player, 0);
  go_to(player, target);
}

static void wait_in(struct KsvfPlayer* player, uint8_t state, uint32_t clocks) {
  const int tms = state == KSVF_RESET;
  if (player->state != state) go_to(player, state);
#if KSVF_OWN_WAIT
  if (clocks > 0) ksvf_port_wait(player->port, tms, clocks);
#else
  while (clocks-- > 0) clock_tms(player, tms);
#endif
}

/* Scans. */

static unsigned mask_digit(const struct KsvfPlayer* player, int32_t digit) {
  const uint32_t at = (uint32_t)digit;
  unsigned byte;
  if (digit < 0 || at >= digits_of(player->mask_bits)) return 0;
  byte = player->mask[bytes_of(player->mask_bits) - 1 - at / 2];
  return at % 2 != 0 ? byte >> 4 : byte & 15;
}

/* A scan takes the leading digits of the last mask, as many as it has itself. */
uint8_t ksvf_mask_byte(const struct KsvfPlayer* player, uint32_t index) {
  int32_t digit;
  if (player->compare != KSVF_COMPARE_MASKED) return player->compare == KSVF_COMPARE_ALL ? 255 : 0;
  digit = (int32_t)digits_of(player->mask_bits) - (int32_t)digits_of(player->bits);
  digit += (int32_t)index * 2;
  return (uint8_t)(mask_digit(player, digit) | mask_digit(player, digit + 1) << 4);
}

static void keep_difference(struct KsvfPlayer* player, uint32_t bit, unsigned expected,
                            unsigned seen, unsigned differing) {
  for (; (differing & 1) == 0; differing >>= 1, ++bit) {
    expected >>= 1;
    seen >>= 1;
  }
  player->mismatch_bit = player->bits_before + bit;
  player->expected = (expected & 1) != 0;
  player->seen = (seen & 1) != 0;
}

/* Clocks the vector through the register; `leave` takes the TAP out of the shift
   state with the last bit. All bits are shifted even when one has differed:
   Update must never find a vector that is only half there. */
static bool shift(struct KsvfPlayer* player, bool leave) {
  const uint32_t bytes = bytes_of(player->bits);
  bool same = true;
  uint32_t i;
  for (i = 0; i < bytes; ++i) {
    const uint32_t at = bytes - 1 - i;
    const unsigned count = at != 0 ? 8 : (unsigned)(player->bits - 8 * i);
    unsigned out = player->tdi[at];
    unsigned in = 0;
    unsigned bit;
    for (bit = 0; bit < count; ++bit) {
      const int tms = leave && at == 0 && bit + 1 == count;
      if (ksvf_port_clock(player->port, tms, (int)(out & 1)) != 0) in |= 1U << bit;
      out >>= 1;
    }
    if (same && player->compare != KSVF_COMPARE_NONE) {
      unsigned differing = (in ^ player->tdo[at]) & ksvf_mask_byte(player, i);
      differing &= (1U << count) - 1;
      if (differing != 0) keep_difference(player, 8 * i, player->tdo[at], in, differing);
      same = differing == 0;
    }
  }
  if (leave) follow(player, 1);
  return same;
}

static void wait_after_scan(struct KsvfPlayer* player) {
  if (player->run_count > 0) wait_in(player, KSVF_IDLE, player->run_count);
}

static void read_scan(struct KsvfPlayer* player, uint32_t bits, enum KsvfCompare compare) {
  if (bits > KSVF_MAX_BITS) end_with(player, KSVF_SCAN_TOO_LONG);
  if (!playing(player)) return;
  player->bits = bits;
  player->compare = (uint8_t)compare;
  player->tries = 0;
  read_vector(player, player->tdi, bits);
  if (compare != KSVF_COMPARE_NONE) read_vector(player, player->tdo, bits);
}

static void instruction_scan(struct KsvfPlayer* player, uint32_t bits) {
  if (bits == 0) end_with(player, KSVF_BAD_OPERAND);
  read_scan(player, bits, KSVF_COMPARE_NONE);
  if (!playing(player)) return;
  ++player->scan;
  player->instruction = true;
  player->bits_before = 0;
  go_to(player, KSVF_IR_CAPTURE);
  go_to(player, KSVF_IR_SHIFT);
  (void)shift(player, true);
  go_to(player, player->end_ir);
  if (!player->wait_after_data_only) wait_after_scan(player);
}

/* A try that failed is brought to its end like one that matched, with its wait,
   and the scan begins anew: only Capture brings another answer, and the only way
   there leads through Update. The last try is held in Pause instead. */
static void data_scan(struct KsvfPlayer* player, enum KsvfCompare compare) {
  bool same = true;
  read_scan(player, player->data_bits, compare);
  if (!playing(player)) return;
  if (player->bits > 0) {
    ++player->scan;
    player->instruction = false;
    player->bits_before = 0;
  }
  for (;; ++player->tries) {
    if (player->bits > 0) {
      go_to(player, KSVF_DR_CAPTURE);
      go_to(player, KSVF_DR_SHIFT);
      same = shift(player, true);
      if (!same && player->tries == player->repeat) {
        go_to(player, KSVF_DR_PAUSE);
        end_with(player, KSVF_MISMATCH);
        return;
      }
      go_to(player, player->end_dr);
    }
    wait_after_scan(player);
    if (same) return;
  }
}

/* A record of a partitioned scan. The TAP stays in Shift-DR until the last one. */
static void record(struct KsvfPlayer* player, bool first, bool last, enum KsvfCompare compare) {
  const uint32_t before = first ? 0 : player->bits_before + player->bits;
  if (first == player->in_records) {
    end_with(player, KSVF_BAD_ORDER);
    return;
  }
  if (player->data_bits == 0) end_with(player, KSVF_BAD_OPERAND);
  read_scan(player, player->data_bits, compare);
  if (!playing(player)) return;
  player->bits_before = before;
  if (first) {
    ++player->scan;
    player->instruction = false;
    go_to(player, KSVF_DR_CAPTURE);
    go_to(player, KSVF_DR_SHIFT);
  }
  player->in_records = !last;
  if (!shift(player, last)) {
    go_to(player, KSVF_DR_PAUSE);
    end_with(player, KSVF_MISMATCH);
    return;
  }
  if (!last) return;
  go_to(player, player->end_dr);
  wait_after_scan(player);
}

static void comment(struct KsvfPlayer* player) {
  uint8_t character;
  do {
    character = read_byte(player);
#if KSVF_OWN_COMMENT
    if (playing(player)) ksvf_port_comment(player->port, character);
#endif
  } while (character != 0);
}

static bool may_stand_here(const struct KsvfPlayer* player, uint8_t code) {
  if (player->command_offset == 0) return code == KREPEAT;
  return !player->in_records || code == KSDRSIZE || (code >= KSDRB && code <= KSDRTDOE);
}

static void play_command(struct KsvfPlayer* player) {
  const uint32_t offset = player->offset;
  const uint8_t code = read_byte(player);
  uint32_t number;
  uint8_t state;
  if (!playing(player)) return;
  player->command = code;
  player->command_offset = offset;
  if (code > KWAIT || (known_codes >> code & 1) == 0) {
    end_with(player, KSVF_UNKNOWN_COMMAND);
    return;
  }
  if (!may_stand_here(player, code)) {
    end_with(player, KSVF_BAD_ORDER);
    return;
  }
  switch (code) {
    case KCOMPLETE:
      end_with(player, KSVF_DONE);
      return;
    case KTDOMASK:
      read_vector(player, player->mask, player->data_bits);
      player->mask_bits = player->data_bits;
      return;
    case KSIR:
    case KSIR2:
      number = read_number(player, code == KSIR ? 1 : 2);
      instruction_scan(player, number);
      return;
    case KSDR:
    case KSDRTDO:
      data_scan(player, code == KSDR ? KSVF_COMPARE_NONE : KSVF_COMPARE_MASKED);
      return;
    case KRUNTEST:
      player->run_count = read_number(player, 4);
      return;
    case KREPEAT:
      player->repeat = read_byte(player);
      return;
    case KSDRSIZE:
      player->data_bits = read_number(player, 4);
      if (player->data_bits > KSVF_MAX_BITS) end_with(player, KSVF_SCAN_TOO_LONG);
      return;
    case KSDRB:
    case KSDRC:
    case KSDRE:
      record(player, code == KSDRB, code == KSDRE, KSVF_COMPARE_NONE);
      return;
    case KSDRTDOB:
    case KSDRTDOC:
    case KSDRTDOE:
      record(player, code == KSDRTDOB, code == KSDRTDOE, KSVF_COMPARE_ALL);
      return;
    case KSTATE:
      state = read_state(player);
      if (playing(player)) step_to(player, state);
      return;
    case KENDIR:
      player->end_ir = read_end_state(player, KSVF_IR_PAUSE);
      return;
    case KENDDR:
      player->end_dr = read_end_state(player, KSVF_DR_PAUSE);
      return;
    case KCOMMENT:
      comment(player);
      return;
    case KWAIT: {
      const uint8_t during = read_stable_state(player);
      const uint8_t after = read_stable_state(player);
      number = read_number(player, 4);
      if (!playing(player)) return;
      wait_in(player, during, number);
      wait_in(player, after, 0);
      return;
    }
    default:
      return;
  }
}

void ksvf_begin(struct KsvfPlayer* player, void* port) {
  /* Volatile, or a compiler may make a call of memset() out of the loop. */
  volatile unsigned char* bytes = (volatile unsigned char*)player;
  size_t i;
  for (i = 0; i < offsetof(struct KsvfPlayer, tdi); ++i) bytes[i] = 0;
  player->port = port;
  player->end_ir = KSVF_IDLE;
  player->end_dr = KSVF_IDLE;
  go_to(player, KSVF_RESET);
}

enum KsvfResult ksvf_step(struct KsvfPlayer* player) {
  if (playing(player)) {
    play_command(player);
    if (player->result > KSVF_DONE && player->state == KSVF_DR_SHIFT) go_to(player, KSVF_DR_PAUSE);
  }
  return (enum KsvfResult)player->result;
}

enum KsvfResult ksvf_play(struct KsvfPlayer* player) {
  while (ksvf_step(player) == KSVF_PLAYING) continue;
  return (enum KsvfResult)player->result;
}
