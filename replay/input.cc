#include "replay/input.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "replay/fault.h"
#include "replay/system.h"

namespace tapforge_replay {
namespace {

constexpr std::size_t kBlockBytes = 1 << 18;

}  // namespace

Input::Input(std::string path)
    : path_(std::move(path)), file_(openFile(path_, "rb"), std::fclose), size_(fileSize(path_)) {
  if (file_ == nullptr) throw Fault(path_ + ": " + std::strerror(errno));
  std::setvbuf(file_.get(), nullptr, _IONBF, 0);
  block_.resize(kBlockBytes);
  at_ = end_ = block_.data();
}

bool Input::refill() {
  blockOffset_ = offset();
  errno = 0;
  const std::size_t count = std::fread(block_.data(), 1, block_.size(), file_.get());
  if (count == 0 && std::ferror(file_.get()) != 0) {
    throw Fault(path_ + ": " + std::strerror(errno));
  }
  at_ = block_.data();
  end_ = at_ + count;
  if (onBlock && count > 0) onBlock(*this);
  return count > 0;
}

}  // namespace tapforge_replay
