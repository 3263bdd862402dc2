#ifndef TAPFORGE_REPLAY_INPUT_H_
#define TAPFORGE_REPLAY_INPUT_H_

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tapforge_replay {

/// A file read once from front to back, a block at a time. Pipes will do.
class Input {
 public:
  /// "-" is standard input. Throws Fault when the file cannot be opened; reading may
  /// throw it too.
  explicit Input(std::string path);

  const std::string& path() const { return path_; }

  /// The next character, 0 to 255, or -1 at the end.
  int peek() { return at_ != end_ || refill() ? static_cast<unsigned char>(*at_) : -1; }
  int get() {
    const int character = peek();
    if (character >= 0) ++at_;
    return character;
  }

  /// What is in memory after the present place; empty only at the end.
  std::string_view window() {
    if (at_ == end_) refill();
    return {at_, static_cast<std::size_t>(end_ - at_)};
  }
  void skip(std::size_t count) { at_ += count; }

  /// Begins a text that is kept beyond its block: the first 4096 characters from here.
  void mark() {
    mark_ = at_;
    kept_.clear();
  }
  /// The kept characters up to the present place.
  std::string marked() const;

  /// Bytes read.
  std::uint64_t offset() const {
    return blockOffset_ + static_cast<std::uint64_t>(at_ - block_.data());
  }
  /// Size of the file in bytes, 0 where it is not known.
  std::uint64_t size() const { return size_; }

  /// Called after each block with the bytes read so far.
  std::function<void(const Input&)> onBlock;

 private:
  bool refill();

  std::string path_;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
  std::vector<char> block_;
  const char* at_ = nullptr;
  const char* end_ = nullptr;
  const char* mark_ = nullptr;
  std::string kept_;  // from the mark to the beginning of the block
  std::uint64_t blockOffset_ = 0;
  std::uint64_t size_ = 0;
};

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_INPUT_H_
