#include "serial_port.h"

#include "ksvf_player.h"
#include "ksvf_report.h"

enum { kTries = 20, kChain = 254 };

static struct KsvfPlayer player;
static uint8_t block[KSVF_BLOCK];
static uint8_t length;    /* bytes of the file in it */
static uint8_t next;      /* the first one that the player has not read */
static uint32_t offset;   /* in the file, behind the block */
static const char* phase; /* "check" or "play" */
static uint32_t question; /* its number, so that a late answer is none to the next one */
static uint16_t crc;      /* of the answer so far */
static bool chain_wanted;

static void put(void* port, char character) {
  (void)port;
  serial_put((unsigned char)character);
}

static void add_to_crc(uint8_t byte) {
  uint8_t bit;
  crc ^= (uint16_t)(byte << 8);
  for (bit = 0; bit < 8; ++bit) {
    const uint16_t feedback = ((crc & 0x8000U) != 0) ? 0x1021 : 0;
    crc = (uint16_t)((crc << 1) ^ feedback);
  }
}

/* -1 where a byte does not come in time. The checksum of a whole answer is 0. */
static int get(void) {
  const int byte = serial_get();
  if (byte >= 0) {
    add_to_crc((uint8_t)byte);
  }
  return byte;
}

/* Asks for the block at `offset` once. Returns its first byte, the length or what
   the PC wants instead; -1 where the answer is not whole. */
static int ask(void) {
  int count;
  int byte;
  int i;
  ksvf_put_text(&player, put, phase);
  put(&player, ' ');
  ksvf_put_number(&player, put, offset, 10, 1);
  put(&player, ' ');
  ksvf_put_number(&player, put, KSVF_BLOCK, 10, 1);
  put(&player, ' ');
  ++question;
  ksvf_put_number(&player, put, question, 10, 1);
  put(&player, '\n');
  crc = 0xffff;
  for (i = 24; i >= 0; i -= 8) {
    add_to_crc((uint8_t)(question >> i));
  }
  count = get();
  byte = count;
  for (i = 0; (i < count) && (count <= KSVF_BLOCK) && (byte >= 0); ++i) {
    byte = get();
    block[i] = (uint8_t)byte;
  }
  for (i = 0; (i < 2) && (byte >= 0); ++i) {
    byte = get();
  }
  if (byte < 0) {
    return -1;
  }
  if (crc == 0) {
    return count;
  }
  /* Noise, or the answer to a question that was given up: let it pass. */
  for (i = 0; (i < 1000) && (serial_get() >= 0); ++i) {
    continue;
  }
  return -1;
}

int ksvf_port_read(void* port) {
  int count = -1;
  int tries;
  (void)port;
  if (next < length) {
    return block[next++];
  }
  /* Before the first block there is no play that a silent PC could leave behind. */
  for (tries = 0; (tries < kTries) && (count < 0); ++tries) {
    count = ask();
    if ((offset == 0) && player.dry) {
      tries = 0;
    }
  }
  chain_wanted = (count == kChain) && (offset == 0) && player.dry;
  if (count > KSVF_BLOCK) {
    return KSVF_STOP;
  }
  if (count <= 0) {
    return -1;
  }
  length = (uint8_t)count;
  offset += length;
  next = 1;
  return block[0];
}

static bool play(const char* name) {
  phase = name;
  offset = 0;
  length = 0;
  next = 0;
  return ksvf_play(&player) == KSVF_DONE;
}

void serial_port_serve(void) {
  ksvf_begin_dry(&player, &player);
  if (play("check")) {
    ksvf_begin(&player, &player);
    (void)play("play");
  }
  if (chain_wanted) {
    (void)ksvf_report_chain(&player, put);
    ksvf_put_text(&player, put, "end chain");
  } else {
    ksvf_put_text(&player, put, "end ");
    ksvf_report_result(&player, put);
  }
  put(&player, '\n');
}
