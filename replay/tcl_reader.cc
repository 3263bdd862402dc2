#include <algorithm>
#include <cctype>
#include <string_view>

#include "replay/fault.h"
#include "replay/output.h"
#include "replay/text_reader.h"

namespace tapforge_replay {
namespace {

using Kind = Operation::Kind;

constexpr char kEndOfScript = '\x1A';     // for the command "source"
constexpr std::size_t kMostWord = 10000;  // characters of a word that is no value
constexpr std::string_view kLineMarker = "--- line ";
constexpr std::string_view kMergedRemark = "!==*";

bool isBlank(int c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }
bool isLineEnd(int c) { return c == '\n' || c == '\r'; }
bool endsCommand(int c) { return c < 0 || c == ';' || isLineEnd(c); }

// Reads a script of tapbus commands as a Tcl shell does. The reading ends with
// NotPlayable where the shell would put something else in the place of a word, or
// where a command would get an argument that it does not have.
class TclReader final : public TextReader {
 public:
  explicit TclReader(Input& input) : TextReader(input, "") {}

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
  bool skipComment() override { return true; }

  [[noreturn]] void fail(const std::string& text) const override {
    throw NotPlayable(input_.path(), "line " + std::to_string(line_) + ": " + printable(text));
  }
  [[noreturn]] void refuse(std::string_view word) const {
    if (word.find(kMergedRemark) != word.npos) failAsMerged();
    fail("no argument of " + command_ + ": \"" + std::string(word) + "\"");
  }
  [[noreturn]] void failAsMerged() const {
    fail("a merged script (tapforge -tapbus without -c), which no Tcl shell runs");
  }
  [[noreturn]] void failAtEndOfScript() const {
    fail("a Tcl shell reads no further than the byte 0x1a");
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

  // A backslash makes a line end, or another backslash, a part of the remark.
  void skipRemark() {
    for (int c = 0; (c = input_.peek()) >= 0 && !isLineEnd(c);) {
      const std::string_view ahead = input_.window();
      const std::size_t plain = ahead.find_first_of("\r\n\\\x1A");
      input_.skip(std::min(plain, ahead.size()));
      if (plain == ahead.npos || isLineEnd(input_.peek())) continue;
      if (input_.get() == kEndOfScript) failAtEndOfScript();
      c = input_.peek();
      if (c != '\\' && !isLineEnd(c)) continue;
      input_.skip(1);
      if (c == '\\') continue;
      if (c == '\r' && input_.peek() == '\n') input_.skip(1);
      note("line " + std::to_string(line_++) + ": the comment takes the next line with it");
    }
  }

  // The next word of the command as the command gets it; empty at its end. It holds
  // until the next one is read.
  std::string_view argument() {
    argument_.clear();
    const int closing = openWord();
    while (!closeWord(closing)) {
      const int c = input_.get();
      if (c == kEndOfScript) failAtEndOfScript();
      if (c < 0 || isLineEnd(c)) fail("a word goes on over the end of its line");
      const bool isVariable = c == '$' && closing == 0 && argument_.empty();
      if (c == '\\' || c == '[' || (c == '$' && !isVariable)) {
        fail(std::string("a Tcl shell substitutes what begins with \"") + static_cast<char>(c) +
             '"');
      }
      argument_ += static_cast<char>(c);
      if (argument_.size() > kMostWord) fail("a word that is too long");
    }
    if (closing != 0 && argument_.empty()) fail("an empty word");
    return argument_;
  }
  std::string_view needArgument() {
    const std::string_view next = argument();
    if (next.empty()) fail("an argument of " + command_ + " is missing");
    return next;
  }

  // Past the blanks before a word and the mark that opens it. Returns the mark that
  // has to close it, or 0.
  int openWord() {
    while (isBlank(input_.peek())) input_.skip(1);
    const int opening = input_.peek();
    if (opening != '{' && opening != '"') return 0;
    input_.skip(1);
    return opening == '{' ? '}' : opening;
  }
  bool closeWord(int closing) {
    if (closing != 0) {
      if (input_.peek() != closing) return false;
      input_.skip(1);
    }
    const bool ends = isBlank(input_.peek()) || endsCommand(input_.peek());
    if (closing != 0 && !ends) fail("characters behind a closing quote or brace");
    return ends;
  }

  std::string_view digits(std::string_view text) const {
    if (text.find_first_not_of("0123456789") != text.npos) refuse(text);
    return text;
  }
  // States are known in capitals and in small letters.
  TapState needStableState() {
    needArgument();
    return stableState(toLowerCase(argument_));
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
      const std::string_view text = needArgument();
      if (!text.starts_with(kLineMarker)) refuse(text);
      number(digits(text.substr(kLineMarker.size())));
      isOperation = false;
    } else {
      if (command_.starts_with(kMergedRemark)) failAsMerged();
      fail("no tapbus command: \"" + command_ + "\"");
    }
    if (const std::string_view more = argument(); !more.empty()) refuse(more);
    return isOperation;
  }

  void scan(bool instruction, Operation& operation) {
    Pattern& pattern = joiner_.pattern(instruction, ScanJoiner::kData);
    pattern.begin(0);  // each scan says all
    pattern.begin(length(digits(needArgument())));
    if (pattern.length == 0) fail("a scan of 0 bits");
    for (std::string_view option; !(option = argument()).empty();) {
      const auto name = option == "-tdi"    ? Pattern::kTdi
                        : option == "-tdo"  ? Pattern::kTdo
                        : option == "-mask" ? Pattern::kMask
                                            : Pattern::kNameCount;
      if (name == Pattern::kNameCount || pattern[name].given) refuse(option);
      value(pattern[name], pattern.length);
    }
    if (!pattern[Pattern::kTdi].given) failAsMerged();
    operation.kind = Kind::kScan;
    operation.number = ++scans_;
    joiner_.join(instruction, operation);
    tap_.scan(operation);
  }

  // The digits may be many, so they are read where they stand.
  void value(Pattern::Value& value, std::size_t length) {
    const int closing = openWord();
    if (std::isxdigit(input_.peek()) == 0) fail("a value without digits");
    readHex(value.bits, length, '\0');
    if (!closeWord(closing)) fail("a character in a value that is no digit");
    value.given = true;
  }

  void wait(Operation& operation) {
    operation.kind = Kind::kWait;
    operation.wait = {};
    operation.wait.clocks = 0;
    std::string_view option = needArgument();
    if (option == "-wait") {
      tap_.setRun(needStableState());
      option = needArgument();
    }
    if (option != "-tck") refuse(option);
    for (; option == "-tck"; option = argument()) {
      operation.wait.clocks += number(digits(needArgument()));
    }
    if (option == "-end_state") {
      tap_.setRunEnd(needStableState());
    } else if (!option.empty()) {
      refuse(option);
    }
    tap_.wait(operation);
  }

  void path(Operation& operation) {
    operation.kind = Kind::kMove;
    needArgument();
    const TapState first = state(toLowerCase(argument_));
    std::string_view more = argument();
    if (more.empty() && isStable(first)) {
      tap_.moveTo(first, operation);
    } else {
      step(first, true, operation);
    }
    for (; !more.empty(); more = argument()) step(state(toLowerCase(argument_)), false, operation);
    if (!isStable(tap_.state())) fail("a path ends in " + std::string(nameOf(tap_.state())));
  }

  bool property(Operation& operation) {
    const std::string name(needArgument());
    const bool instruction = name.ends_with("_IR") || name[1] == 'i';
    const bool isEnd = name == "ENDSTATE_IR" || name == "ENDSTATE_DR";
    if (isEnd) {
      const TapState end = needStableState();
      operation.kind = Kind::kEndState;
      operation.instruction = instruction;
      operation.word = nameOf(end);
      tap_.setEnd(instruction, end);
    } else if (name.starts_with("hir_") || name.starts_with("hdr_")) {
      pieceProperty(joiner_.pattern(instruction, ScanJoiner::kHeader), name);
    } else if (name.starts_with("tir_") || name.starts_with("tdr_")) {
      pieceProperty(joiner_.pattern(instruction, ScanJoiner::kTrailer), name);
    } else {
      refuse(name);
    }
    if (const std::string_view object = needArgument(); object != "$current_tapbus") refuse(object);
    return isEnd;
  }

  // Of a header or trailer.
  void pieceProperty(Pattern& pattern, const std::string& name) {
    const std::string_view what = std::string_view(name).substr(4);
    if (what == "length") {
      pattern.begin(0);
      pattern.begin(length(digits(needArgument())));
    } else if (what == "TDI") {
      value(pattern[Pattern::kTdi], pattern.length);
    } else if (what == "TDO") {
      value(pattern[Pattern::kTdo], pattern.length);
    } else if (what == "TDO_mask") {
      value(pattern[Pattern::kMask], pattern.length);
    } else {
      refuse(name);
    }
  }

  std::string command_;
  std::string argument_;
};

}  // namespace

std::unique_ptr<Reader> makeTclReader(Input& input) { return std::make_unique<TclReader>(input); }

}  // namespace tapforge_replay
