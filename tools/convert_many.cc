// Converts the files whose names it reads, one a line, with many options each and
// in one process, since starting a program under an emulator takes long. Prints
// the messages and the status of each conversion and a checksum of what it wrote:
// machines that print the same have written the same bytes. Its outputs in the
// current folder are named output and listing.

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "io/system.h"
#include "shell/prog_mode.h"

namespace {

constexpr const char* kOptions[] = {
    "-w",
    "-w -c -wait 3",
    "-w -exact",
    "-w -s -wait 7",
    "-tapbus -w",
    "-tapbus -w -c -linenum 2 -tck_freq 999999",
    "-tapbus -w -exact -max_rti_tck 90000 -tck_freq 999999",
    "-tapbus -w -s -wait 0x10 -max_rti_tck 90000 -tck_freq 3000000",
    "-ksvf -w -a listing -tck_freq 1000000",
    "-ksvf -w -a listing -tck_freq 3000000 -fpga",
    "-ksvf -w -a listing -tck_freq 12345678 -fpga -rlen 68 -useKSDR -v2",
    "-ksvf -w -a listing -tck_freq 7654321 -kwait -kprintsrc 3",
    "-ksvf -w -a listing -tck_freq 1000000 -extensions -multiple_runtest",
    "-ksvf -w -a listing -tck_freq 1000000 -exact",
    "-ksvf -w -a listing -tck_freq 1000000 -extensions -kwait -useKSDR -s",
    "-ksvf -w -a listing -tck_freq 60 -inorder -runmin 100 -r 255 -kprintsrc 2",
};

void printChecksum(const char* name) {
  std::ifstream file(name, std::ios::binary);
  if (!file) return;
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  std::uint64_t hash = 0xcbf29ce484222325;  // FNV-1a
  for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
  std::printf("%s: %zu bytes, %016" PRIx64 "\n", name, bytes.size(), hash);
}

void convert(const std::string& options, const std::string& file) {
  std::printf("=== %s: %s\n", file.c_str(), options.c_str());
  std::remove("output");
  std::remove("listing");
  std::istringstream words(options + " -o output -i " + file);
  const std::vector<std::string> arguments(std::istream_iterator<std::string>(words), {});
  const int status = arguments[0] == "-ksvf"
                         ? tapforge::progmode_svf2ksvf::main_svf2ksvf(arguments)
                         : tapforge::progmode_svf2tapbus::main_svf2tapbus(arguments);
  std::printf("\nstatus %d\n", status);
  printChecksum("output");
  printChecksum("listing");
}

}  // namespace

int main() {
  if (!tapforge::prepareProcess()) return 2;
  for (std::string file; std::getline(std::cin, file);) {
    for (const char* options : kOptions) convert(options, file);
  }
}
