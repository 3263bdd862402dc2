/* A port to a Cortex-M0: the nRF51822 of the first micro:bit, without any library.
   The file comes over its USB serial line (serial_port.h), the chain is at pins of
   its edge connector: TCK at P13, TDO at P14, TDI at P15, TMS at P16, all 3.3 V.
   TCK stays below 200 kHz, so files that were converted with -tck_freq 1000000 wait
   long enough.

     arm-none-eabi-gcc -std=c99 -mthumb -mcpu=cortex-m0 -Os -nostdlib -ffreestanding \
         -Wl,-e0,--section-start=.vectors=0,-Ttext=0x100,-Tdata=0x20000000 -o microbit.elf \
         microbit.c serial_port.c ksvf_player.c ksvf_report.c -lgcc
     arm-none-eabi-objcopy -O ihex microbit.elf microbit.hex
     python3 send_ksvf.py /dev/ttyACM0 file.ksvf */

#include "ksvf_player.h"
#include "serial_port.h"

/* Pins of the chip: of the edge connector, and those that go to the USB chip. */
enum { kTms = 16, kTdi = 21, kTdo = 22, kTck = 23, kTx = 24, kRx = 25 };

#define REGISTER(address) (*(volatile uint32_t*)(address))
#define GPIO(offset) REGISTER(0x50000000U + (offset))
#define UART(offset) REGISTER(0x40002000U + (offset))
#define TIMER(offset) REGISTER(0x40008000U + (offset))

static void set_pin(int pin, int level) { GPIO(level != 0 ? 0x508U : 0x50cU) = 1UL << pin; }

int ksvf_port_clock(void* port, int tms, int tdi) {
  int tdo;
  (void)port;
  set_pin(kTms, tms);
  set_pin(kTdi, tdi);
  tdo = (int)((GPIO(0x510U) >> kTdo) & 1U);
  set_pin(kTck, 1);
  set_pin(kTck, 0);
  return tdo;
}

void serial_put(unsigned char byte) {
  UART(0x11cU) = 0; /* TXDRDY */
  UART(0x51cU) = byte;
  while (UART(0x11cU) == 0) {
    continue;
  }
}

int serial_get(void) {
  TIMER(0x00cU) = 1;          /* CLEAR */
  while (UART(0x108U) == 0) { /* RXDRDY */
    TIMER(0x040U) = 1;        /* CAPTURE to CC[0] */
    if (TIMER(0x540U) > 500000U) {
      return -1;
    }
  }
  UART(0x108U) = 0;
  return (int)(UART(0x518U) & 0xffU);
}

int main(void) {
  GPIO(0x518U) = (1UL << kTck) | (1UL << kTms) | (1UL << kTdi) | (1UL << kTx); /* DIRSET */
  GPIO(0x700U + 4 * kTdo) = 12; /* PIN_CNF: input, pulled up as TDO of a chain that floats */
  GPIO(0x700U + 4 * kRx) = 0;
  TIMER(0x508U) = 3; /* BITMODE: 32 bits */
  TIMER(0x510U) = 4; /* PRESCALER: microseconds */
  TIMER(0x000U) = 1;
  UART(0x50cU) = kTx;
  UART(0x514U) = kRx;
  UART(0x524U) = 0x01d7e000U; /* 115200 baud */
  UART(0x500U) = 4;           /* ENABLE */
  UART(0x000U) = 1;           /* STARTRX */
  UART(0x008U) = 1;           /* STARTTX */
  for (;;) {
    serial_port_serve();
  }
}

/* What the chip finds at address 0, and what it does first. */

extern uint32_t __bss_start__[];
extern uint32_t __bss_end__[];

static void reset(void) {
  volatile uint32_t* word;
  for (word = __bss_start__; (uintptr_t)word < (uintptr_t)__bss_end__; ++word) {
    *word = 0;
  }
  (void)main();
}

static void fault(void) {
  for (;;) {
    continue;
  }
}

__attribute__((section(".vectors"), used)) static void (*const vectors[])(void) = {
    (void (*)(void))0x20004000, reset, fault, fault};
