
#include <algorithm>

#include "replay/fault.h"
#include "replay/text_reader.h"

namespace tapforge_replay {
namespace {

using Kind = Operation::Kind;

constexpr std::array<std::string_view, Pattern::kNameCount> kValueNames = {"tdi", "tdo", "mask",
                                                                           "smask"};

class SvfReader final : public TextReader {
 public:
  explicit SvfReader(Input& input) : TextReader(input, "!/") {}

  std::string_view form() const override { return "SVF"; }

  void next(Operation& operation) override {
    do {
      skipBlanks();
      input_.mark();
      operation.kind = Kind::kEnd;
      operation.place = {line_, input_.offset()};
      const std::string keyword(word());
      if (keyword.empty()) break;
      if (!statement(keyword, operation)) continue;
      return;
    } while (true);
  }

 private:
  void skipComment() override {
    if (input_.get() == '/' && input_.peek() != '/') fail("a \"/\" on its own");
    skipLine();
  }

  // Returns false for a statement that is no operation.
  bool statement(const std::string& keyword, Operation& operation) {
    if (keyword.size() == 3 && (keyword.ends_with("ir") || keyword.ends_with("dr"))) {
      return scan(keyword, operation);
    }
    if (keyword == "runtest") return runTest(operation);
    if (keyword == "state") return path(operation);
    if (keyword == "endir" || keyword == "enddr") {
      finishEndState(keyword == "endir", stableState(needWord()), operation);
      expect(";");
      return true;
    }
    if (keyword == "frequency") {
      operation.kind = Kind::kFrequency;
      operation.hertz = -1;
      const std::string_view value = needWord();
      if (value == ";") return true;
      operation.hertz = number(value);
      expect("hz");
      expect(";");
      return true;
    }
    if (keyword == "trst" || keyword == "pio" || keyword == "piomap") {
      operation.kind = keyword == "trst" ? Kind::kResetLine : Kind::kParallelIo;
      operation.word = keyword == "piomap" ? "map" : "";
      for (std::string_view part; (part = needWord()) != ";";) {
        if (!operation.word.empty() && part != ")" && !operation.word.ends_with('(')) {
          operation.word += ' ';
        }
        operation.word += part;
      }
      return true;
    }
    fail("no SVF statement: \"" + keyword + "\"");
  }

  bool scan(const std::string& keyword, Operation& operation) {
    const bool instruction = keyword[1] == 'i';
    const char which = keyword[0];
    if (which != 's' && which != 'h' && which != 't') fail("no SVF statement: \"" + keyword + "\"");
    Pattern& pattern = joiner_.pattern(instruction, which == 's'   ? ScanJoiner::kData
                                                    : which == 'h' ? ScanJoiner::kHeader
                                                                   : ScanJoiner::kTrailer);
    pattern.begin(length(needWord()));
    values(pattern, operation.place);
    requireTdi(pattern, operation.place);
    if (which != 's' || pattern.length == 0) return false;
    finishScan(instruction, operation);
    return true;
  }

  void requireTdi(const Pattern& pattern, const Place& place) const {
    if (pattern.length == 0 || pattern[Pattern::kTdi].given) return;
    constexpr const char* kCause = ": TDI is missing, as in an unmerged copy (tapforge -c)";
    throw NotPlayable(input_.path(), describe(place) + kCause);
  }

  void values(Pattern& pattern, const Place& place) {
    while (true) {
      const std::string name(word());
      if (name == ";") return;
      const auto found = std::find(kValueNames.begin(), kValueNames.end(), name);
      if (found == kValueNames.end()) {
        requireTdi(pattern, place);
        fail("TDI, TDO, MASK or SMASK expected, not \"" + name + "\"");
      }
      expect("(");
      if (pattern.length == 0) {  // says nothing
        while (needWord() != ")") continue;
        continue;
      }
      readValue(pattern, static_cast<std::size_t>(found - kValueNames.begin()), ')');
    }
  }

  bool runTest(Operation& operation) {
    operation.kind = Kind::kWait;
    Wait& wait = operation.wait = {};
    std::string part(needWord());
    if (const auto run = findState(part)) {
      tap_.setRun(stableState(part));
      part = needWord();
    }
    while (part != ";") {
      if (part == "endstate") {
        tap_.setRunEnd(stableState(needWord()));
      } else if (part == "maximum") {
        wait.maximum = number(needWord());
        expect("sec");
      } else {
        const double amount = number(part);
        const std::string_view unit = needWord();
        if (unit != "tck" && unit != "sck" && unit != "sec") {
          fail("TCK, SCK or SEC expected, not \"" + std::string(unit) + "\"");
        }
        (unit == "sec" ? wait.seconds : wait.clocks) = amount;
        wait.systemClock = wait.systemClock || unit == "sck";
      }
      part = needWord();
    }
    if (wait.clocks < 0 && wait.seconds < 0) fail("a RUNTEST without count and time");
    tap_.wait(operation);
    return true;
  }

  bool path(Operation& operation) {
    std::vector<TapState> states;
    std::string_view name = needWord();
    do {
      states.push_back(state(name));
    } while ((name = needWord()) != ";");
    finishMove(states, operation);
    return true;
  }
};

}  // namespace

std::unique_ptr<Reader> makeSvfReader(Input& input) { return std::make_unique<SvfReader>(input); }

}  // namespace tapforge_replay
