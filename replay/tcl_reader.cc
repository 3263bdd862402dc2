#include <utility>

#include "replay/text_reader.h"

namespace tapforge_replay {
namespace {

using Kind = Operation::Kind;

// Reads the commands of a tapbus script. The words of a command may go over
// several lines, as in a merged script, so a command ends where the next word is
// none of its own.
class TclReader final : public TextReader {
 public:
  explicit TclReader(Input& input) : TextReader(input, "#!") {}

  std::string_view form() const override { return merged_ ? "merged Tcl" : "Tcl"; }
  SharedLines sharedLines() const override { return merged_ ? SharedLines{} : sharedLines_; }

  void next(Operation& operation) override {
    do {
      operation.kind = Kind::kEnd;
      advance();
      operation.place = {wordLine_, wordOffset_, 0};
      if (lookahead_.empty()) break;
      if (commandLine_ == wordLine_ && sharedLines_.count++ == 0) {
        sharedLines_.first = operation.place;
      }
      if (!command(take(), operation)) continue;
      operation.place.end = wordOffset_;
      return;
    } while (true);
    operation.place.end = input_.offset();
  }

 private:
  // The remark behind a header or trailer says that the scans hold its bits.
  bool skipComment() override {
    if (input_.get() == '!') {
      if (!merged_)
        note("a merged script, which no Tcl shell runs: its values stand on lines of their own");
      merged_ = true;
      if (property_ != nullptr) property_->begin(0);
    }
    skipLine();
    return true;
  }

  // One word is looked at before it is taken.
  void advance() {
    if (!lookahead_.empty()) return;
    skipBlanks();
    wordLine_ = line_;
    wordOffset_ = input_.offset();
    lookahead_ = word();
  }
  bool accept(std::string_view wanted) {
    advance();
    if (lookahead_ != wanted) return false;
    take();
    return true;
  }
  std::string take() {
    advance();
    if (lookahead_.empty()) fail("the file ends inside a command");
    commandLine_ = wordLine_;
    return std::exchange(lookahead_, {});
  }

  // Returns false for a command that is no operation.
  bool command(const std::string& name, Operation& operation) {
    operation.before.clear();
    operation.after.clear();
    bool isOperation = true;
    if (name == "scan_ir_tapbus" || name == "scan_dr_tapbus") {
      scan(name == "scan_ir_tapbus", operation);
    } else if (name == "runtest_tapbus") {
      wait(operation);
    } else if (name == "runtest") {  // SVF text, put in after each scan
      operation.wait = {};
      operation.wait.clocks = number(take());
      if (!accept("tck")) fail("\"tck\" expected");
      if (!accept(";")) fail("\";\" expected");
      operation.kind = Kind::kWait;
      tap_.wait(operation);
    } else if (name == "run_state_tapbus") {
      path(operation);
    } else if (name == "set_property") {
      isOperation = property(operation);
    } else if (name == "puts") {
      if (take() != "\"---" || take() != "line") fail("puts of something else than a line number");
      take();
      isOperation = false;
    } else {
      fail("no tapbus command: \"" + name + "\"");
    }
    return isOperation;
  }

  void scan(bool instruction, Operation& operation) {
    Pattern& pattern = joiner_.pattern(instruction, ScanJoiner::kData);
    pattern.begin(0);  // each scan says all
    pattern.begin(length(take()));
    if (pattern.length == 0) fail("a scan of 0 bits");
    while (true) {
      advance();
      std::string name = lookahead_;
      const bool option = name.starts_with('-');
      if (option) name.erase(0, 1);
      const auto value = name == "tdi"     ? Pattern::kTdi
                         : name == "tdo"   ? Pattern::kTdo
                         : name == "mask"  ? Pattern::kMask
                         : name == "smask" ? Pattern::kSmask
                                           : Pattern::kNameCount;
      if (value == Pattern::kNameCount) break;
      lookahead_.clear();
      if (!option) expect("(");
      readHex(pattern[value].bits, pattern.length, option ? '\0' : ')');
      commandLine_ = line_;
      pattern[value].given = true;
    }
    if (!pattern[Pattern::kTdi].given) fail("TDI is missing");
    operation.kind = Kind::kScan;
    operation.number = ++scans_;
    joiner_.join(instruction, operation);
    tap_.scan(operation);
  }

  void wait(Operation& operation) {
    operation.kind = Kind::kWait;
    operation.wait = {};
    double clocks = 0;
    if (accept("-wait")) tap_.setRun(stableState(take()));
    while (accept("-tck")) clocks += number(take());
    if (accept("-end_state")) tap_.setRunEnd(stableState(take()));
    operation.wait.clocks = clocks;
    tap_.wait(operation);
  }

  void path(Operation& operation) {
    operation.kind = Kind::kMove;
    const TapState first = state(take());
    advance();
    if (findState(lookahead_) || !isStable(first)) {
      step(first, true, operation);
    } else {
      tap_.moveTo(first, operation);
    }
    while (findState(lookahead_)) {
      step(state(take()), false, operation);
      advance();
    }
    if (!isStable(tap_.state())) fail("a path ends in " + std::string(nameOf(tap_.state())));
  }

  bool property(Operation& operation) {
    const std::string name = take();
    if (!accept("{")) fail("\"{\" expected");
    bool isOperation = false;
    const std::size_t under = name.find('_');
    const bool instruction = name[1] == 'i';
    if (name == "endstate_ir" || name == "endstate_dr") {
      const TapState end = stableState(take());
      operation.kind = Kind::kEndState;
      operation.instruction = name == "endstate_ir";
      operation.word = nameOf(end);
      tap_.setEnd(operation.instruction, end);
      if (!accept("}")) fail("\"}\" expected");
      isOperation = true;
    } else if (under == 3 && (name[0] == 'h' || name[0] == 't') && name[2] == 'r') {
      const auto piece = name[0] == 'h' ? ScanJoiner::kHeader : ScanJoiner::kTrailer;
      Pattern& pattern = joiner_.pattern(instruction, piece);
      property_ = &pattern;
      const std::string what = name.substr(under + 1);
      if (what == "length") {
        pattern.begin(0);
        pattern.begin(length(take()));
        if (!accept("}")) fail("\"}\" expected");
      } else if (what == "tdi" || what == "tdo" || what == "tdo_mask") {
        const auto value = what == "tdi"   ? Pattern::kTdi
                           : what == "tdo" ? Pattern::kTdo
                                           : Pattern::kMask;
        readHex(pattern[value].bits, pattern.length, '}');
        pattern[value].given = true;
      } else {
        fail("no tapbus property: \"" + name + "\"");
      }
    } else {
      fail("no tapbus property: \"" + name + "\"");
    }
    if (!accept("$current_tapbus")) fail("\"$current_tapbus\" expected");
    if (!isOperation) advance();  // a remark that may follow is about this property
    property_ = nullptr;
    return isOperation;
  }

  bool merged_ = false;
  Pattern* property_ = nullptr;  // the one set last, until the next command
  std::string lookahead_;
  std::uint64_t wordLine_ = 0;
  std::uint64_t wordOffset_ = 0;
  SharedLines sharedLines_;
  std::uint64_t commandLine_ = 0;  // of the last word taken
};

}  // namespace

std::unique_ptr<Reader> makeTclReader(Input& input) { return std::make_unique<TclReader>(input); }

}  // namespace tapforge_replay
