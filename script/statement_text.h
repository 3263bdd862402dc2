#ifndef TAPFORGE_SCRIPT_STATEMENT_TEXT_H
#define TAPFORGE_SCRIPT_STATEMENT_TEXT_H

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace tapforge::progmode_svf2tapbus {

/// A fixed text of at most 16 characters, which is copied without a call. A longer
/// one does not compile.
class ShortText {
 public:
  // NOLINTNEXTLINE(google-explicit-constructor): a literal is meant to become one.
  consteval ShortText(const char* literal) : size_(std::string_view(literal).size()) {
    if (size_ > sizeof text_) throw "a text that is too long";
    std::copy_n(literal, size_, text_);
  }
  std::string_view view() const { return {text_, size_}; }
  /// Writes it to `out`, where 16 characters must be writable; returns its end.
  char* copyTo(char* out) const {
    std::memcpy(out, text_, sizeof text_);
    return out + size_;
  }

 private:
  char text_[16] = {};
  std::size_t size_;
};

/// Writes a number in decimal to `out`, where 20 characters must be writable;
/// returns its end.
inline char* putDecimal(char* out, std::int64_t value) {
  // Most lengths and counts are short, and a library call costs more than they do.
  if (value >= 0 && value < 1000) {
    const auto number = static_cast<unsigned>(value);
    if (number >= 100) *out++ = static_cast<char>('0' + number / 100);
    if (number >= 10) *out++ = static_cast<char>('0' + number / 10 % 10);
    *out++ = static_cast<char>('0' + number % 10);
    return out;
  }
  return std::to_chars(out, out + 20, value).ptr;
}

/// The text of a statement, which is put together piece by piece, again for each
/// statement. Its short pieces are copied in place, which an append to a
/// std::string does not do: that took 4 % of the instructions of short statements.
class StatementText {
 public:
  StatementText& operator=(const ShortText& text) {
    size_ = 0;
    return *this += text;
  }
  StatementText& operator+=(const ShortText& text) {
    char* const at = reserve(16);
    size_ += static_cast<std::size_t>(text.copyTo(at) - at);
    return *this;
  }
  StatementText& operator+=(std::string_view text) {
    std::memcpy(reserve(text.size()), text.data(), text.size());
    size_ += text.size();
    return *this;
  }
  template <std::size_t N>
  StatementText& operator+=(const char (&literal)[N]) {
    std::memcpy(reserve(N - 1), literal, N - 1);
    size_ += N - 1;
    return *this;
  }
  StatementText& operator+=(char c) {
    *reserve(1) = c;
    ++size_;
    return *this;
  }
  void appendDecimal(std::int64_t value) {
    char* const at = reserve(20);
    size_ += static_cast<std::size_t>(putDecimal(at, value) - at);
  }
  void clear() { size_ = 0; }
  std::string_view view() const { return {storage_.data(), size_}; }

 private:
  char* reserve(std::size_t count) {
    if (count > storage_.size() - size_) storage_.resize(2 * storage_.size() + count);
    return storage_.data() + size_;
  }

  std::string storage_ = std::string(256, '\0');
  std::size_t size_ = 0;
};

}  // namespace tapforge::progmode_svf2tapbus

#endif  // TAPFORGE_SCRIPT_STATEMENT_TEXT_H
