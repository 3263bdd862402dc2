#include "tests/replay/random_svf.h"

#include <array>
#include <cctype>
#include <map>
#include <random>
#include <utility>
#include <vector>

#include "tests/replay/tap_chain.h"

namespace tapforge::replay {
namespace {

class Generator {
 public:
  Generator(unsigned seed, const SvfLimits& limits) : limits_(limits), random_(seed) {}

  std::string file(std::size_t statements) {
    const bool carriageReturns = oneIn(6);
    comments_ = !oneIn(3);
    while (statements-- > 0) statement();
    if (!oneIn(8)) text_ += '\n';
    for (std::size_t at = 0; carriageReturns && (at = text_.find('\n', at)) != text_.npos;
         at += 2) {
      text_.insert(at, 1, '\r');
    }
    return std::move(text_);
  }

 private:
  // Not by <random>'s distributions, whose numbers differ between libraries.
  std::size_t below(std::size_t bound) { return random_() % bound; }
  bool oneIn(std::size_t count) { return below(count) == 0; }
  template <typename List>
  auto pick(const List& list) {
    return list[below(std::size(list))];
  }

  void comment() {
    constexpr std::array kTexts = {" note\n", " SDR 8 TDI (FF);\n", "x; y\n", "// again\n", "\n"};
    const bool lineStart = text_.empty() || text_.back() == '\n';
    text_.append(lineStart && oneIn(2) ? "//" : "!").append(pick(kTexts));
  }

  void item(std::string_view word) {  // and what divides it from the next one
    const bool upper = oneIn(2);
    for (const char letter : word) {
      const int code = static_cast<unsigned char>(letter);
      text_ += static_cast<char>(upper != oneIn(8) ? std::toupper(code) : std::tolower(code));
    }
    text_ += oneIn(12) ? "\t " : oneIn(16) ? "\n" : " ";
    if (comments_ && oneIn(60)) comment();
  }

  template <typename... Words>
  void items(Words... words) {
    (item(words), ...);
  }

  void end(bool becomesRemark = false) {
    if (oneIn(3) && text_.back() == ' ') text_.pop_back();
    const bool shared = oneIn(6) && (!becomesRemark || limits_.anyLineSharing);
    text_ += ';' + std::string(below(4), ' ');
    if (comments_ && oneIn(8)) return comment();
    if (!shared) text_ += '\n';
    if (!shared && comments_ && oneIn(10)) comment();
  }

  void value(std::string_view name, std::size_t length) {
    const std::size_t count = (length + 3) / 4;
    const std::size_t kind = below(8);
    std::string digits;
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t bits = i == 0 && length % 4 != 0 ? length % 4 : 4;
      const std::size_t digit = (kind == 0 ? 0 : kind == 1 ? 15 : below(16)) & ((1U << bits) - 1);
      digits += "0123456789abcdef"[digit];
    }
    if (oneIn(10)) digits.erase(0, below(count));
    if (oneIn(12)) digits.insert(0, 1 + below(5), '0');
    const std::size_t line = oneIn(3) ? 1 + below(40) : oneIn(2) ? 64 : digits.size();
    for (std::size_t i = line; i < digits.size(); i += line + 1) digits.insert(i, 1, '\n');
    item(name);
    if (oneIn(2)) text_.erase(text_.find_last_not_of(' ') + 1);
    item((oneIn(3) ? "(\n" : "(") + digits + (oneIn(3) ? " )" : ")"));
  }

  void scan(const std::string& keyword) {
    const bool data = keyword[0] == 's';
    std::size_t& length = lengths_[keyword];
    const std::size_t before = length;
    if (before == 0 || oneIn(2)) length = data ? dataLength(keyword) : oneIn(3) ? 0 : 1 + below(20);
    items(keyword, std::to_string(length));
    std::vector<std::string_view> names;
    if (length != before || oneIn(2)) names.push_back("tdi");
    if (oneIn(data ? 2 : 4)) names.push_back("tdo");
    if (oneIn(3)) names.push_back("mask");
    if (oneIn(6)) names.push_back("smask");
    for (std::size_t i = 1; i < names.size(); ++i) std::swap(names[i], names[below(i + 1)]);
    for (std::string_view name : names) {
      if (length > 0) value(name, length);
    }
    end(!data);
    if (data) chain_.scan({.kind = keyword == "sir" ? Event::kSir : Event::kSdr});
  }

  std::size_t dataLength(const std::string& keyword) {
    constexpr std::array<std::size_t, 9> kEdges = {1, 4, 63, 64, 65, 128, 192, 255, 256};
    if (oneIn(6)) return pick(kEdges);
    return 1 + below(keyword == "sir" ? 40 : oneIn(60) ? 5000 : 300);
  }

  TapState stable() {
    using enum TapState;
    return pick(std::array{kReset, kIdle, kDrPause, kIrPause});
  }

  void endState(bool ir) {
    const TapState state = stable();
    items(ir ? "endir" : "enddr", nameOf(state));
    end();
    chain_.setEnd(ir ? Event::kEndIr : Event::kEndDr, state);
  }

  void statePath() {
    std::vector<TapState> path = {stable()};
    if (oneIn(3) && limits_.pathsFromAnyState) path = {nextState(chain_.state(), oneIn(2))};
    while (!isStable(path.back()) || oneIn(3)) path.push_back(nextState(path.back(), oneIn(2)));
    item("state");
    for (TapState state : path) item(nameOf(state));
    end();
    chain_.walk(path);
  }

  void runTest() {
    constexpr std::array kTimes = {"1E-3", "2.5E-4", "0.0125", "1", "3.757e-02", "1.5", "5e-6"};
    std::optional<TapState> run;
    std::optional<TapState> last;
    item("runtest");
    if (oneIn(3)) item(nameOf(*(run = stable())));
    const bool counted = !oneIn(3);
    if (counted) {
      item(oneIn(10) ? "2E3" : std::to_string(below(oneIn(20) ? 1U << 24 : 5000)));
      item(limits_.systemClock && oneIn(5) ? "sck" : "tck");
    }
    if (!counted || oneIn(5)) {
      items(pick(kTimes), "sec");
      if (limits_.maximum && (counted || limits_.maximumAfterBareTime) && oneIn(3)) {
        items("maximum", "1.75e+5", "sec");  // more than any count at the lowest frequency
      }
    }
    if (oneIn(3)) items("endstate", nameOf(*(last = stable())));
    end();
    chain_.wait(run, last, {});
  }

  void statement() {
    const std::size_t dice = below(100);
    if (dice < 28) return scan("sdr");
    if (dice < 46) return scan("sir");
    if (dice < 58) return scan(pick(std::array{"hir", "hdr", "tir", "tdr"}));
    if (dice < 76) return runTest();
    if (dice < 84) return endState(oneIn(2));
    if (dice < 92) return statePath();
    if (dice < 95) {
      constexpr std::array kClocks = {"", "1E6 hz", "2.5e6  hz", "1234567 hz", "1500.5 hz"};
      items("frequency", pick(kClocks));
    } else if (dice < 97) {
      items("trst", pick(std::array{"on", "off", "z"}));
    } else {
      item("piomap (in a out b_2\ninout c)");
      end(true);
      items("pio", pick(std::array{"(HUX)", "( z\nd l )", "(L)"}));
    }
    end(true);
  }

  SvfLimits limits_;
  std::mt19937 random_;
  std::string text_;
  bool comments_ = true;
  TapChain chain_;  // follows the state that paths start from
  std::map<std::string, std::size_t> lengths_;
};

}  // namespace

std::string randomSvf(unsigned seed, std::size_t statements, const SvfLimits& limits) {
  return Generator(seed, limits).file(statements);
}

}  // namespace tapforge::replay
