/* A port of the player to a board that exists in software only. Plays the file
   named, or standard input, and tells the result. -dry only checks the file, -tdo
   also shows the TDO bits of each scan in the order in which they come, and -chain
   tells which devices are there, without any file.

     cc -o board ksvf_*.c simulated_tap.c example_board.c
     ./board [-dry | -tdo] file.ksvf */

#include <stdio.h>
#include <string.h>

#include "ksvf_player.h"
#include "ksvf_report.h"
#include "simulated_tap.h"

struct Board {
  struct SimulatedTap tap;
  FILE* file;
  bool show_tdo;
};

int ksvf_port_read(void* port) {
  const struct Board* board = (const struct Board*)port;
  const int byte = getc(board->file);
  return (byte == EOF) ? -1 : byte;
}

/* On a real board: set TMS and TDI, read TDO, raise TCK, lower TCK. */
int ksvf_port_clock(void* port, int tms, int tdi) {
  struct Board* board = (struct Board*)port;
  const int tdo = simulated_tap_tdo(&board->tap);
  if (board->show_tdo && (board->tap.state == KSVF_DR_SHIFT || board->tap.state == KSVF_IR_SHIFT)) {
    printf((tms != 0) ? "%d\n" : "%d", tdo);
  }
  simulated_tap_clock(&board->tap, tms, tdi);
  return tdo;
}

static void put(void* port, char character) {
  (void)port;
  (void)putchar(character);
}

int main(int argc, char** argv) {
  static struct KsvfPlayer player;
  static struct Board board;
  const char* option = ((argc > 1) && (argv[1][0] == '-')) ? argv[1] : "";
  const char* name = argv[argc - 1];
  simulated_tap_begin(&board.tap);
  if (strcmp(option, "-chain") == 0) {
    return ksvf_report_chain(&board, put) > 0 ? 0 : 1;
  }
  board.show_tdo = strcmp(option, "-tdo") == 0;
  board.file = ((argc > 1) && (name != option)) ? fopen(name, "rb") : stdin;
  if (board.file == NULL) {
    perror(name);
    return 2;
  }
  if (strcmp(option, "-dry") == 0) {
    ksvf_begin_dry(&player, &board);
  } else {
    ksvf_begin(&player, &board);
  }
  (void)ksvf_play(&player);
  ksvf_report_result(&player, put);
  (void)putchar('\n');
  return player.result == KSVF_DONE ? 0 : 1;
}
