#ifndef TAPFORGE_SCRIPT_STATEMENT_TEXT_H
#define TAPFORGE_SCRIPT_STATEMENT_TEXT_H

#include <charconv>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace progmode_svf2tapbus {

/// Text that is put together piece by piece, again for each statement: a string
/// of which the front part counts. Pieces of a few characters are copied in
/// place, which an append to a std::string does not do.
class StatementText {
 public:
  StatementText& operator=(std::string_view text) {
    size_ = 0;
    return *this += text;
  }
  StatementText& operator+=(std::string_view text) {
    std::memcpy(room(text.size()), text.data(), text.size());
    size_ += text.size();
    return *this;
  }
  StatementText& operator+=(char c) {
    *room(1) = c;
    ++size_;
    return *this;
  }
  void appendDecimal(long value) {
    constexpr std::size_t kMostDigits = 20;
    char* const text = room(kMostDigits);
    const char* const end = std::to_chars(text, text + kMostDigits, value).ptr;
    size_ += static_cast<std::size_t>(end - text);
  }
  void clear() { size_ = 0; }
  std::string_view view() const { return {storage_.data(), size_}; }

 private:
  char* room(std::size_t count) {
    if (count > storage_.size() - size_) storage_.resize(2 * storage_.size() + count);
    return storage_.data() + size_;
  }

  std::string storage_ = std::string(256, '\0');
  std::size_t size_ = 0;
};

}  // namespace progmode_svf2tapbus

#endif  // TAPFORGE_SCRIPT_STATEMENT_TEXT_H
