#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "tests/replay/players.h"

namespace tapforge::replay {
namespace {

struct Pattern {
  std::size_t length = 0;
  std::map<std::string, Bits> values;  // by "tdi", "tdo", "mask", "smask"

  bool has(const char* name) const { return values.count(name) != 0; }
  Bits get(const char* name, char fill) const {
    return has(name) ? values.at(name) : Bits(length, fill);
  }
};

class Player {
 public:
  explicit Player(const SvfReading& reading) : reading_(reading) {}

  Trace play(std::string_view text) {
    for (std::size_t end; (end = text.find(';')) != text.npos; text.remove_prefix(end + 1)) {
      statement(splitWords(text.substr(0, end)));
    }
    if (!splitWords(text).empty()) throw std::invalid_argument("statement without an end");
    return chain_.take();
  }

 private:
  using Words = std::vector<std::string>;

  void statement(const Words& words) {
    const std::string& keyword = words.at(0);
    if (keyword == "state") {
      std::vector<TapState> path;
      for (std::size_t i = 1; i < words.size(); ++i) path.push_back(findState(words[i]).value());
      chain_.walk(path);
    } else if (keyword == "endir" || keyword == "enddr") {
      const Event::Kind kind = keyword == "endir" ? Event::kEndIr : Event::kEndDr;
      chain_.setEnd(kind, findState(words.at(1)).value());
    } else if (keyword == "runtest") {
      runTest(words);
    } else if (keyword == "trst") {
      chain_.record({.kind = Event::kTrst, .word = words.at(1)});
    } else if (keyword == "frequency") {
      Event event{.kind = Event::kFrequency};
      if (words.size() > 1) event.amounts[kHertz].value = std::stod(words[1]);
      chain_.record(std::move(event));
    } else if (keyword.ends_with("ir") || keyword.ends_with("dr")) {
      scanOrPattern(words);
    } else if (keyword == "pio" || keyword == "piomap") {
      chain_.record({.kind = Event::kSilent});
    } else {
      throw std::invalid_argument("no statement: " + keyword);
    }
  }

  void scanOrPattern(const Words& words) {
    Pattern& pattern = patterns_[words[0]];
    const std::size_t length = std::stoul(words.at(1));
    // Values stay while the length stays, but an expected value never does.
    if (length != pattern.length) pattern.values.clear();
    pattern.values.erase("tdo");
    pattern.length = length;
    for (std::size_t i = 2; i + 1 < words.size() && length > 0; i += 2) {
      pattern.values[words[i]] = bitsFromHex(std::string_view(words[i + 1]).substr(1), length);
    }
    if (length > 0 && !pattern.has("tdi")) throw std::invalid_argument("TDI missing");
    // An expected value is as good as none beside a mask that compares nothing.
    const bool maskGiven = std::find(words.begin(), words.end(), "mask") != words.end();
    if (maskGiven && pattern.get("mask", '0').find('1') == Bits::npos) pattern.values.erase("tdo");
    if (words[0][0] != 's') return chain_.record({.kind = Event::kSilent});

    chain_.scan(join(words[0].substr(1), pattern));
    if (reading_.waitBehindScans >= 0) chain_.wait({}, {}, {Amount{reading_.waitBehindScans}});
  }

  Event join(const std::string& kind, const Pattern& data) {
    Event scan{.kind = kind == "ir" ? Event::kSir : Event::kSdr};
    for (const std::string& word : {"h" + kind, "s" + kind, "t" + kind}) {
      const Pattern& piece = patterns_[word];
      const char maskFill = reading_.joined && word[0] != 's' ? '0' : '1';
      const bool compared = reading_.joined || piece.has("tdo");
      scan.tdi += piece.get("tdi", '1');
      scan.care += piece.get("smask", '1');
      scan.tdo += piece.get("tdo", '0');
      scan.mask += compared ? piece.get("mask", maskFill) : Bits(piece.length, '0');
    }
    if (reading_.joined && !data.has("smask")) scan.care.clear();
    if (reading_.joined && !data.has("tdo")) scan.mask.clear();
    return scan;
  }

  void runTest(const Words& words) {
    const std::optional<TapState> run = findState(words.at(1));
    std::optional<TapState> end;
    std::array<Amount, 4> amounts;
    AmountName time = kMinSeconds;
    for (std::size_t i = run ? 2 : 1; i < words.size(); i += 2) {
      if (words[i] == "endstate") {
        end = findState(words.at(i + 1)).value();
        continue;
      }
      if (words[i] == "maximum") time = kMaxSeconds, ++i;
      amounts[words.at(i + 1) == "sec" ? time : kClocks].value = std::stod(words[i]);
    }
    chain_.wait(run, end, amounts);
  }

  SvfReading reading_;
  TapChain chain_;
  std::map<std::string, Pattern> patterns_;
};

}  // namespace

Trace playSvf(std::string_view text, const SvfReading& reading) {
  return Player(reading).play(withoutRemarks(text, {"!", "//"}));
}

std::string uncommentValues(std::string text) {
  for (std::string_view label : {"\n!   TDI (", "\n!   TDO (", "\n!  MASK (", "\n!        "}) {
    for (std::size_t at = 0; (at = text.find(label, at)) != text.npos; ++at) text[at + 1] = ' ';
  }
  return text;
}

std::string withoutRemarks(std::string_view text, std::initializer_list<std::string_view> marks) {
  std::string kept;
  while (!text.empty()) {
    std::size_t end = text.size();
    for (std::string_view mark : marks) end = std::min(end, text.find(mark));
    kept += text.substr(0, end);
    text.remove_prefix(end);
    text.remove_prefix(std::min(text.find_first_of("\r\n"), text.size()));
  }
  return kept;
}

std::vector<std::string> splitWords(std::string_view text) {
  std::string spaced;
  bool group = false;
  for (const char character : text) {
    if (character == '(') spaced += ' ';
    group = character == '(' || (group && character != ')');
    if (group && std::isspace(static_cast<unsigned char>(character)) != 0) continue;
    spaced += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    if (character == ')') spaced.back() = ' ';
  }
  std::istringstream words(spaced);
  return {std::istream_iterator<std::string>(words), {}};
}

}  // namespace tapforge::replay
