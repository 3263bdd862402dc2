#include <stdexcept>

#include "tests/replay/players.h"

namespace tapforge::replay {
namespace {

class Player {
 public:
  explicit Player(std::vector<std::string> words) : words_(std::move(words)) {}

  Trace play() {
    while (next_ < words_.size()) command(words_[next_++]);
    return chain_.take();
  }

 private:
  bool accept(std::string_view word) {
    if (next_ == words_.size() || words_[next_] != word) return false;
    ++next_;
    return true;
  }
  const std::string& take() { return words_.at(next_++); }
  void wait(const std::string& count) { chain_.wait(run_, {}, {Amount{std::stod(count)}}); }

  // Commands may share a line, so a command ends where the next word is not its own.
  void command(const std::string& name) {
    if (name == "scan_ir_tapbus" || name == "scan_dr_tapbus") {
      scan(name == "scan_ir_tapbus" ? Event::kSir : Event::kSdr);
    } else if (name == "runtest_tapbus") {
      if (accept("-wait")) run_ = findState(take()).value();
      while (accept("-tck")) wait(take());
      if (accept("-end_state")) chain_.wait(run_, findState(take()).value(), {Amount{0}});
    } else if (name == "runtest") {  // SVF text that option -wait inserts
      wait(take());
      if (!accept("tck;")) throw std::invalid_argument("inserted wait");
    } else if (name == "run_state_tapbus") {
      std::vector<TapState> path;
      while (next_ < words_.size() && findState(words_[next_])) path.push_back(*findState(take()));
      chain_.walk(path);
    } else if (name == "set_property") {
      const std::string property = take();
      const std::string value = take();  // {...}
      const Event::Kind kind = property == "endstate_ir" ? Event::kEndIr : Event::kEndDr;
      const auto state = findState(value.substr(1, value.size() - 2));
      if (property.starts_with("endstate_")) chain_.setEnd(kind, state.value());
      if (!accept("$current_tapbus")) throw std::invalid_argument("property of what?");
    } else {
      throw std::invalid_argument("no tapbus command: " + name);
    }
  }

  void scan(Event::Kind kind) {
    const std::size_t length = std::stoul(take());
    Event event{.kind = kind, .care = Bits(length, '1')};
    for (Bits* bits = &event.tdi; bits != nullptr;) {
      bits = accept("tdi")     ? &event.tdi
             : accept("smask") ? &event.care
             : accept("tdo")   ? &event.tdo
             : accept("mask")  ? &event.mask
                               : nullptr;
      if (bits != nullptr) *bits = bitsFromHex(std::string_view(take()).substr(1), length);
    }
    chain_.scan(std::move(event));
  }

  TapChain chain_;
  std::vector<std::string> words_;
  std::size_t next_ = 0;
  std::optional<TapState> run_;
};

}  // namespace

Trace playTcl(std::string_view text) {
  // The remark about joined headers begins with "!" right behind a property.
  return Player(splitWords(withoutRemarks(text, {"#", "!"}))).play();
}

}  // namespace tapforge::replay
