#include "shell/prog_mode.h"

#include <cstdio>

ProgMode getProgMode(std::span<const std::string> arguments) {
  ProgMode mode = ProgMode::unset;
  const auto set = [&mode](ProgMode named) {
    if (mode != ProgMode::unset) {
      std::printf("Program mode already set to %d", static_cast<int>(mode));
    }
    mode = named;
  };
  for (const std::string& argument : arguments) {
    if (argument == "-tapbus") {
      set(ProgMode::svf2tapbus);
    } else if (argument == "-ksvf") {
      set(ProgMode::svf2ksvf);
    } else if (argument == "-check_locale") {
      checkSysLocale();
    }
  }
  return mode;
}
