/* A port to GPIO lines of Linux, through the character device of their chip, version 2
   of its interface (Linux 5.10 and later). Checks the file in a dry run, then plays it.

     cc -DKSVF_MAX_BITS=16777216 -o linux_gpio ksvf_player.c ksvf_report.c linux_gpio.c
     ./linux_gpio [-f HZ] [-r TRST] /dev/gpiochip0 11 25 10 9 file.ksvf

   The numbers are the lines of TCK, TMS, TDI and TDO of the chip, as gpioinfo shows them.
   Ctrl-C stops at the next clock. */

#define _POSIX_C_SOURCE 200809L

#include <fcntl.h>
#include <linux/gpio.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <time.h>
#include <unistd.h>

#include "ksvf_player.h"
#include "ksvf_report.h"

#ifndef GPIO_V2_GET_LINE_IOCTL
#error "this <linux/gpio.h> has no version 2 of the GPIO interface"
#endif

/* The lines of one request. TRST, which may be missing, is the last. */
enum { kTck, kTms, kTdi, kTdo, kTrst, kLines };
#define BIT(line) (1U << (line))

struct Board {
  struct KsvfPlayer player;
  FILE* file;
  long size;      /* bytes of the file */
  long percent;   /* shown last */
  int lines;      /* the kernel's handle of them */
  uint32_t level; /* of the outputs */
  double period;  /* least seconds from clock to clock */
  double due;     /* time of the next clock */
};

static volatile sig_atomic_t interrupted;

static void interrupt(int number) {
  (void)number;
  interrupted = 1;
}

/* The TAP stays where it is. */
static void fail(const char* what) {
  perror(what);
  exit(2);
}

static double now(void) {
  struct timespec time;
  (void)clock_gettime(CLOCK_MONOTONIC, &time);
  return (double)time.tv_sec + (double)time.tv_nsec * 1e-9;
}

static void set(struct Board* board, uint32_t level, uint32_t mask) {
  struct gpio_v2_line_values values = {.bits = level, .mask = (level ^ board->level) & mask};
  if (values.mask == 0) {
    return;
  }
  if (ioctl(board->lines, GPIO_V2_LINE_SET_VALUES_IOCTL, &values) != 0) {
    fail("set a line");
  }
  board->level ^= (uint32_t)values.mask;
}

int ksvf_port_clock(void* port, int tms, int tdi) {
  struct Board* board = (struct Board*)port;
  struct gpio_v2_line_values tdo = {.mask = BIT(kTdo)};
  if (interrupted) {
    return KSVF_STOP;
  }
  set(board, (tms != 0 ? BIT(kTms) : 0) | (tdi != 0 ? BIT(kTdi) : 0), BIT(kTms) | BIT(kTdi));
  while (now() < board->due) {
    continue;
  }
  board->due = now() + board->period;
  if (ioctl(board->lines, GPIO_V2_LINE_GET_VALUES_IOCTL, &tdo) != 0) {
    fail("read TDO");
  }
  set(board, BIT(kTck), BIT(kTck));
  set(board, 0, BIT(kTck));
  return (tdo.bits & BIT(kTdo)) != 0;
}

int ksvf_port_read(void* port) {
  struct Board* board = (struct Board*)port;
  const int byte = getc(board->file);
  const long percent = 100 * (long)board->player.offset / (board->size + 1);
  if ((percent != board->percent) && isatty(STDERR_FILENO)) {
    board->percent = percent;
    fprintf(stderr, "%s %2ld %%\r", board->player.dry ? "check" : "play ", percent);
  }
  return (byte == EOF) ? -1 : byte;
}

static void put(void* port, char character) {
  (void)port;
  (void)putchar(character);
}

/* Asks the kernel for the lines. Those that the program drives begin at 1, but for TCK. */
static void open_lines(struct Board* board, const char* chip, unsigned count,
                       const unsigned* numbers) {
  struct gpio_v2_line_request request = {.num_lines = count, .consumer = "ksvf"};
  struct gpio_v2_line_config* config = &request.config;
  const int fd = open(chip, O_RDWR | O_CLOEXEC);
  unsigned line;
  if (fd < 0) {
    fail(chip);
  }
  for (line = 0; line < count; ++line) {
    request.offsets[line] = numbers[line];
  }
  board->level = (BIT(count) - 1) & ~(BIT(kTck) | BIT(kTdo));
  config->flags = GPIO_V2_LINE_FLAG_OUTPUT;
  config->num_attrs = 2;
  config->attrs[0].attr.id = GPIO_V2_LINE_ATTR_ID_FLAGS;
  config->attrs[0].attr.flags = GPIO_V2_LINE_FLAG_INPUT | GPIO_V2_LINE_FLAG_BIAS_PULL_UP;
  config->attrs[0].mask = BIT(kTdo);
  config->attrs[1].attr.id = GPIO_V2_LINE_ATTR_ID_OUTPUT_VALUES;
  config->attrs[1].attr.values = board->level;
  config->attrs[1].mask = (BIT(count) - 1) & ~BIT(kTdo);
  if (ioctl(fd, GPIO_V2_GET_LINE_IOCTL, &request) != 0) {
    fail(chip);
  }
  board->lines = request.fd;
}

static void open_file(struct Board* board, const char* name) {
  board->file = fopen(name, "rb");
  if ((board->file == NULL) || (fseek(board->file, 0, SEEK_END) != 0)) {
    fail(name);
  }
  board->size = ftell(board->file);
  rewind(board->file);
}

static bool told(struct Board* board) {
  if (isatty(STDERR_FILENO)) {
    fputc('\n', stderr);
  }
  ksvf_report_result(&board->player, put);
  (void)putchar('\n');
  return board->player.result == KSVF_DONE;
}

/* Whether the whole text is a number above or at the lowest. */
static bool number_of(const char* text, double lowest, double* number) {
  char* end;
  *number = strtod(text, &end);
  return (end != text) && (*end == '\0') && (*number >= lowest) && (*number < 1e10);
}

static int usage(void) {
  fprintf(stderr,
          "linux_gpio [-f HZ] [-r TRST] CHIP TCK TMS TDI TDO [FILE]\n"
          "Plays FILE; without one it tells which devices are in the chain. HZ is the\n"
          "highest rate of TCK (1000000), TRST a line that is pulsed low at first.\n");
  return 2;
}

int main(int argc, char** argv) {
  static const struct timespec reset_pulse = {0, 1000000};
  static struct Board board = {.period = 1e-6};
  unsigned numbers[kLines];
  unsigned count = kTrst;
  double number;
  char** arguments;
  int given;
  int option;
  int line;
  while ((option = getopt(argc, argv, "f:r:")) != -1) {
    if ((option == '?') || !number_of(optarg, (option == 'f') ? 1e-3 : 0, &number)) {
      return usage();
    }
    if (option == 'f') {
      board.period = 1 / number;
    } else {
      numbers[kTrst] = (unsigned)number;
      count = kLines;
    }
  }
  arguments = argv + optind;
  given = argc - optind;
  if ((given < 5) || (given > 6)) {
    return usage();
  }
  for (line = kTck; line <= kTdo; ++line) {
    if (!number_of(arguments[1 + line], 0, &number)) {
      return usage();
    }
    numbers[line] = (unsigned)number;
  }
  if (given == 6) {
    open_file(&board, arguments[5]);
    ksvf_begin_dry(&board.player, &board);
    if (ksvf_play(&board.player) != KSVF_DONE) {
      printf("refused before any pin was moved: ");
      return told(&board) ? 0 : 1;
    }
  }
  open_lines(&board, arguments[0], count, numbers);
  (void)signal(SIGINT, interrupt);
  if (count > kTrst) {
    set(&board, 0, BIT(kTrst));
    (void)nanosleep(&reset_pulse, NULL);
    set(&board, BIT(kTrst), BIT(kTrst));
  }
  if (given == 5) {
    return ksvf_report_chain(&board, put) > 0 ? 0 : 1;
  }
  rewind(board.file);
  ksvf_begin(&board.player, &board);
  (void)ksvf_play(&board.player);
  return told(&board) ? 0 : 1;
}
