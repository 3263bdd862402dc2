/* The lines of a GPIO chip with the simulated TAP at their ends, in place of the kernel;
   tells a sum of all pins at the end, also where a program clocks the TAP without it. */

#include <errno.h>
#include <linux/gpio.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/ioctl.h>

#include "simulated_tap.h"

void plain_tap_clock(struct SimulatedTap* tap, int tms, int tdi);

static unsigned clocks, pins;
static uint64_t level, outputs;
static int tdo;
static struct SimulatedTap chain;

void simulated_tap_clock(struct SimulatedTap* tap, int tms, int tdi) {
  ++clocks;
  pins = (pins ^ (unsigned)(tms + tdi * 2 + simulated_tap_tdo(tap) * 4)) * 16777619U + 1;
  plain_tap_clock(tap, tms, tdi);
}

__attribute__((destructor)) static void tell(void) { printf("%u %08x\n", clocks, pins); }

/* The lines of the request, in its order: TCK, TMS, TDI, TDO, TRST. */
static int request_lines(struct gpio_v2_line_request* request) {
  static const unsigned expected[] = {11, 25, 10, 9, 7};
  const struct gpio_v2_line_config* config = &request->config;
  unsigned i;
  outputs = (1U << request->num_lines) - 1;
  for (i = 0; i < request->num_lines; ++i) {
    if (request->offsets[i] != expected[i]) return EINVAL;
  }
  if (config->flags != GPIO_V2_LINE_FLAG_OUTPUT) return EINVAL;
  for (i = 0; i < config->num_attrs; ++i) {
    const struct gpio_v2_line_attribute* attribute = &config->attrs[i].attr;
    if (attribute->id == GPIO_V2_LINE_ATTR_ID_FLAGS) outputs &= ~config->attrs[i].mask;
    if (attribute->id == GPIO_V2_LINE_ATTR_ID_OUTPUT_VALUES) level = attribute->values;
  }
  simulated_tap_begin(&chain);
  request->fd = 1000;
  return outputs == ((1U << request->num_lines) - 1 - 8) && (level & 1) == 0 ? 0 : EINVAL;
}

static int set_lines(const struct gpio_v2_line_values* values) {
  const uint64_t before = level;
  if ((values->mask & ~outputs) != 0) return EPERM;
  level = (level & ~values->mask) | (values->bits & values->mask);
  if (((level ^ before) & 1) == 0) return (level & 1) != 0 ? EIO : 0; /* while TCK is high */
  if ((level ^ before) != 1) return EIO;                              /* with TCK */
  if ((level & 16) == 0 && (outputs & 16) != 0) return EIO;           /* while TRST is low */
  if ((level & 1) != 0) simulated_tap_clock(&chain, level >> 1 & 1, level >> 2 & 1);
  if ((level & 1) == 0) tdo = simulated_tap_tdo(&chain);
  return 0;
}

int ioctl(int fd, unsigned long request, ...) {
  va_list arguments;
  void* argument;
  va_start(arguments, request);
  argument = va_arg(arguments, void*);
  va_end(arguments);
  errno = ENOTTY;
  if (request == GPIO_V2_GET_LINE_IOCTL) errno = request_lines(argument);
  if (request == GPIO_V2_LINE_SET_VALUES_IOCTL && fd == 1000) errno = set_lines(argument);
  if (request == GPIO_V2_LINE_GET_VALUES_IOCTL && fd == 1000) {
    ((struct gpio_v2_line_values*)argument)->bits = (uint64_t)tdo << 3;
    errno = 0;
  }
  return errno == 0 ? 0 : -1;
}
