#include "shell/prog_mode.h"

#include <array>
#include <clocale>
#include <cstdio>
#include <ctime>
#include <string>

namespace {

// Sets one of two names for the same locale; null when the system has neither.
const char* setEither(const char* first, const char* second) {
  const char* name = std::setlocale(LC_NUMERIC, first);
  return name != nullptr ? name : std::setlocale(LC_NUMERIC, second);
}

void printSamples() {
  std::printf("  = Floating pt sample   : [%10.4f]\n", 804.76);
  std::printf("  = Scientific notation  : [%6.3e]\n", 543773.0);
}

void printConventions(std::time_t now) {
  std::array<char, 81> date{};
  if (const std::tm* local = std::localtime(&now); local != nullptr) {
    std::strftime(date.data(), date.size(), "%c", local);
  }
  const std::lconv* conventions = std::localeconv();
  std::printf("- Date is                : [%s]\n", date.data());
  std::printf("- Currency symbol is     : [%s]\n", conventions->currency_symbol);
  std::printf("- Decimal point symbol is: [%s]\n", conventions->decimal_point);
  printSamples();
}

struct Pass {
  const char* label;
  const char* locale;       // null: ask for the current one
  const char* alternative;  // tried when `locale` cannot be set
  const char* failure;
};

}  // namespace

void checkSysLocale() {
  const std::time_t now = std::time(nullptr);
  const std::string initial = std::setlocale(LC_NUMERIC, nullptr);
  const std::array<Pass, 6> passes = {{
      {"Original locale          ", nullptr, nullptr, ""},
      {"Set to env default locale", "", "", ""},
      {"Set to minimal C locale  ", "C", "C", ""},
      {"Set to English locale    ", "en_US", "en-US", "Cannot set to English char set !"},
      {"Set to German locale     ", "de-AT", "de_DE", "Cannot set to German char set !"},
      {"Reset to original locale ", initial.c_str(), initial.c_str(), ""},
  }};
  int number = 0;
  for (const Pass& pass : passes) {
    std::printf("===[%6d]=================================================\n", number++);
    std::puts("- before setlocale()");
    printSamples();
    const char* name = setEither(pass.locale, pass.alternative);
    if (name == nullptr && *pass.failure != '\0') {
      std::puts(pass.failure);
      continue;
    }
    // An environment that names a locale the system lacks gives no name.
    std::printf("%s: [%s]\n", pass.label, name != nullptr ? name : "");
    printConventions(now);
  }
  std::puts(std::string(60, '=').c_str());
}
