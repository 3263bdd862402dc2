#include <csignal>
#include <cstdio>
#include <span>

#include "shell/build_date.h"
#include "shell/prog_mode.h"
#include "shell/run_program.h"

namespace {

void printBanner() {
  std::printf(
      "\n****** Ondrel SVF utility v2015.1\n"
      "  **** Build date : %s-%s\n"
      "    ** %.*s\n\n\n",
      kBuildDate, kBuildTime, static_cast<int>(tapforge::kCopyright.size()),
      tapforge::kCopyright.data());
}

// A file opened while a standard stream is closed would take its place, and
// messages would end up in it.
bool holdStandardStreams() {
  for (;;) {
    std::FILE* file = std::fopen("/dev/null", "r+");
    if (file == nullptr) return false;
    if (fileno(file) > 2) {
      std::fclose(file);
      return true;
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  // A closed pipe and a file that may grow no more are write errors like any
  // other, with their message.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  if (!holdStandardStreams()) return 1;
  printBanner();
  const std::span<char*> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const ProgMode mode = getProgMode(arguments);
  int status = mode == ProgMode::svf2ksvf ? progmode_svf2ksvf::main_svf2ksvf(arguments)
                                          : progmode_svf2tapbus::main_svf2tapbus(arguments);
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    std::fputs("tapforge: standard output file error\n", stderr);
    status = 1;
  }
  return status;
}
