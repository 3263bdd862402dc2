/* Runs a program for an ATmega1284P, by simavr. It finds the next byte of standard
   input in GPIOR0, not 0 in GPIOR1 when there is none; GPIOR2 is standard output.
   Ends with the first line. */

#include <simavr/sim_avr.h>
#include <simavr/sim_elf.h>
#include <stdio.h>

enum { kGpior0 = 0x3e, kGpior1 = 0x4a, kGpior2 = 0x4b };

static int ahead;
static uint8_t last;

static uint8_t next_byte(avr_t* avr, avr_io_addr_t address, void* param) {
  const int byte = ahead;
  (void)avr, (void)address, (void)param;
  ahead = getchar();
  return (uint8_t)byte;
}

static uint8_t at_end(avr_t* avr, avr_io_addr_t address, void* param) {
  (void)avr, (void)address, (void)param;
  return ahead == EOF;
}

static void put(avr_t* avr, avr_io_addr_t address, uint8_t value, void* param) {
  (void)avr, (void)address, (void)param;
  putchar(last = value);
}

int main(int argc, char** argv) {
  elf_firmware_t program = {0};
  avr_t* avr = avr_make_mcu_by_name("atmega1284p");
  if (argc != 2 || avr == NULL || elf_read_firmware(argv[1], &program) != 0) return 2;
  avr_init(avr);
  avr_load_firmware(avr, &program);
  avr->frequency = 16000000;
  ahead = getchar();
  avr_register_io_read(avr, kGpior0, next_byte, NULL);
  avr_register_io_read(avr, kGpior1, at_end, NULL);
  avr_register_io_write(avr, kGpior2, put, NULL);
  while (last != '\n' && avr->cycle < 4000000000) {
    if (avr_run(avr) == cpu_Crashed) return 1;
  }
  return last == '\n' ? 0 : 1;
}
