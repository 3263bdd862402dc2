#include <algorithm>
#include <array>

#include "replay/fault.h"
#include "replay/text_reader.h"

namespace tapforge_replay {
namespace {

using Kind = Operation::Kind;

enum CharKind : std::uint8_t { kPlain, kMark, kBlank, kComment };

constexpr std::array<CharKind, 256> kKinds = [] {
  std::array<CharKind, 256> kinds{};
  for (const char c : {' ', '\t', '\n', '\v', '\f', '\r'})
    kinds[static_cast<unsigned char>(c)] = kBlank;
  for (const char c : {'(', ')', ';'}) kinds[static_cast<unsigned char>(c)] = kMark;
  kinds['!'] = kinds['/'] = kComment;
  return kinds;
}();

constexpr std::size_t kMostWord = 1 << 16;   // characters
constexpr std::string_view kPieces = "hst";  // of ScanJoiner, by the first letter
constexpr std::array<std::string_view, Pattern::kNameCount> kNames = {"tdi", "tdo", "mask",
                                                                      "smask"};

CharKind kindOf(int character) { return kKinds[static_cast<unsigned char>(character)]; }

class SvfReader final : public TextReader {
 public:
  using TextReader::TextReader;

  std::string_view form() const override { return "SVF"; }

  void next(Operation& operation) override {
    bool isOperation = false;
    while (!isOperation) {
      skipBlanks();
      input_.mark();
      operation.kind = Kind::kEnd;
      operation.place = {line_, input_.offset()};
      const std::string keyword(word());
      isOperation = keyword.empty() || statement(keyword, operation);
    }
  }

 private:
  // Past blanks, line ends and comments. Returns the next character or -1.
  int skipBlanks() {
    while (true) {
      const int character = input_.peek();
      if (character < 0) return character;
      const CharKind kind = kindOf(character);
      if (kind < kBlank) return character;
      input_.skip(1);
      if (kind == kBlank) {
        countLine(character);
      } else {
        skipComment(character);
      }
    }
  }

  void skipComment(int start) {
    if (start == '/' && input_.peek() != '/') fail("a \"/\" on its own");
    for (std::string_view ahead; !(ahead = input_.window()).empty();) {
      const std::size_t end = ahead.find_first_of("\r\n");
      input_.skip(std::min(end, ahead.size()));
      if (end != ahead.npos) return;
    }
  }

  // The next word in lower case: up to a blank, a comment or one of ();, which are words
  // of their own. Empty at the end of the file. It holds until the next word is read.
  const std::string& word() {
    word_.clear();
    const int first = skipBlanks();
    if (first < 0) return word_;
    if (kindOf(first) == kMark) return word_ += static_cast<char>(input_.get());
    while (true) {
      const std::string_view ahead = input_.window();
      std::size_t count = 0;
      while (count < ahead.size() && kindOf(ahead[count]) == kPlain) ++count;
      for (const char c : ahead.substr(0, count)) {
        word_ += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
      }
      input_.skip(count);
      if (word_.size() > kMostWord) fail("a word of more than 64 Ki characters");
      if (count < ahead.size() || ahead.empty()) return word_;
    }
  }
  const std::string& needWord() {
    if (word().empty()) fail("the file ends inside a statement");
    return word_;
  }
  void expect(std::string_view wanted) {
    if (needWord() == wanted) return;
    fail("\"" + std::string(wanted) + "\" expected, not \"" + word_ + "\"");
  }

  // After its opening parenthesis.
  void value(Pattern::Value& value, std::size_t length) {
    int character = 0;
    while ((character = skipBlanks()) != ')') {
      if (character < 0) fail("the file ends inside a value");
      if (!readDigits()) fail(std::string("\"") + static_cast<char>(character) + "\" in a value");
    }
    input_.skip(1);
    finishValue(value, length);
  }

  // Returns false for a statement that is no operation.
  bool statement(const std::string& keyword, Operation& operation) {
    const std::size_t piece = kPieces.find(keyword[0]);
    const bool isRegister = keyword.ends_with("ir") || keyword.ends_with("dr");
    if (keyword.size() == 3 && isRegister && piece != kPieces.npos) {
      return scan(static_cast<ScanJoiner::Piece>(piece), keyword[1] == 'i', operation);
    }
    if (keyword == "runtest") {
      runTest(operation);
    } else if (keyword == "state") {
      std::vector<TapState> states = {state(needWord())};
      while (needWord() != ";") states.push_back(state(word_));
      finishMove(states, operation);
    } else if (keyword == "endir" || keyword == "enddr") {
      finishEndState(keyword == "endir", stableState(needWord()), operation);
      expect(";");
    } else if (keyword == "frequency") {
      operation.kind = Kind::kFrequency;
      operation.hertz = -1;
      if (needWord() == ";") return true;
      operation.hertz = number(word_);
      expect("hz");
      expect(";");
    } else if (keyword == "trst" || keyword == "pio" || keyword == "piomap") {
      operation.kind = keyword == "trst" ? Kind::kResetLine : Kind::kParallelIo;
      operation.word = keyword == "piomap" ? "map" : "";
      while (needWord() != ";") {
        const bool isApart = word_ != ")" && !operation.word.ends_with('(');
        operation.word += (isApart && !operation.word.empty() ? " " : "") + word_;
      }
    } else {
      fail("no SVF statement: \"" + keyword + "\"");
    }
    return true;
  }

  bool scan(ScanJoiner::Piece piece, bool instruction, Operation& operation) {
    Pattern& pattern = joiner_.pattern(instruction, piece);
    pattern.begin(length(needWord()));
    while (word() != ";") {
      const auto name = std::find(kNames.begin(), kNames.end(), word_) - kNames.begin();
      if (name == Pattern::kNameCount) {
        requireTdi(pattern, operation.place);
        fail("TDI, TDO, MASK or SMASK expected, not \"" + word_ + "\"");
      }
      expect("(");
      if (pattern.length > 0) {
        value(pattern.values[static_cast<std::size_t>(name)], pattern.length);
      } else {  // says nothing
        while (needWord() != ")") continue;
      }
    }
    requireTdi(pattern, operation.place);
    if (piece != ScanJoiner::kData || pattern.length == 0) return false;
    finishScan(instruction, operation);
    return true;
  }

  void requireTdi(const Pattern& pattern, const Place& place) const {
    if (pattern.length == 0 || pattern[Pattern::kTdi].given) return;
    constexpr const char* kCause = ": TDI is missing, as in an unmerged copy (tapforge -c)";
    throw NotPlayable(input_.path(), describe(place) + kCause);
  }

  void runTest(Operation& operation) {
    operation.kind = Kind::kWait;
    Wait& wait = operation.wait = {};
    if (findState(needWord())) {
      tap_.setRun(stableState(word_));
      needWord();
    }
    for (; word_ != ";"; needWord()) {
      if (word_ == "endstate") {
        tap_.setRunEnd(stableState(needWord()));
      } else if (word_ == "maximum") {
        wait.maximum = number(needWord());
        expect("sec");
      } else {
        const double amount = number(word_);
        needWord();
        if (word_ != "tck" && word_ != "sck" && word_ != "sec") {
          fail("TCK, SCK or SEC expected, not \"" + word_ + "\"");
        }
        (word_ == "sec" ? wait.seconds : wait.clocks) = amount;
        wait.systemClock = wait.systemClock || word_ == "sck";
      }
    }
    if (wait.clocks < 0 && wait.seconds < 0) fail("a RUNTEST without count and time");
    tap_.wait(operation);
  }

  std::string word_;
};

}  // namespace

std::unique_ptr<Reader> makeSvfReader(Input& input) { return std::make_unique<SvfReader>(input); }

}  // namespace tapforge_replay
