// Plays short files, written like a listing, and demands the pins that they stand for.

#include "player/ksvf_player.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

const std::map<std::string, std::string> kCodes = {
    {"KTDOMASK", "01"}, {"KSIR", "02"},     {"KSDR", "03"},     {"KRUNTEST", "04"},
    {"KREPEAT", "07"},  {"KSDRSIZE", "08"}, {"KSDRTDO", "09"},  {"KSDRB", "0c"},
    {"KSDRC", "0d"},    {"KSDRE", "0e"},    {"KSDRTDOB", "0f"}, {"KSDRTDOC", "10"},
    {"KSDRTDOE", "11"}, {"KSTATE", "12"},   {"KENDIR", "13"},   {"KENDDR", "14"},
    {"KSIR2", "15"},    {"KCOMMENT", "16"}, {"KWAIT", "17"},    {"KCOMPLETE", "00"}};

// Command names and bytes in hex; of the one number of KSDRSIZE and KRUNTEST the last digits.
std::vector<int> bytesOf(const std::string& listing) {
  std::vector<int> bytes;
  std::istringstream words(listing);
  for (std::string word, last; words >> word; last = word) {
    std::string digits = kCodes.count(word) != 0 ? kCodes.at(word) : word;
    if (last == "KSDRSIZE" || last == "KRUNTEST") digits.insert(0, 8 - digits.size(), '0');
    for (std::size_t i = 0; i < digits.size(); i += 2) {
      bytes.push_back(std::stoi(digits.substr(i, 2), nullptr, 16));
    }
  }
  return bytes;
}

// The states as KSVF numbers them; the ones after them with TMS 0 and with TMS 1.
constexpr std::string_view kStates = "0123456789abcdef";
constexpr std::string_view kAfterTms[] = {"113446641abbddb1", "0295587820ccfef2"};

struct Board {
  std::vector<int> file{};
  std::string answers{};  // TDO bits of Shift-DR in their order; 0s when used up
  int stop = -1;          // this call of a port function, from 0, returns KSVF_STOP
  int calls = 0;
  std::size_t read = 0;  // counts the -1 after the last byte, too
  std::size_t answered = 0;
  char state = '4';
  // The state after each clock; where a clock shifts, its TDI bit between < and >.
  std::string pins{};

  int clock(int tms, int tdi) {
    const bool data = state == '4';
    const bool shifts = data || state == 'b';
    const bool answersOne = data && answered < answers.size() && answers[answered] == '1';
    if (data) ++answered;
    EXPECT_TRUE(shifts || tdi == 1) << "TDI outside of a scan";
    EXPECT_LE(tms | tdi, 1) << "levels are 0 and 1";
    state = kAfterTms[tms != 0 ? 1 : 0][kStates.find(state)];
    if (shifts) pins += tdi != 0 ? '1' : '0';
    if (!shifts || tms != 0) pins += (shifts ? ">" : "") + std::string(1, state);
    if (!shifts && (state == '4' || state == 'b')) pins += '<';
    return answersOne ? 0x40 : 0;  // any value but 0 is a 1
  }
};

KsvfPlayer player;

// What a file is refused for, where, and how far it was read.
std::array<std::uint32_t, 4> refusal() {
  return {player.result, player.command_offset, player.offset, player.scan};
}

// How the play ended, in words. Before it a dry run has to end alike.
std::string play(Board& board, bool waitAfterDataOnly = false) {
  Board dry{board.file};
  ksvf_begin_dry(&player, &dry);
  (void)ksvf_play(&player);
  EXPECT_EQ(dry.pins, "") << "a dry run moves no pin";
  const auto refused = refusal();
  ksvf_begin(&player, &board);
  EXPECT_EQ(board.state, '0');
  board.pins.clear();
  board.answered = 0;
  player.wait_after_data_only = waitAfterDataOnly;
  const KsvfResult result = ksvf_play(&player);
  EXPECT_EQ(ksvf_step(&player), result) << "the end is final";
  EXPECT_EQ(kStates[player.state], board.state);
  EXPECT_LE(board.read, board.file.size() + 1);
  if (result != KSVF_MISMATCH) {
    EXPECT_EQ(refusal(), refused) << "unlike the dry run";
  }
  const std::string scan = "scan " + std::to_string(player.scan);
  if (result == KSVF_DONE) return "done, " + scan;
  if (result == KSVF_MISMATCH) {
    const std::uint32_t bit = player.mismatch_bit - player.bits_before;
    EXPECT_NE(ksvf_mask_byte(&player, bit / 8) >> bit % 8 & 1, 0) << "it is compared";
    return scan + " bit " + std::to_string(player.mismatch_bit) + " expected " +
           (player.expected ? "1, " : "0, ") + std::to_string(player.wrong_bits) + " wrong";
  }
  if (result == KSVF_TOO_SHORT) return "short at " + std::to_string(player.offset);
  const char* faults[] = {"playing", "", "", "unknown", "order", "operand", "long"};
  return faults[result] + (" at " + std::to_string(player.command_offset));
}

TEST(KsvfPlayer, MovesThePinsAsTheFileSays) {
  const struct {
    const char* what;
    const char* listing;  // after KREPEAT 00, before KCOMPLETE
    const char* pins;
    const char* answers = "";
    const char* end = "done";  // or all of it, with the scan
    bool old = false;
  } kPlays[] = {
      {"scans end in idle, lowest bit first",
       "KSIR 05 13 KSIR2 0009 0102 KCOMMENT 534952ff0a00 KSDRSIZE 9 KSDR 0102",
       "129ab<11001>cf1 29ab<010000001>cf1 234<010000001>581"},
      {"a count holds for all scans, until it ends",
       "KRUNTEST 102 KRUNTEST 2 KSIR 01 01 KSDRSIZE 1 KSDR 00 KRUNTEST 0 KSIR 01 01",
       "129ab<1>cf1 11 234<0>581 11 29ab<1>cf1"},
      {"an empty scan only waits, in idle also from a pause",
       "KENDIR 01 KSIR 01 00 KSDRSIZE 0 KSDR KRUNTEST 2 KSDR KSDRTDO", "129ab<0>cd ef1 11 11"},
      {"a scan from a pause captures anew",
       "KENDIR 01 KENDDR 01 KSIR 01 00 KSDRSIZE 1 KSDR 01 KSDR 00 KSIR 01 00 KENDIR 00 KSIR 01 01",
       "129ab<0>cd ef234<1>56 78234<0>56 7829ab<0>cd ef29ab<1>cf1"},
      {"a scan goes on from its capture, and around from a shift",
       "KSDRSIZE 1 KSTATE 03 KSDR 01 KSTATE 04 KSDR 00", "1234<1>581 234<1>58234<0>581"},
      {"the clocks of a scan lead from a pause to idle, where it stays",
       "KENDDR 01 KRUNTEST 1 KSDRSIZE 1 KSDR 01 KSTATE 06", "1234<1>56 781 1 2356"},
      {"named steps are a clock each, staying and shifting included",
       "KSTATE 01 KSTATE 01 KSTATE 02 KSTATE 03 KSTATE 04 KSTATE 04 KSTATE 05 KSTATE 06 KSTATE 06 "
       "KSTATE 07 KSTATE 04 KSTATE 05 KSTATE 05 KSTATE 08 KSTATE 0b KSTATE 0b KSTATE 0c KSTATE 0d "
       "KSTATE 0d KSTATE 0e",
       "1 1 2 3 4< 1 1>5 6 6 7 4< 1>5 8 29ab< 1 1>cd d e"},
      {"a state without its steps is reached the short way, reset with five clocks",
       "KSTATE 0d KSTATE 06 KSTATE 01 KSTATE 00 KSTATE 00 KSTATE 0f KSTATE 04",
       "129acd ef2356 781 29000 00000 129acf 234<"},
      {"waits where they stand",
       "KWAIT 00 00 00000002 KWAIT 01 06 00000001 KWAIT 06 06 00000002 KWAIT 0d 01 00000001",
       "00 1 1 2356 66 7829acd d ef1"},
      {"compared under the last mask; the first one, and what is beyond its end, is 0",
       "KSDRSIZE 2 KSDRTDO 00 03 KSDRSIZE 5 KTDOMASK f6 KSDRTDO 00 ff "
       "KSDRSIZE 18 KTDOMASK 010088 KSDRTDO 000000 feff77 KSDRSIZE 4 KTDOMASK 00 KSDRSIZE c "
       "KSDRTDO 0000 0fff",
       "1234<00>581 234<00000>581 234<000000000000000000000000>581 234<000000000000>581",
       "00 01101"},
      {"the first wrong bit is named, and all keep the data from their update",
       "KSDRSIZE d KTDOMASK 1f80 KSDRTDO 0000 11ff", "1234<0000000000000>56", "1111111",
       "scan 1 bit 7 expected 1, 3 wrong"},
      {"a shorter scan takes the leading digits of the mask, which stays whole",
       "KSDRSIZE c KTDOMASK 010f KSDRSIZE 5 KSDRTDO 00 0f KSDRSIZE c KSDRTDO 0000 0007",
       "1234<00000>581 234<000000000000>56", "00000 1110 1111 1",
       "scan 2 bit 8 expected 0, 1 wrong"},
      {"the digits of a mask lie in other halves of the bytes when their count is odd",
       "KSDRSIZE c KTDOMASK 0a50 KSDRSIZE 8 KSDRTDO 00 5a KSDRSIZE 10 KSDRTDO 0000 5aff "
       "KTDOMASK a5c3 KSDRSIZE c KSDRTDO 0000 05a3 KSDRSIZE 4 KTDOMASK 05 KSDRSIZE 8 KSDRTDO 00 ff",
       "1234<00000000>581 234<0000000000000000>581 234<000000000000>581 234<00000000>56", "",
       "scan 4 bit 4 expected 1, 2 wrong"},
      {"a retry is the scan once more, with its wait",
       "KREPEAT 02 KRUNTEST 1 KSDRSIZE 2 KTDOMASK 03 KSDRTDO 01 02",
       "1234<10>581 1 234<10>581 1 234<10>581 1", "00 11 01"},
      {"as often as the count says, for each scan anew, and the last one is reported",
       "KREPEAT 01 KENDDR 01 KSDRSIZE 2 KTDOMASK 03 KSDRTDO 00 02 KSDRTDO 00 02",
       "1234<00>56 78234<00>56 78234<00>56 78234<00>56", "00 01 00 11",
       "scan 2 bit 0 expected 0, 1 wrong"},
      {"records are one scan, compared in all bits, with the wait after the last",
       "KRUNTEST 1 KSIR 01 00 KSDRSIZE 8 KTDOMASK 00 KSDRTDOB 0f 81 KSDRTDOC 01 00 "
       "KSDRSIZE 3 KSDRTDOE 06 04 KSDRB 07 KSDRSIZE 1 KSDRE 01 KSIR 01 01",
       "129ab<0>cf11 234<1111000010000000011>5811 234<1111>5811 29ab<1>cf11",
       "10000001 00000000 001"},
      {"they begin and end like other scans, and then bits count from 0 again",
       "KENDDR 01 KSDRSIZE 1 KTDOMASK 01 KSDRB 01 KSDRE 01 KSDRB 00 KSDRE 00 KSDRTDO 00 01",
       "1234<11>56 78234<00>56 78234<0>56", "", "scan 3 bit 0 expected 1, 1 wrong"},
      {"a record that differs is the last one played",
       "KREPEAT 01 KSDRSIZE 8 KSDRTDOB 00 00 KSDRTDOC 00 7f KSDRTDOE 00 00",
       "1234<00000000 00000000 1>56", "00000000 11111111", "scan 1 bit 15 expected 0, 1 wrong"},
      {"also the last one", "KSDRSIZE 1 KSDRB 00 KSDRTDOE 01 01", "1234<01>56", "",
       "scan 1 bit 1 expected 1, 1 wrong"},
      {"a fault ends in the pause state of its register", "KSTATE 0b 05", "129ab<1>cd", "",
       "unknown at 4"},
      {"old files wait after data scans only",
       "KRUNTEST 2 KSIR 01 01 KSDRSIZE 0 KSDR KSDRSIZE 1 KSDR 01", "129ab<1>cf1 11 234<1>581 11",
       "", "done, scan 2", true},
  };
  for (const auto& row : kPlays) {
    SCOPED_TRACE(row.what);
    std::string pins = row.pins, answers = row.answers;  // divided by spaces for the reader
    std::erase(pins, ' ');
    std::erase(answers, ' ');
    Board board{bytesOf("KREPEAT 00 " + std::string(row.listing) + " KCOMPLETE"), answers};
    const std::string end = play(board, row.old);
    EXPECT_EQ(board.pins, pins);
    EXPECT_EQ(end.substr(0, std::string(row.end).size()), row.end);
    EXPECT_EQ(board.read == board.file.size(), end.substr(0, 4) == "done");
  }
}

TEST(KsvfPlayer, RefusesWhatNoFileHolds) {
  const std::string longest(std::size_t{2} * KSVF_MAX_BYTES, '8');
  const std::map<std::string, std::vector<std::string>> kEnds = {
      {"unknown at 0", {"534952"}},
      {"order at 0", {"KSIR 01 01"}},
      {"unknown at 2", {"05", "18"}},
      {"operand at 2",
       {"KSTATE 10", "KWAIT 02 01 00000000", "KWAIT 01 04 00000000", "KENDIR 02", "KSIR 00",
        "KSDRB"}},
      {"long at 2", {"KSDRSIZE 1001", "KSIR2 1001"}},
      {"done, scan 1", {"KSDRSIZE 1000 KSDR " + longest}},
      {"order at 7", {"KSDRSIZE 1 KSDRC 00", "KSDRSIZE 1 KSDRTDOE 00 00"}},
      {"order at 9",
       {"KSDRSIZE 1 KSDRB 00 KSDRB 00", "KSDRSIZE 1 KSDRB 00 KCOMMENT 00", "KSDRSIZE 1 KSDRB 00"}},
  };
  for (const auto& [end, listings] : kEnds) {
    for (const std::string& listing : listings) {
      const bool begun = end.back() != '0';
      Board board{bytesOf((begun ? "KREPEAT 00 " : "") + listing + " KCOMPLETE")};
      EXPECT_EQ(play(board), end) << listing;
      EXPECT_NE(std::string("016").find(board.state), std::string::npos) << listing;
    }
  }
}

const char* const kEverything =
    "KREPEAT 00 KSIR 04 01 KSDRSIZE 9 KTDOMASK 01ff KRUNTEST 1 KSDRTDO 0000 0000 "
    "KCOMMENT 4100 KSTATE 01 KENDDR 01 KWAIT 01 00 00000001 KSIR2 0003 01 KSDRTDOB 0000 0000 "
    "KSDRSIZE 1 KSDRTDOE 00 00 KCOMPLETE";

TEST(KsvfPlayer, SaysWhereAFileWasCut) {
  const std::vector<int> file = bytesOf(kEverything);
  Board board{file};
  EXPECT_EQ(play(board), "done, scan 4");
  for (std::size_t length = 0; length < file.size(); ++length) {
    board = {};
    board.state = kStates[length % 16];  // where the last play may have left it
    board.file.assign(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
    EXPECT_EQ(play(board), "short at " + std::to_string(length));
    EXPECT_NE(board.state, '4') << "shifts on";
  }
}

TEST(KsvfPlayer, StopsAtAnyCallOfThePort) {
  for (const char* listing :
       {kEverything, "KREPEAT 00 KSDRSIZE 1 KSDRB 00", "KREPEAT 00 KSTATE 0b KSTATE",
        "KREPEAT 01 KRUNTEST 1 KSDRSIZE 1 KTDOMASK 01 KSDRTDO 00 01"}) {
    bool stopped = true;
    for (int stop = 0; stopped; ++stop) {
      Board board{bytesOf(listing)};
      board.state = '0';
      board.stop = stop;
      ksvf_begin(&player, &board);
      stopped = ksvf_play(&player) == KSVF_STOPPED;
      EXPECT_EQ(board.calls, stopped ? stop + 1 : stop) << listing << ": goes on after a stop";
      EXPECT_EQ(kStates[player.state], board.state) << listing << ", stopped at " << stop;
    }
  }
}

TEST(KsvfPlayer, TouchesNothingForACallerOfAnotherSize) {
  Board board{bytesOf("KREPEAT 00 KCOMPLETE")};
  player.scan = 77;
  ksvf_begin_play(&player, &board, sizeof player - 1, false);
  EXPECT_EQ(ksvf_play(&player), KSVF_WRONG_SIZE);
  EXPECT_EQ(board.calls, 0);
  EXPECT_EQ(player.scan, 77);
}

TEST(KsvfPlayer, ShowsEachStep) {
  Board board{
      bytesOf("KREPEAT 00 KSIR 01 01 KSDRSIZE 1 KSDR 01 KSIR 01 00 KSDRB 00 KSDRE 00 KSIR 01 00 "
              "KCOMPLETE")};
  ksvf_begin(&player, &board);
  std::string seen;
  while (ksvf_step(&player) == KSVF_PLAYING) {
    seen += std::to_string(player.command) + (player.instruction ? "i" : "d") +
            std::to_string(player.scan) + "+" + std::to_string(player.bits_before) + " ";
  }
  EXPECT_EQ(seen, "7d0+0 2i1+0 8i1+0 3d2+0 2i3+0 12d4+0 14d4+1 2i5+0 ");
}

}  // namespace

int ksvf_port_read(void* port) {
  auto& board = *static_cast<Board*>(port);
  if (board.calls++ == board.stop) return KSVF_STOP;
  const std::size_t at = board.read++;
  return at < board.file.size() ? board.file[at] : -1;
}

int ksvf_port_clock(void* port, int tms, int tdi) {
  auto& board = *static_cast<Board*>(port);
  return board.calls++ == board.stop ? KSVF_STOP : board.clock(tms, tdi);
}
