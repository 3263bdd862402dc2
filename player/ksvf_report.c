#include "ksvf_report.h"

/* Texts have a letter behind each %: which number of the player stands there. */
static const char* text_of(enum KsvfResult result) {
  switch (result) {
    case KSVF_PLAYING:
      return "playing, at byte %o";
    case KSVF_DONE:
      return "done, %n scans";
    case KSVF_MISMATCH:
      return "mismatch in scan %n: %w bits wrong, the first is bit %b, expected %e";
    case KSVF_UNKNOWN_COMMAND:
      return "unknown command %c at byte %o";
    case KSVF_BAD_ORDER:
      return "command %c out of order at byte %o";
    case KSVF_BAD_OPERAND:
      return "wrong operand of command %c at byte %o";
    case KSVF_SCAN_TOO_LONG:
      return "scan of more than %m bits at byte %o";
    case KSVF_TOO_SHORT:
      return "file ends in a command at byte %o";
    case KSVF_STOPPED:
      return "stopped in scan %n, TAP state %s";
    case KSVF_WRONG_SIZE:
      break;
  }
  return "the player was compiled with another KSVF_MAX_BITS";
}

static uint32_t number_of(const struct KsvfPlayer* player, char letter) {
  switch (letter) {
    case 'n':
      return player->scan;
    case 'w':
      return player->wrong_bits;
    case 'b':
      return player->mismatch_bit;
    case 'e':
      return player->expected ? 1 : 0;
    case 'c':
      return player->command;
    case 'm':
      return KSVF_MAX_BITS;
    case 's':
      return player->state;
    default:
      return player->command_offset;
  }
}

void ksvf_put_number(void* port, KsvfPut put, uint32_t number, uint8_t base, uint8_t least) {
  char digits[10];
  uint32_t rest = number;
  uint8_t count = 0;
  do {
    digits[count] = "0123456789abcdef"[rest % base];
    rest /= base;
    ++count;
  } while ((rest > 0) || (count < least));
  while (count > 0) {
    --count;
    put(port, digits[count]);
  }
}

void ksvf_put_text(void* port, KsvfPut put, const char* text) {
  size_t i;
  for (i = 0; text[i] != 0; ++i) {
    put(port, text[i]);
  }
}

void ksvf_report_result(const struct KsvfPlayer* player, KsvfPut put) {
  const char* text = text_of((enum KsvfResult)player->result);
  for (; *text != 0; ++text) {
    if (*text == '%') {
      ++text;
      ksvf_put_number(player->port, put, number_of(player, *text), 10, 1);
    } else {
      put(player->port, *text);
    }
  }
}

static void put_device(void* port, KsvfPut put, unsigned device, uint32_t idcode) {
  ksvf_put_text(port, put, "device ");
  ksvf_put_number(port, put, device, 10, 1);
  ksvf_put_text(port, put, idcode == 0 ? ": no IDCODE" : ": IDCODE ");
  if (idcode != 0) {
    ksvf_put_number(port, put, idcode, 16, 8);
  }
  put(port, '\n');
}

unsigned ksvf_report_chain(void* port, KsvfPut put) {
  static const uint8_t to_shift_dr[] = {1, 1, 1, 1, 1, 0, 1, 0, 0};
  enum { kMost = 64 }; /* devices; also those in a row that have no IDCODE */
  unsigned devices = 0;
  unsigned zeros = 0;
  unsigned i;
  uint32_t idcode = 0;
  for (i = 0; i < sizeof to_shift_dr; ++i) {
    (void)ksvf_port_clock(port, to_shift_dr[i], 1);
  }
  while ((zeros < kMost) && (devices < kMost) && (idcode != 0xffffffff)) {
    if (ksvf_port_clock(port, 0, 1) == 0) {
      ++zeros;
      continue;
    }
    idcode = 1;
    for (i = 1; i < 32; ++i) {
      if (ksvf_port_clock(port, 0, 1) != 0) {
        idcode |= (uint32_t)1 << i;
      }
    }
    for (; zeros > 0; --zeros) {
      put_device(port, put, ++devices, 0);
    }
    /* 1s only are those that went in at TDI, and have come through the chain. */
    if (idcode != 0xffffffff) {
      put_device(port, put, ++devices, idcode);
    }
  }
  for (i = 0; i < 5; ++i) {
    (void)ksvf_port_clock(port, 1, 1);
  }
  if (devices >= kMost) {
    ksvf_put_text(port, put, "no end of the chain\n");
  }
  if (zeros == kMost) {
    ksvf_put_text(port, put, "TDO stays 0\n");
  }
  if (zeros + devices == 0) {
    ksvf_put_text(port, put, "no device: TDO stays 1\n");
  }
  return devices;
}
