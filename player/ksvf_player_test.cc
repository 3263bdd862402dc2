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

const std::map<std::string, int, std::less<>> kCodes = {
    {"KTDOMASK", 1},  {"KSIR", 2},      {"KSDR", 3},      {"KRUNTEST", 4}, {"KREPEAT", 7},
    {"KSDRSIZE", 8},  {"KSDRTDO", 9},   {"KSDRB", 12},    {"KSDRC", 13},   {"KSDRE", 14},
    {"KSDRTDOB", 15}, {"KSDRTDOC", 16}, {"KSDRTDOE", 17}, {"KSTATE", 18},  {"KENDIR", 19},
    {"KENDDR", 20},   {"KSIR2", 21},    {"KCOMMENT", 22}, {"KWAIT", 23},   {"KCOMPLETE", 0}};

// Command names and bytes in hex.
std::vector<int> bytesOf(const std::string& listing) {
  std::vector<int> bytes;
  std::istringstream words(listing);
  for (std::string word; words >> word;) {
    const auto command = kCodes.find(word);
    if (command != kCodes.end()) {
      bytes.push_back(command->second);
      continue;
    }
    for (std::size_t i = 0; i < word.size(); i += 2) {
      bytes.push_back(std::stoi(word.substr(i, 2), nullptr, 16));
    }
  }
  return bytes;
}

// The states after TMS 0 and after TMS 1, as IEEE 1149.1 draws them.
constexpr std::array<std::string_view, 16> kNext = {"10", "12", "39", "45", "45", "68", "67", "48",
                                                    "12", "a0", "bc", "bc", "df", "de", "bf", "12"};

struct Board {
  std::vector<int> file{};
  std::string answers{};  // TDO bits of Shift-DR in their order; 0s when used up
  std::size_t read = 0;
  int readsPastEnd = 0;
  std::size_t answered = 0;
  int state = 4;
  // The state after each clock as its KSVF digit; where a clock shifts, its TDI
  // bit between < and >.
  std::string pins{};

  int clock(int tms, int tdi) {
    const bool shifts = state == 4 || state == 11;
    const bool answersOne = state == 4 && answered < answers.size() && answers[answered] == '1';
    if (state == 4) ++answered;
    EXPECT_TRUE(shifts || tdi == 1) << "TDI outside of a scan";
    const char next = kNext[static_cast<std::size_t>(state)][tms != 0 ? 1 : 0];
    const int nextState = next >= 'a' ? next - 'a' + 10 : next - '0';
    if (shifts) pins += tdi != 0 ? '1' : '0';
    if (!shifts || tms != 0) pins += (shifts ? ">" : "") + std::string(1, next);
    if (!shifts && (nextState == 4 || nextState == 11)) pins += '<';
    state = nextState;
    return answersOne ? 0x40 : 0;  // any value but 0 is a 1
  }
};

KsvfPlayer player;

// How the play ended, in words.
std::string play(Board& board, bool waitAfterDataOnly = false) {
  ksvf_begin(&player, &board);
  EXPECT_EQ(board.state, 0);
  board.pins.clear();
  board.answered = 0;
  player.wait_after_data_only = waitAfterDataOnly;
  const KsvfResult result = ksvf_play(&player);
  EXPECT_EQ(ksvf_step(&player), result) << "the end is final";
  EXPECT_EQ(player.state, board.state);
  EXPECT_LE(board.readsPastEnd, 1);
  if (result == KSVF_DONE) return "done, scan " + std::to_string(player.scan);
  const std::string at = " at " + std::to_string(player.command_offset);
  switch (result) {
    case KSVF_MISMATCH:
      return "scan " + std::to_string(player.scan) + " bit " + std::to_string(player.mismatch_bit) +
             " expected " + (player.expected ? "1" : "0") + " seen " + (player.seen ? "1" : "0");
    case KSVF_UNKNOWN_COMMAND:
      return "unknown" + at;
    case KSVF_BAD_ORDER:
      return "order" + at;
    case KSVF_BAD_OPERAND:
      return "operand" + at;
    case KSVF_SCAN_TOO_LONG:
      return "long" + at;
    default:
      return "short at " + std::to_string(player.offset);
  }
}

}  // namespace

int ksvf_port_read(void* port) {
  auto& board = *static_cast<Board*>(port);
  if (board.read < board.file.size()) return board.file[board.read++];
  ++board.readsPastEnd;
  return -1;
}

int ksvf_port_clock(void* port, int tms, int tdi) {
  return static_cast<Board*>(port)->clock(tms, tdi);
}

namespace {

struct Play {
  const char* what;
  const char* listing;  // after KREPEAT 00, before KCOMPLETE
  const char* pins;
  const char* answers = "";
  const char* end = "";  // "": done
};

std::string withoutSpaces(std::string text) {
  std::erase(text, ' ');
  return text;
}

TEST(KsvfPlayer, MovesThePinsAsTheFileSays) {
  const Play kPlays[] = {
      {"scans end in idle, lowest bit first", "KSIR 05 13 KSDRSIZE 00000009 KSDR 0102",
       "129ab<11001>cf1 234<010000001>581"},
      {"a long instruction", "KSIR2 0009 0102", "129ab<010000001>cf1"},
      {"a count holds for all scans", "KRUNTEST 00000002 KSIR 01 01 KSDRSIZE 00000001 KSDR 00",
       "129ab<1>cf1 11 234<0>581 11"},
      {"and ends", "KRUNTEST 00000102 KRUNTEST 00000000 KSIR 01 01", "129ab<1>cf1"},
      {"an empty scan only waits", "KRUNTEST 00000002 KSDRSIZE 00000000 KSDR KSDRTDO", "1 11 11"},
      {"in idle also from a pause", "KENDIR 01 KSIR 01 00 KRUNTEST 00000001 KSDRSIZE 00000000 KSDR",
       "129ab<0>cd ef1 1"},
      {"without a count it does nothing", "KENDIR 01 KSIR 01 00 KSDRSIZE 00000000 KSDR",
       "129ab<0>cd"},
      {"a scan from a pause captures anew",
       "KENDIR 01 KENDDR 01 KSIR 01 00 KSDRSIZE 00000001 KSDR 01 KSDR 00 KSIR 01 00 KENDIR 00 "
       "KSIR 01 01",
       "129ab<0>cd ef234<1>56 78234<0>56 7829ab<0>cd ef29ab<1>cf1"},
      {"the clocks of a scan lead from a pause to idle, where it stays",
       "KENDDR 01 KRUNTEST 00000001 KSDRSIZE 00000001 KSDR 01 KSTATE 06", "1234<1>56 781 1 2356"},
      {"named steps are a clock each, staying included",
       "KSTATE 01 KSTATE 01 KSTATE 02 KSTATE 03 KSTATE 05 KSTATE 06 KSTATE 06 KSTATE 07 KSTATE 08",
       "1 1 2 3 5 6 6 7 8"},
      {"named steps may shift", "KSTATE 01 KSTATE 02 KSTATE 03 KSTATE 04 KSTATE 04 KSTATE 05",
       "1 2 3 4< 1 1>5"},
      {"a state without its steps is reached the short way, reset with five clocks",
       "KSTATE 0d KSTATE 06 KSTATE 01 KSTATE 00 KSTATE 00 KSTATE 0f",
       "129acd ef2356 781 29000 00000 129acf"},
      {"the end leaves the TAP where it is", "KSTATE 0b KSTATE 0b", "129ab< 1"},
      {"even there", "KSTATE 04", "1234<"},
      {"waits where they stand",
       "KWAIT 00 00 00000002 KWAIT 01 06 00000001 KWAIT 06 06 00000002 KWAIT 0d 01 00000000",
       "00 1 1 2356 66 7829acd ef1"},
      {"a comment", "KCOMMENT 534952ff0a00 KSTATE 01", "1"},
      {"compared under its mask", "KSDRSIZE 00000005 KTDOMASK 16 KSDRTDO 00 1f", "1234<00000>581",
       "01101"},
      {"a zero mask is the first one", "KSDRSIZE 00000002 KSDRTDO 00 03", "1234<00>581", "00"},
      {"the first wrong bit is named, and all keep the data from their update",
       "KSDRSIZE 0000000d KTDOMASK 1f80 KSDRTDO 0000 11ff", "1234<0000000000000>56", "",
       "scan 1 bit 7 expected 1 seen 0"},
      {"in each byte of the mask", "KSDRSIZE 00000018 KTDOMASK 010088 KSDRTDO 000000 feff77",
       "1234<000000000000000000000000>581"},
      {"a shorter scan takes the leading digits of the mask",
       "KSDRSIZE 00000010 KTDOMASK ff00 KSDRSIZE 00000008 KSDRTDO 00 ff", "1234<00000000>56",
       "11101111", "scan 1 bit 3 expected 1 seen 0"},
      {"of an odd number, too, and the mask stays whole",
       "KSDRSIZE 0000000c KTDOMASK 010f KSDRSIZE 00000005 KSDRTDO 00 0f KSDRSIZE 0000000c "
       "KSDRTDO 0000 0007",
       "1234<00000>581 234<000000000000>56", "00000 1110 1111 1", "scan 2 bit 8 expected 0 seen 1"},
      {"of a mask shorter than the scan no bit is missing",
       "KSDRSIZE 00000004 KTDOMASK 00 KSDRSIZE 0000000c KSDRTDO 0000 0fff",
       "1234<000000000000>581"},
      {"a retry is the scan once more, with its wait",
       "KREPEAT 02 KRUNTEST 00000001 KSDRSIZE 00000002 KTDOMASK 03 KSDRTDO 01 02",
       "1234<10>581 1 234<10>581 1 234<10>581 1", "00 11 01"},
      {"as often as the count says, and the last one is reported",
       "KREPEAT 01 KENDDR 01 KSDRSIZE 00000002 KTDOMASK 03 KSDRTDO 00 02", "1234<00>56 78234<00>56",
       "00 11", "scan 1 bit 0 expected 0 seen 1"},
      {"for each scan anew", "KREPEAT 01 KSDRSIZE 00000001 KTDOMASK 01 KSDRTDO 00 01 KSDRTDO 01 01",
       "1234<0>581 234<0>581 234<1>581 234<1>581", "01 01"},
      {"records are one scan, compared in all bits, with the wait after the last",
       "KRUNTEST 00000001 KSIR 01 00 KSDRSIZE 00000008 KTDOMASK 00 KSDRTDOB 0f 81 KSDRTDOC 01 00 "
       "KSDRSIZE 00000003 KSDRTDOE 06 04 KSDRB 07 KSDRSIZE 00000001 KSDRE 01 KSIR 01 01",
       "129ab<0>cf11 234<1111000010000000011>5811 234<1111>5811 29ab<1>cf11",
       "10000001 00000000 001"},
      {"which begins and ends like others",
       "KENDDR 01 KSDRSIZE 00000001 KSDRB 01 KSDRE 01 KSDRB 00 KSDRE 00", "1234<11>56 78234<00>56"},
      {"after it bits count from 0 again",
       "KSDRSIZE 00000001 KTDOMASK 01 KSDRB 01 KSDRE 01 KSDRTDO 00 01", "1234<11>581 234<0>56", "",
       "scan 2 bit 0 expected 1 seen 0"},
      {"a record that differs is the last one played",
       "KREPEAT 01 KSDRSIZE 00000008 KSDRTDOB 00 00 KSDRTDOC 00 80 KSDRTDOE 00 00",
       "1234<00000000 00000000 1>56", "", "scan 1 bit 15 expected 1 seen 0"},
      {"also the last one", "KSDRSIZE 00000001 KSDRB 00 KSDRTDOE 01 01", "1234<01>56", "",
       "scan 1 bit 1 expected 1 seen 0"},
  };
  for (const Play& row : kPlays) {
    SCOPED_TRACE(row.what);
    Board board{bytesOf("KREPEAT 00 " + std::string(row.listing) + " KCOMPLETE"),
                withoutSpaces(row.answers)};
    const std::string end = play(board);
    EXPECT_EQ(board.pins, withoutSpaces(row.pins));
    if (*row.end != '\0') {
      EXPECT_EQ(end, row.end);
      continue;
    }
    EXPECT_EQ(end.substr(0, 4), "done");
    EXPECT_EQ(board.read, board.file.size());
  }
}

TEST(KsvfPlayer, RefusesWhatNoFileHolds) {
  const std::map<std::string, std::string> kEnds = {
      {"53 49 52 20", "unknown at 0"},
      {"KSIR 01 01 KCOMPLETE", "order at 0"},
      {"KREPEAT 00 05", "unknown at 2"},
      {"KREPEAT 00 KSTATE 00 18", "unknown at 4"},
      {"KREPEAT 00 KSTATE 10", "operand at 2"},
      {"KREPEAT 00 KWAIT 02 01 00000000", "operand at 2"},
      {"KREPEAT 00 KWAIT 01 04 00000000", "operand at 2"},
      {"KREPEAT 00 KENDIR 02", "operand at 2"},
      {"KREPEAT 00 KSIR 00", "operand at 2"},
      {"KREPEAT 00 KSDRB", "operand at 2"},
      {"KREPEAT 00 KSDRSIZE 00001001", "long at 2"},
      {"KREPEAT 00 KSDRSIZE ffffffff", "long at 2"},
      {"KREPEAT 00 KSIR2 1001", "long at 2"},
      {"KREPEAT 00 KSDRSIZE 00000001 KSDRC 00", "order at 7"},
      {"KREPEAT 00 KSDRSIZE 00000001 KSDRTDOE 00 00", "order at 7"},
      {"KREPEAT 00 KSDRSIZE 00000001 KSDRB 00 KSDRB 00", "order at 9"},
      {"KREPEAT 00 KSDRSIZE 00000001 KSDRB 00 KCOMMENT 00", "order at 9"},
      {"KREPEAT 00 KSDRSIZE 00000001 KSDRB 00 KCOMPLETE", "order at 9"},
  };
  for (const auto& [listing, end] : kEnds) {
    Board board{bytesOf(listing)};
    EXPECT_EQ(play(board), end) << listing;
    EXPECT_TRUE(board.state < 2 || board.state == 6) << listing << ": " << board.state;
  }
}

TEST(KsvfPlayer, PlaysTheLongestScanThatFits) {
  Board board{bytesOf("KREPEAT 00 KSDRSIZE 00001000 KSDR")};
  board.file.insert(board.file.end(), KSVF_MAX_BYTES, 0x80);
  board.file.push_back(0);
  EXPECT_EQ(play(board), "done, scan 1");
}

TEST(KsvfPlayer, SaysWhereAFileWasCut) {
  const std::vector<int> file = bytesOf(
      "KREPEAT 00 KSIR 04 01 KSDRSIZE 00000009 KTDOMASK 01ff KRUNTEST 00000001 KSDRTDO 0000 0000 "
      "KCOMMENT 4100 KSTATE 01 KENDDR 01 KWAIT 01 01 00000001 KSIR2 0003 01 KSDRTDOB 0000 0000 "
      "KSDRSIZE 00000001 KSDRTDOE 00 00 KCOMPLETE");
  for (std::size_t length = 0; length < file.size(); ++length) {
    Board board{{file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)}};
    EXPECT_EQ(play(board), "short at " + std::to_string(length));
    EXPECT_NE(board.state, 4) << "shifts on";
  }
  Board whole{file};
  EXPECT_EQ(play(whole), "done, scan 4");
}

TEST(KsvfPlayer, WaitsAfterDataScansOnlyForOldFiles) {
  Board board{
      bytesOf("KREPEAT 00 KRUNTEST 00000002 KSIR 01 01 KSDRSIZE 00000000 KSDR "
              "KSDRSIZE 00000001 KSDR 01 KCOMPLETE")};
  EXPECT_EQ(play(board, true), "done, scan 2");
  EXPECT_EQ(board.pins,
            "129ab<1>cf1"
            "11"
            "234<1>581"
            "11");
}

TEST(KsvfPlayer, ShowsEachStep) {
  Board board{
      bytesOf("KREPEAT 00 KSIR 01 01 KSDRSIZE 00000001 KSDR 01 KSIR 01 00 KSDRB 00 KSDRE 00 "
              "KSIR 01 00 KCOMPLETE")};
  ksvf_begin(&player, &board);
  std::string seen;
  while (ksvf_step(&player) == KSVF_PLAYING) {
    seen += std::to_string(player.command) + (player.instruction ? "i" : "d") +
            std::to_string(player.scan) + "+" + std::to_string(player.bits_before) + " ";
  }
  EXPECT_EQ(seen, "7d0+0 2i1+0 8i1+0 3d2+0 2i3+0 12d4+0 14d4+1 2i5+0 ");
}

TEST(KsvfPlayer, BeginsInResetFromAnyState) {
  for (int state = 0; state < 16; ++state) {
    Board board{bytesOf("KREPEAT 00 KCOMPLETE")};
    board.state = state;
    EXPECT_EQ(play(board), "done, scan 0");
    EXPECT_EQ(board.state, 0);
  }
}

}  // namespace
