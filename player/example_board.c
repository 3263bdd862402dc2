/* A port of the player to a board that exists in software only: one device with
   an instruction register of four bits. Plays the file named, or standard input,
   and tells the result.

     cc -o board ksvf_player.c example_board.c && ./board file.ksvf */

#include <stdio.h>

#include "ksvf_player.h"

/* Instructions; every other one is bypass. */
enum { kIdcode = 1, kUser = 2 };

struct Board {
  FILE* file;
  uint8_t state;       /* of the TAP, numbered as in enum KsvfState */
  uint8_t instruction; /* as updated */
  uint32_t shifted;    /* the register between TDI and TDO */
  unsigned length;     /* its bits */
  uint32_t user;       /* a register to write and read back */
  unsigned busy;       /* clocks in Run-Test/Idle until it has taken what was written */
};

static void capture(struct Board* board) {
  board->length = 32;
  if (board->instruction == kIdcode) {
    board->shifted = 0x1badc0de;
  } else if (board->instruction == kUser) {
    board->shifted = board->busy == 0 ? board->user : 0;
  } else {
    board->shifted = 0;
    board->length = 1;
  }
}

static void enter(struct Board* board, uint8_t state) {
  board->state = state;
  if (state == KSVF_RESET) board->instruction = kIdcode;
  if (state == KSVF_IDLE && board->busy > 0) --board->busy;
  if (state == KSVF_DR_CAPTURE) capture(board);
  if (state == KSVF_IR_CAPTURE) {
    board->shifted = 1;
    board->length = 4;
  }
  if (state == KSVF_IR_UPDATE) board->instruction = (uint8_t)board->shifted;
  if (state == KSVF_DR_UPDATE && board->instruction == kUser && board->busy == 0) {
    board->user = board->shifted;
    board->busy = 50;
  }
}

int ksvf_port_read(void* port) {
  const struct Board* board = (const struct Board*)port;
  const int byte = getc(board->file);
  return byte == EOF ? -1 : byte;
}

/* On a real board: set TMS and TDI, read TDO, raise TCK, lower TCK. */
int ksvf_port_clock(void* port, int tms, int tdi) {
  static const uint8_t after[16][2] = {{1, 0},   {1, 2},   {3, 9},   {4, 5},  {4, 5},   {6, 8},
                                       {6, 7},   {4, 8},   {1, 2},   {10, 0}, {11, 12}, {11, 12},
                                       {13, 15}, {13, 14}, {11, 15}, {1, 2}};
  struct Board* board = (struct Board*)port;
  const int tdo = (int)(board->shifted & 1);
  if (board->state == KSVF_DR_SHIFT || board->state == KSVF_IR_SHIFT) {
    board->shifted >>= 1;
    board->shifted |= (uint32_t)tdi << (board->length - 1);
  }
  enter(board, after[board->state][tms]);
  return tdo;
}

static void tell(const struct KsvfPlayer* player) {
  switch ((enum KsvfResult)player->result) {
    case KSVF_DONE:
      printf("done, %lu scans\n", (unsigned long)player->scan);
      return;
    case KSVF_MISMATCH:
      printf("mismatch in scan %lu: %lu bits wrong, the first is bit %lu, expected %d\n",
             (unsigned long)player->scan, (unsigned long)player->wrong_bits,
             (unsigned long)player->mismatch_bit, player->expected ? 1 : 0);
      return;
    case KSVF_UNKNOWN_COMMAND:
      printf("unknown command %u", player->command);
      break;
    case KSVF_BAD_ORDER:
      printf("command %u out of order", player->command);
      break;
    case KSVF_BAD_OPERAND:
      printf("wrong operand of command %u", player->command);
      break;
    case KSVF_SCAN_TOO_LONG:
      printf("scan of more than %lu bits", (unsigned long)KSVF_MAX_BITS);
      break;
    default:
      printf("file ends in a command");
      break;
  }
  printf(" at byte %lu\n", (unsigned long)player->command_offset);
}

int main(int argc, char** argv) {
  static struct KsvfPlayer player;
  struct Board board = {stdin, KSVF_RESET, kIdcode, 0, 1, 0, 0};
  if (argc > 1) board.file = fopen(argv[1], "rb");
  if (board.file == NULL) {
    perror(argv[1]);
    return 2;
  }
  ksvf_begin(&player, &board);
  (void)ksvf_play(&player);
  tell(&player);
  return player.result == KSVF_DONE ? 0 : 1;
}
