// The player on a board that answers as the input says: no file may crash it,
// take it past the end of the file or out of step with the TAP, or make it leave
// data that did not match anywhere but in Pause-DR. A dry run ends like a play, and
// nothing happens after a stop.

#include <array>
#include <string_view>

#include "fuzz/fuzz_input.h"
#include "player/ksvf_player.h"

using tapforge::fuzz::require;

namespace {

struct Board {
  const std::uint8_t* file;
  std::size_t size;
  unsigned wrongBits;  // of the answers: none, or the ones where this divides the clock's number
  std::uint32_t stop;  // this call of a port function, from 1, stops the play
  std::uint32_t calls = 0;
  std::size_t read = 0;
  bool ended = false;
  unsigned state = 4;
  std::uint32_t clocks = 0;
  std::uint32_t shifted = 0;  // bits since the TAP came to the shift state
};

KsvfPlayer player;

bool stops(Board& board) {
  require(++board.calls <= board.stop || board.stop == 0, "nothing is called after a stop");
  return board.calls == board.stop;
}

}  // namespace

int ksvf_port_read(void* port) {
  auto& board = *static_cast<Board*>(port);
  require(!board.ended, "nothing is read past the end");
  if (stops(board)) return KSVF_STOP;
  board.ended = board.read == board.size;
  return board.ended ? -1 : board.file[board.read++];
}

int ksvf_port_clock(void* port, int tms, int tdi) {
  constexpr std::array<std::string_view, 16> kNext = {"10", "12", "39", "45", "45", "68",
                                                      "67", "48", "12", "a0", "bc", "bc",
                                                      "df", "de", "bf", "12"};
  auto& board = *static_cast<Board*>(port);
  require(!player.dry, "a dry run moves no pin");
  if (stops(board)) return KSVF_STOP;
  const char next = kNext[board.state][tms != 0 ? 1 : 0];
  const bool shifts = board.state == 4 || board.state == 11;
  if (board.clocks >= 5) require(player.state == board.state, "the player knows the state");
  if (!shifts) require(tdi == 1, "TDI rests at 1");
  if (!shifts) board.shifted = 0;
  board.state = static_cast<unsigned>(next >= 'a' ? next - 'a' + 10 : next - '0');
  ++board.clocks;
  const std::uint32_t bit = board.shifted - player.bits_before;
  if (shifts) ++board.shifted;
  const bool known = shifts && player.compare != KSVF_COMPARE_NONE && bit < player.bits;
  const bool wrong = board.wrongBits != 0 && board.clocks % board.wrongBits == 0;
  const bool expected =
      known && (player.tdo[(player.bits + 7) / 8 - 1 - bit / 8] >> bit % 8 & 1) != 0;
  return expected != wrong ? 1 : 0;
}

int ksvf_port_wait(void* port, int tms, std::uint32_t clocks) {
  auto& board = *static_cast<Board*>(port);
  const unsigned state = board.state;
  require(!player.dry, "a dry run does not wait");
  require(tms != 0 ? state == 0 : state == 1 || state == 6 || state == 13, "a wait stays");
  require(clocks > 0, "an empty wait is none");
  return stops(board) ? KSVF_STOP : 0;
}

void ksvf_port_comment(void* /*port*/, int character) {
  require(!player.dry && character >= 0 && character < 256, "a comment has characters");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  Board dry{data + 1, size - 1, 0, 0};
  ksvf_begin_dry(&player, &dry);
  const KsvfResult checked = ksvf_play(&player);
  const std::array refused = {player.offset, player.command_offset, player.scan};
  const unsigned choice = data[0] / 2U;
  Board board{data + 1, size - 1, choice % 96, choice < 96 ? 0 : (choice - 95) * (choice - 95)};
  ksvf_begin(&player, &board);
  player.wait_after_data_only = data[0] % 2 != 0;
  const KsvfResult result = ksvf_play(&player);
  require(result != KSVF_PLAYING && ksvf_step(&player) == result, "a play comes to its end");
  require(player.offset == board.read && player.command_offset <= board.read,
          "offsets count bytes");
  require(player.bits <= KSVF_MAX_BITS, "no scan is too long");
  if (result == KSVF_STOPPED) {
    require(board.calls == board.stop, "only the port stops");
    return 0;
  }
  if (result == KSVF_MISMATCH) {
    require(player.state == KSVF_DR_PAUSE, "data that did not match wait in Pause-DR");
    require(player.scan > 0 && player.wrong_bits > 0, "a mismatch has its bit");
    require(board.wrongBits != 0, "a right answer matches");
    return 0;
  }
  const bool shifting = player.state == KSVF_DR_SHIFT || player.state == KSVF_IR_SHIFT;
  require(result == KSVF_DONE || !shifting, "a broken scan does not stay in the shift state");
  require(checked == result, "a dry run ends like a play");
  require(refused == std::array{player.offset, player.command_offset, player.scan},
          "and at the same place");
  return 0;
}
