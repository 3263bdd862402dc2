#include <algorithm>
#include <array>
#include <string_view>

#include "replay/fault.h"
#include "replay/output.h"
#include "replay/text_reader.h"

namespace tapforge_replay {
namespace {

using Kind = Operation::Kind;

constexpr std::size_t kMostName = 10000;  // characters of a word that is no value

bool isBlank(int c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }
bool isLineEnd(int c) { return c == '\n' || c == '\r'; }
bool endsCommand(int c) { return c < 0 || c == ';' || isLineEnd(c); }
bool endsWord(int c) { return isBlank(c) || endsCommand(c); }

// Reads a script of tapbus commands as a Tcl shell does. No argument of these commands
// has a character that is special in Tcl, so where a shell would put something else in
// the place of a word, or go on over a line end, the word is none that is known, and
// the reading ends with NotPlayable.
class TclReader final : public TextReader {
 public:
  using TextReader::TextReader;

  std::string_view form() const override { return "Tcl"; }

  void next(Operation& operation) override {
    bool isOperation = false;
    while (!isOperation && beginCommand()) {
      operation.place = {line_, input_.offset()};
      isOperation = command(operation);
    }
    if (isOperation) return;
    operation.kind = Kind::kEnd;
    operation.place = {line_, input_.offset()};
  }

 private:
  [[noreturn]] void fail(const std::string& text) const override {
    throw NotPlayable(input_.path(), "line " + std::to_string(line_) + ": " + printable(text));
  }
  [[noreturn]] void refuse(std::string_view word) const {
    if (word.find("!==*") != word.npos) failAsMerged();
    const std::string what = word == command_ ? "no tapbus command" : "no argument of " + command_;
    fail(what + ": \"" + std::string(word) + '"');
  }
  [[noreturn]] void failAsMerged() const {
    fail("a merged script (tapforge -tapbus without -c), which no Tcl shell runs");
  }

  // Past all that stands between commands; false at the end of the file.
  bool beginCommand() {
    for (int c = 0; (c = input_.peek()) >= 0;) {
      if (c == '#') {
        skipRemark();
      } else if (isBlank(c) || endsCommand(c)) {
        input_.skip(1);
        countLine(c);
      } else {
        input_.mark();
        return true;
      }
    }
    return false;
  }

  // A backslash makes the line end behind it a part of the remark.
  void skipRemark() {
    bool escaped = false;
    for (int c = 0; (c = input_.peek()) >= 0 && (escaped || !isLineEnd(c));) {
      if (c == '\x1A') fail("a Tcl shell reads no further than the byte 0x1a");
      const std::uint64_t line = line_;
      input_.skip(1);
      countLine(c);
      if (line != line_) {
        note("line " + std::to_string(line) + ": the comment takes the next line with it");
      }
      escaped = escaped ? c == '\r' && input_.peek() == '\n' : c == '\\';
    }
  }

  // The next word of the command, without quotes or braces around it; empty at its end.
  // It holds until the next one is read.
  std::string_view argument() {
    beginWord();
    argument_.clear();
    while (!endsWord(input_.peek()) && argument_.size() < kMostName) {
      argument_ += static_cast<char>(input_.get());
    }
    if (argument_.size() == kMostName) fail("a word that is too long");
    const std::string_view word = argument_;
    const bool quoted = (word.starts_with('{') && word.ends_with('}')) ||
                        (word.starts_with('"') && word.ends_with('"'));
    if (!quoted || word.size() < 3 || word.find('$') != word.npos) return word;
    return word.substr(1, word.size() - 2);
  }
  std::string_view needArgument() {
    const std::string_view next = argument();
    if (next.empty()) fail("an argument of " + command_ + " is missing");
    return next;
  }

  int beginWord() {
    while (isBlank(input_.peek())) input_.skip(1);
    return input_.peek();
  }

  std::string_view needDigits() {
    const std::string_view text = needArgument();
    if (text.find_first_not_of("0123456789") != text.npos) refuse(text);
    return text;
  }

  // Returns false for a command that is no operation.
  bool command(Operation& operation) {
    command_ = argument();
    operation.before.clear();
    operation.after.clear();
    bool isOperation = true;
    if (command_ == "scan_ir_tapbus" || command_ == "scan_dr_tapbus") {
      scan(command_ == "scan_ir_tapbus", operation);
    } else if (command_ == "runtest_tapbus") {
      wait(operation);
    } else if (command_ == "run_state_tapbus") {
      path(operation);
    } else if (command_ == "set_property") {
      isOperation = property(operation);
    } else if (command_ == "puts") {
      isOperation = false;
      if (needArgument() != "\"---" || needArgument() != "line") refuse(argument_);
      const std::string_view number = needArgument();
      const std::size_t end = number.find_first_not_of("0123456789");
      if (end != number.size() - 1 || number[end] != '"') refuse(number);
    } else {
      refuse(command_);
    }
    if (const std::string_view more = argument(); !more.empty()) refuse(more);
    return isOperation;
  }

  void scan(bool instruction, Operation& operation) {
    Pattern& pattern = joiner_.pattern(instruction, ScanJoiner::kData);
    pattern.begin(0);  // each scan says all
    pattern.begin(length(needDigits()));
    if (pattern.length == 0) fail("a scan of 0 bits");
    for (std::string_view option; !(option = argument()).empty();) {
      value(pattern, option, {"-tdi", "-tdo", "-mask"});
    }
    if (!pattern[Pattern::kTdi].given) failAsMerged();
    for (const auto piece : {ScanJoiner::kHeader, ScanJoiner::kTrailer}) {
      const Pattern& frame = joiner_.pattern(instruction, piece);
      if (frame.length > 0 && !frame[Pattern::kTdi].given) fail("a header or trailer without TDI");
    }
    finishScan(instruction, operation);
  }

  // Reads the value that the word `name` announces. Its digits may be many, so they are
  // read where they stand.
  void value(Pattern& pattern, std::string_view name,
             const std::array<std::string_view, Pattern::kSmask>& names) {
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) refuse(name);
    const int opening = beginWord();
    const bool quoted = opening == '{' || opening == '"';
    if (quoted) input_.skip(1);
    readDigits();
    finishValue(pattern.values[static_cast<std::size_t>(found - names.begin())], pattern.length);
    if ((quoted && input_.get() != (opening == '{' ? '}' : '"')) || !endsWord(input_.peek())) {
      fail("a character in a value that is no digit");
    }
  }

  void wait(Operation& operation) {
    operation.kind = Kind::kWait;
    operation.wait = {};
    operation.wait.clocks = 0;
    std::string_view option = needArgument();
    if (option == "-wait") {
      tap_.setRun(stableState(needArgument()));
      option = needArgument();
    }
    if (option != "-tck") refuse(option);
    for (; option == "-tck"; option = argument()) {
      operation.wait.clocks += number(needDigits());
    }
    if (option == "-end_state") {
      tap_.setRunEnd(stableState(needArgument()));
    } else if (!option.empty()) {
      refuse(option);
    }
    tap_.wait(operation);
  }

  void path(Operation& operation) {
    std::vector<TapState> states;
    std::string_view name = needArgument();
    do {
      states.push_back(state(name));
    } while (!(name = argument()).empty());
    finishMove(states, operation);
  }

  // Properties stay until they are set anew. A TDO of another length cannot come true.
  static void setLength(Pattern& pattern, std::size_t length) {
    if (length == pattern.length) return;
    Pattern::Value& tdo = pattern[Pattern::kTdo];
    const bool isStale = tdo.given;
    pattern.begin(length);
    tdo.given = isStale;
    tdo.bits.clear();
    tdo.bits.append(length, false);
  }

  bool property(Operation& operation) {
    const std::string name(needArgument());
    const bool isEnd = name == "ENDSTATE_IR" || name == "ENDSTATE_DR";
    const std::size_t piece = std::string_view("hir tir hdr tdr").find(name.substr(0, 3));
    const std::string_view what =
        std::string_view(name).substr(std::min<std::size_t>(3, name.size()));
    if (isEnd) {
      finishEndState(name == "ENDSTATE_IR", stableState(needArgument()), operation);
    } else if (piece % 4 == 0) {
      Pattern& pattern =
          joiner_.pattern(piece <= 4, name[0] == 'h' ? ScanJoiner::kHeader : ScanJoiner::kTrailer);
      if (what == "_length") {
        setLength(pattern, length(needDigits()));
      } else {
        value(pattern, what, {"_TDI", "_TDO", "_TDO_mask"});
      }
    } else {
      refuse(name);
    }
    if (const std::string_view object = needArgument(); object != "$current_tapbus") refuse(object);
    return isEnd;
  }

  std::string command_;
  std::string argument_;
};

}  // namespace

std::unique_ptr<Reader> makeTclReader(Input& input) { return std::make_unique<TclReader>(input); }

}  // namespace tapforge_replay
