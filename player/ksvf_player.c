#include "ksvf_player.h"

/* Bit c: there is a command with code c. */
static const uint32_t known_codes = 0xfff39f;

/* The state after a clock: with TMS 0 in the low digit, with TMS 1 in the high one. */
static const uint8_t next_state[16] = {0x01, 0x21, 0x93, 0x54, 0x54, 0x86, 0x76, 0x84,
                                       0x21, 0x0a, 0xcb, 0xcb, 0xfd, 0xed, 0xfb, 0x21};

/* Bit t of a state's entry is TMS for the first clock of the shortest way from
   there to state t. */
static const uint16_t way[16] = {0x0001, 0xfffd, 0xfe03, 0xffef, 0xffef, 0xff0f, 0xffbf, 0xff0f,
                                 0xfffd, 0x03ff, 0xf7ff, 0xf7ff, 0x87ff, 0xdfff, 0x87ff, 0xfffd};

static size_t bytes_of(uint32_t bits) { return (size_t)((bits + 7) / 8); }
static uint32_t digits_of(uint32_t bits) { return (bits + 3) / 4; }
static bool playing(const struct KsvfPlayer* player) { return player->result == KSVF_PLAYING; }

/* The first fault ends the play, so what comes after it does not hide it. */
static void end_with(struct KsvfPlayer* player, enum KsvfResult result) {
  if (playing(player)) {
    player->result = (uint8_t)result;
  }
}

/* Reading the file. At its end all of these end the play, and give zeros. */

static uint8_t read_byte(struct KsvfPlayer* player) {
  const int byte = playing(player) ? ksvf_port_read(player->port) : -1;
  if (byte < 0) {
    end_with(player, (byte == KSVF_STOP) ? KSVF_STOPPED : KSVF_TOO_SHORT);
    return 0;
  }
  ++player->offset;
  return (uint8_t)byte;
}

static uint32_t read_number(struct KsvfPlayer* player, int bytes) {
  uint32_t number = 0;
  int i;
  for (i = 0; i < bytes; ++i) {
    number = (number << 8) | read_byte(player);
  }
  return number;
}

static void read_vector(struct KsvfPlayer* player, uint8_t* vector, uint32_t bits) {
  const size_t bytes = bytes_of(bits);
  size_t i;
  for (i = 0; (i < bytes) && playing(player); ++i) {
    vector[i] = read_byte(player);
  }
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
  const bool stable = (state == KSVF_RESET) || (state == KSVF_IDLE) || (state == KSVF_DR_PAUSE) ||
                      (state == KSVF_IR_PAUSE);
  if (!stable) {
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

static void clock_tms(struct KsvfPlayer* player, int tms) {
  if (stopped(player)) {
    return;
  }
  if (player->dry || !stops(player, ksvf_port_clock(player->port, tms, 1))) {
    follow(player, tms);
  }
}

/* The shortest way; to reset five clocks, which lead there from anywhere, so
   that a TAP that lost a clock on the board is with the player again. */
static void go_to(struct KsvfPlayer* player, uint8_t target) {
  if (target == KSVF_RESET) {
    int i;
    for (i = 0; i < 5; ++i) {
      clock_tms(player, 1);
    }
  }
  while ((player->state != target) && !stopped(player)) {
    clock_tms(player, (way[player->state] >> target) & 1);
  }
}

/* The writer may name each step of a path, also one that stays where it is. */
static void step_to(struct KsvfPlayer* player, uint8_t target) {
  const bool stays = (next_state[target] & 15) == target;
  if ((player->state == target) && stays) {
    clock_tms(player, 0);
  }
  go_to(player, target);
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

static unsigned mask_digit(const struct KsvfPlayer* player, int32_t digit) {
  const uint32_t at = (uint32_t)digit;
  unsigned byte;
  if ((digit < 0) || (at >= digits_of(player->mask_bits))) {
    return 0;
  }
  byte = player->mask[bytes_of(player->mask_bits) - 1 - (at / 2)];
  return ((at % 2) != 0) ? (byte >> 4) : (byte & 15);
}

/* A scan takes the leading digits of the last mask, as many as it has itself. */
uint8_t ksvf_mask_byte(const struct KsvfPlayer* player, uint32_t index) {
  int32_t digit;
  if (player->compare != KSVF_COMPARE_MASKED) {
    return (player->compare == KSVF_COMPARE_ALL) ? 255 : 0;
  }
  digit = (int32_t)digits_of(player->mask_bits) - (int32_t)digits_of(player->bits);
  digit += (int32_t)index * 2;
  return (uint8_t)(mask_digit(player, digit) | (mask_digit(player, digit + 1) << 4));
}

/* Compares eight bits that came out, from bit 8 * index on, with those of the file. */
static void compare(struct KsvfPlayer* player, size_t index, uint8_t expected, unsigned differing) {
  unsigned bit;
  for (bit = 0; bit < 8; ++bit) {
    if (((differing >> bit) & 1) == 0) {
      continue;
    }
    if (player->wrong_bits == 0) {
      player->mismatch_bit = player->bits_before + (uint32_t)index * 8 + bit;
      player->expected = ((expected >> bit) & 1) != 0;
    }
    ++player->wrong_bits;
  }
}

/* Clocks the vector through the register; `leave` takes the TAP out of the shift
   state with the last bit. All bits are shifted even when one has differed:
   Update must never find a vector that is only half there. */
static bool shift(struct KsvfPlayer* player, bool leave) {
  const size_t bytes = bytes_of(player->bits);
  size_t i;
  player->wrong_bits = 0;
  for (i = 0; (i < bytes) && !player->dry; ++i) {
    const size_t at = bytes - 1 - i;
    const uint8_t unused = (uint8_t)((at != 0) ? 0 : ((bytes * 8) - player->bits));
    const uint8_t last = (leave && (at == 0)) ? 1 : 0;
    uint8_t out = player->tdi[at];
    uint8_t in = 0;
    uint8_t left;
    for (left = (uint8_t)(8 - unused); left != 0; --left) {
      const int tdo = ksvf_port_clock(player->port, (left == last) ? 1 : 0, out & 1);
      if (stops(player, tdo)) {
        return true;
      }
      out >>= 1;
      in >>= 1;
      if (tdo != 0) {
        in |= 0x80;
      }
    }
    in = (uint8_t)(in >> unused);
    if ((player->compare != KSVF_COMPARE_NONE) && (in != player->tdo[at])) {
      unsigned differing = (in ^ player->tdo[at]) & ksvf_mask_byte(player, (uint32_t)i);
      differing &= 0xffU >> unused;
      if (differing != 0) {
        compare(player, i, player->tdo[at], differing);
      }
    }
  }
  if (leave && !stopped(player)) {
    follow(player, 1);
  }
  return player->wrong_bits == 0;
}

static void wait_after_scan(struct KsvfPlayer* player) {
  if (player->run_count > 0) {
    wait_in(player, KSVF_IDLE, player->run_count);
  }
}

static void read_scan(struct KsvfPlayer* player, uint32_t bits, enum KsvfCompare compared) {
  if (bits > KSVF_MAX_BITS) {
    end_with(player, KSVF_SCAN_TOO_LONG);
  }
  if (!playing(player)) {
    return;
  }
  player->bits = bits;
  player->compare = (uint8_t)compared;
  player->tries = 0;
  read_vector(player, player->tdi, bits);
  if (compared != KSVF_COMPARE_NONE) {
    read_vector(player, player->tdo, bits);
  }
}

static void instruction_scan(struct KsvfPlayer* player, uint32_t bits) {
  if (bits == 0) {
    end_with(player, KSVF_BAD_OPERAND);
  }
  read_scan(player, bits, KSVF_COMPARE_NONE);
  if (!playing(player)) {
    return;
  }
  ++player->scan;
  player->instruction = true;
  player->bits_before = 0;
  go_to(player, KSVF_IR_CAPTURE);
  go_to(player, KSVF_IR_SHIFT);
  if (stopped(player)) {
    return;
  }
  (void)shift(player, true);
  go_to(player, player->end_ir);
  if (!player->wait_after_data_only) {
    wait_after_scan(player);
  }
}

/* A try that failed is brought to its end like one that matched, with its wait,
   and the scan begins anew: only Capture brings another answer, and the only way
   there leads through Update. The last try is held in Pause instead. */
static void data_scan(struct KsvfPlayer* player, enum KsvfCompare compared) {
  bool same = true;
  read_scan(player, player->data_bits, compared);
  if (!playing(player)) {
    return;
  }
  if (player->bits > 0) {
    ++player->scan;
    player->instruction = false;
    player->bits_before = 0;
  }
  for (;; ++player->tries) {
    if (player->bits > 0) {
      go_to(player, KSVF_DR_CAPTURE);
      go_to(player, KSVF_DR_SHIFT);
      if (stopped(player)) {
        return;
      }
      same = shift(player, true);
      if (!same && (player->tries == player->repeat)) {
        go_to(player, KSVF_DR_PAUSE);
        end_with(player, KSVF_MISMATCH);
        return;
      }
      go_to(player, player->end_dr);
    }
    wait_after_scan(player);
    if (same || stopped(player)) {
      return;
    }
  }
}

/* A record of a partitioned scan. The TAP stays in Shift-DR until the last one. */
static void record(struct KsvfPlayer* player, bool first, bool last, enum KsvfCompare compared) {
  const uint32_t before = first ? 0 : (player->bits_before + player->bits);
  if (first == player->in_records) {
    end_with(player, KSVF_BAD_ORDER);
    return;
  }
  if (player->data_bits == 0) {
    end_with(player, KSVF_BAD_OPERAND);
  }
  read_scan(player, player->data_bits, compared);
  if (!playing(player)) {
    return;
  }
  player->bits_before = before;
  if (first) {
    ++player->scan;
    player->instruction = false;
    go_to(player, KSVF_DR_CAPTURE);
    go_to(player, KSVF_DR_SHIFT);
    if (stopped(player)) {
      return;
    }
  }
  player->in_records = !last;
  if (!shift(player, last)) {
    go_to(player, KSVF_DR_PAUSE);
    end_with(player, KSVF_MISMATCH);
    return;
  }
  if (last) {
    go_to(player, player->end_dr);
    wait_after_scan(player);
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

static bool may_stand_here(const struct KsvfPlayer* player, uint8_t code) {
  if (player->command_offset == 0) {
    return code == KSVF_KREPEAT;
  }
  return !player->in_records || (code == KSVF_KSDRSIZE) ||
         ((code >= KSVF_KSDRB) && (code <= KSVF_KSDRTDOE));
}

static void play_command(struct KsvfPlayer* player) {
  const uint32_t offset = player->offset;
  const uint8_t code = read_byte(player);
  uint32_t number;
  uint8_t state;
  if (!playing(player)) {
    return;
  }
  player->command = code;
  player->command_offset = offset;
  if ((code > KSVF_KWAIT) || (((known_codes >> code) & 1) == 0)) {
    end_with(player, KSVF_UNKNOWN_COMMAND);
    return;
  }
  if (!may_stand_here(player, code)) {
    end_with(player, KSVF_BAD_ORDER);
    return;
  }
  switch (code) {
    case KSVF_KCOMPLETE:
      end_with(player, KSVF_DONE);
      return;
    case KSVF_KTDOMASK:
      read_vector(player, player->mask, player->data_bits);
      player->mask_bits = player->data_bits;
      return;
    case KSVF_KSIR:
    case KSVF_KSIR2:
      number = read_number(player, (code == KSVF_KSIR) ? 1 : 2);
      instruction_scan(player, number);
      return;
    case KSVF_KSDR:
    case KSVF_KSDRTDO:
      data_scan(player, (code == KSVF_KSDR) ? KSVF_COMPARE_NONE : KSVF_COMPARE_MASKED);
      return;
    case KSVF_KRUNTEST:
      player->run_count = read_number(player, 4);
      return;
    case KSVF_KREPEAT:
      player->repeat = read_byte(player);
      return;
    case KSVF_KSDRSIZE:
      player->data_bits = read_number(player, 4);
      if (player->data_bits > KSVF_MAX_BITS) {
        end_with(player, KSVF_SCAN_TOO_LONG);
      }
      return;
    case KSVF_KSDRB:
    case KSVF_KSDRC:
    case KSVF_KSDRE:
      record(player, code == KSVF_KSDRB, code == KSVF_KSDRE, KSVF_COMPARE_NONE);
      return;
    case KSVF_KSDRTDOB:
    case KSVF_KSDRTDOC:
    case KSVF_KSDRTDOE:
      record(player, code == KSVF_KSDRTDOB, code == KSVF_KSDRTDOE, KSVF_COMPARE_ALL);
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
  for (i = 0; i < offsetof(struct KsvfPlayer, tdi); ++i) {
    bytes[i] = 0;
  }
  player->port = port;
  player->dry = dry;
  player->end_ir = KSVF_IDLE;
  player->end_dr = KSVF_IDLE;
  if (size != sizeof(struct KsvfPlayer)) {
    end_with(player, KSVF_WRONG_SIZE);
    return;
  }
  go_to(player, KSVF_RESET);
}

enum KsvfResult ksvf_step(struct KsvfPlayer* player) {
  if (playing(player)) {
    play_command(player);
    if (player->result > KSVF_DONE) {
      if (player->state == KSVF_DR_SHIFT) {
        go_to(player, KSVF_DR_PAUSE);
      }
      if (player->state == KSVF_IR_SHIFT) {
        go_to(player, KSVF_IR_PAUSE);
      }
    }
  }
  return (enum KsvfResult)player->result;
}

enum KsvfResult ksvf_play(struct KsvfPlayer* player) {
  while (ksvf_step(player) == KSVF_PLAYING) {
    continue;
  }
  return (enum KsvfResult)player->result;
}
