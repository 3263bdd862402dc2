#ifndef TAPFORGE_VECTOR_KSVF_COMMANDS_H
#define TAPFORGE_VECTOR_KSVF_COMMANDS_H

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "scan/bits.h"

namespace tapforge::progmode_svf2ksvf {

/// The commands of the KSVF format. A file holds the code in one byte, then the
/// numbers with the most significant byte first, then the vectors (bit vectors in
/// whole bytes, the most significant byte first).
enum class Command : std::uint8_t {
  KCOMPLETE = 0,
  KTDOMASK = 1,
  KSIR = 2,
  KSDR = 3,
  KRUNTEST = 4,
  KREPEAT = 7,
  KSDRSIZE = 8,
  KSDRTDO = 9,
  KSDRB = 12,
  KSDRC = 13,
  KSDRE = 14,
  KSDRTDOB = 15,
  KSDRTDOC = 16,
  KSDRTDOE = 17,
  KSTATE = 18,
  KENDIR = 19,
  KENDDR = 20,
  KSIR2 = 21,
  KCOMMENT = 22,
  KWAIT = 23
};

struct CommandRow {
  Command code;
  std::string_view name;
  std::array<std::uint8_t, 3> numberBytes;  // of each number, 0 for none
  std::size_t vectors;
  HexCase listedIn = HexCase::upper;  // numbers in the listing

  constexpr std::size_t numbers() const {
    std::size_t count = 0;
    while (count < numberBytes.size() && numberBytes[count] != 0) ++count;
    return count;
  }
};

/// All commands, in the order of their codes. docs/ksvf.md says what they mean.
inline constexpr std::array kCommands = std::to_array<CommandRow>({
    {Command::KCOMPLETE, "KCOMPLETE", {}, 0},
    {Command::KTDOMASK, "KTDOMASK", {}, 1},
    {Command::KSIR, "KSIR", {1}, 1},
    {Command::KSDR, "KSDR", {}, 1},
    {Command::KRUNTEST, "KRUNTEST", {4}, 0},
    {Command::KREPEAT, "KREPEAT", {1}, 0},
    {Command::KSDRSIZE, "KSDRSIZE", {4}, 0},
    {Command::KSDRTDO, "KSDRTDO", {}, 2},
    {Command::KSDRB, "KSDRB", {}, 1},
    {Command::KSDRC, "KSDRC", {}, 1},
    {Command::KSDRE, "KSDRE", {}, 1},
    {Command::KSDRTDOB, "KSDRTDOB", {}, 2},
    {Command::KSDRTDOC, "KSDRTDOC", {}, 2},
    {Command::KSDRTDOE, "KSDRTDOE", {}, 2},
    {Command::KSTATE, "KSTATE", {1}, 0, HexCase::lower},
    {Command::KENDIR, "KENDIR", {1}, 0},
    {Command::KENDDR, "KENDDR", {1}, 0},
    {Command::KSIR2, "KSIR2", {2}, 1},
    {Command::KCOMMENT, "KCOMMENT", {}, 0},
    {Command::KWAIT, "KWAIT", {1, 1, 4}, 0},
});

static_assert(std::is_sorted(kCommands.begin(), kCommands.end(),
                             [](auto& a, auto& b) { return a.code < b.code; }));

namespace ksvf_commands {

inline constexpr std::size_t kCodes = static_cast<std::size_t>(kCommands.back().code) + 1;

// The place of each code in the table; codes that no file holds stay outside it.
constexpr std::array<std::uint8_t, kCodes> makePlaces() {
  std::array<std::uint8_t, kCodes> places{};
  places.fill(kCommands.size());
  for (std::size_t i = 0; i < kCommands.size(); ++i) {
    places[static_cast<std::size_t>(kCommands[i].code)] = static_cast<std::uint8_t>(i);
  }
  return places;
}

inline constexpr std::array<std::uint8_t, kCodes> kPlaces = makePlaces();

}  // namespace ksvf_commands

constexpr const CommandRow& rowOf(Command command) {
  assert(ksvf_commands::kPlaces[static_cast<std::size_t>(command)] < kCommands.size());
  return kCommands[ksvf_commands::kPlaces[static_cast<std::size_t>(command)]];
}

}  // namespace tapforge::progmode_svf2ksvf

#endif  // TAPFORGE_VECTOR_KSVF_COMMANDS_H
