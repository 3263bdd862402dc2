#include <cstdio>
#include <string>
#include <vector>

#include "io/system.h"
#include "io/text.h"
#include "shell/prog_mode.h"
#include "shell/version.h"

namespace {

// When the program was built, in the compiler's form ("Nov 26 2018", "03:03:39").
// SOURCE_DATE_EPOCH overrides it, for reproducible builds.
#ifdef TAPFORGE_BUILD_DATE
constexpr const char* kBuildDate = TAPFORGE_BUILD_DATE;
constexpr const char* kBuildTime = TAPFORGE_BUILD_TIME;
#else
constexpr const char* kBuildDate = __DATE__;
constexpr const char* kBuildTime = __TIME__;
#endif

void printBanner() {
  const std::string banner =
      tapforge::concat("\n****** ", kUtilityVersion, "\n  **** Build date : ", kBuildDate, "-",
                       kBuildTime, "\n    ** ", kCopyright, "\n\n\n");
  std::fwrite(banner.data(), 1, banner.size(), stdout);
  // Before an output that leads to the same pipe or terminal.
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  if (!tapforge::prepareProcess()) return 1;
  printBanner();
  const std::vector<std::string> arguments = tapforge::commandLine(argc, argv);
  const ProgMode mode = getProgMode(arguments);
  int status = mode == ProgMode::svf2ksvf
                   ? tapforge::progmode_svf2ksvf::main_svf2ksvf(arguments)
                   : tapforge::progmode_svf2tapbus::main_svf2tapbus(arguments);
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    std::fputs("tapforge: standard output file error\n", stderr);
    status = 1;
  }
  return status;
}
