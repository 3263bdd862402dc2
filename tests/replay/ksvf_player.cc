#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "tests/replay/players.h"

namespace tapforge::replay {
namespace {

// By code; the empty names are codes that no file holds.
constexpr std::array<std::string_view, 24> kCommands = {
    "KCOMPLETE", "KTDOMASK", "KSIR",   "KSDR",   "KRUNTEST", "",      "",         "KREPEAT",
    "KSDRSIZE",  "KSDRTDO",  "",       "",       "KSDRB",    "KSDRC", "KSDRE",    "KSDRTDOB",
    "KSDRTDOC",  "KSDRTDOE", "KSTATE", "KENDIR", "KENDDR",   "KSIR2", "KCOMMENT", "KWAIT"};

class Player {
 public:
  Player(std::string_view bytes, CountedScans counted) : bytes_(bytes), counted_(counted) {}

  Trace play() {
    if (kCommands.at(number(1)) != "KREPEAT") throw std::invalid_argument("no KREPEAT first");
    number(1);
    for (std::size_t code; (code = number(1)) != 0;) command(kCommands.at(code));
    if (!bytes_.empty()) throw std::invalid_argument("KCOMPLETE must come last");
    return chain_.take();
  }

 private:
  std::string hex(std::size_t byteCount) {
    if (bytes_.size() < byteCount) throw std::out_of_range("the file ends in a command");
    std::string digits;
    for (const char character : bytes_.substr(0, byteCount)) {
      const auto byte = static_cast<unsigned char>(character);
      for (int digit : {byte >> 4, byte & 15}) digits += "0123456789abcdef"[digit];
    }
    bytes_.remove_prefix(byteCount);
    return digits;
  }
  std::size_t number(std::size_t byteCount) { return std::stoul(hex(byteCount), nullptr, 16); }
  Bits vector(std::size_t length) { return bitsFromHex(hex((length + 7) / 8), length); }
  TapState state() { return static_cast<TapState>(number(1) & 15); }

  void command(std::string_view name) {
    if (name == "KTDOMASK") {
      const std::string digits = hex((size_ + 7) / 8);
      maskDigits_ = digits.substr((size_ + 3) / 4 % 2);
    } else if (name == "KSIR" || name == "KSIR2") {
      const Bits tdi = vector(number(name == "KSIR" ? 1 : 2));
      chain_.scan({.kind = Event::kSir, .tdi = tdi, .care = Bits(tdi.size(), '1')});
      if (counted_ == CountedScans::kAll) applyCount();
    } else if (name == "KRUNTEST") {
      count_ = static_cast<double>(number(4));
    } else if (name == "KSDRSIZE") {
      size_ = number(4);
    } else if (name.starts_with("KSDR")) {
      dataScan(name);
    } else if (name == "KSTATE") {
      chain_.record({.kind = Event::kStep, .states = {state()}});
    } else if (name == "KENDIR") {
      chain_.setEnd(Event::kEndIr, number(1) == 0 ? TapState::kIdle : TapState::kIrPause);
    } else if (name == "KENDDR") {
      chain_.setEnd(Event::kEndDr, number(1) == 0 ? TapState::kIdle : TapState::kDrPause);
    } else if (name == "KCOMMENT") {
      while (number(1) != 0) continue;
    } else if (name == "KWAIT") {
      const TapState run = state();
      const TapState end = state();
      chain_.wait(run, end, {Amount{static_cast<double>(number(4))}});
    } else {
      throw std::invalid_argument("command code");
    }
  }

  // KSDR, KSDRTDO, or one record of a partitioned scan: the first holds the
  // bits shifted first, and every TDO bit of a record is compared.
  void dataScan(std::string_view name) {
    const bool whole = name == "KSDR" || name == "KSDRTDO";
    const bool first = whole || name.back() == 'B';
    if (first != parts_.tdi.empty()) throw std::invalid_argument("records out of order");
    parts_.tdi += vector(size_);
    parts_.care.resize(parts_.tdi.size(), '1');
    if (name.starts_with("KSDRTDO")) {
      // A file keeps silent about a mask whose digits begin the mask before it.
      std::string mask = whole ? maskDigits_ : "";
      mask.resize((size_ + 3) / 4, '0');
      parts_.tdo += vector(size_);
      parts_.mask += whole ? bitsFromHex(mask, size_) : Bits(size_, '1');
    }
    if (!whole && name.back() != 'E') return;
    if (!parts_.tdi.empty()) chain_.scan(std::exchange(parts_, {.kind = Event::kSdr}));
    applyCount();
  }

  void applyCount() {
    if (count_ > 0) chain_.wait(TapState::kIdle, TapState::kIdle, {Amount{count_}});
  }

  std::string_view bytes_;
  CountedScans counted_;
  TapChain chain_;
  std::size_t size_ = 0;    // bits of a data scan
  std::string maskDigits_;  // hex, most significant first
  double count_ = 0;
  Event parts_{.kind = Event::kSdr};
};

}  // namespace

Trace playKsvf(std::string_view bytes, CountedScans counted) {
  return Player(bytes, counted).play();
}

std::string bytesFromListing(const std::string& listing) {
  std::istringstream words(listing);
  std::string bytes;
  for (std::string word; words >> word;) {
    const auto command = std::find(kCommands.begin(), kCommands.end(), word);
    if (command != kCommands.end()) bytes += static_cast<char>(command - kCommands.begin());
    if (command != kCommands.end()) continue;
    if (word.size() % 2 != 0) throw std::invalid_argument("half a byte: " + word);
    for (std::size_t i = word.starts_with("0x") ? 2 : 0; i < word.size(); i += 2) {
      bytes += static_cast<char>(std::stoi(word.substr(i, 2), nullptr, 16));
    }
  }
  return bytes;
}

}  // namespace tapforge::replay
