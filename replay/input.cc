#include "replay/input.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "replay/fault.h"
#include "replay/system.h"

namespace tapforge_replay {
namespace {

constexpr std::size_t kBlockBytes = 1 << 18;
constexpr std::size_t kMostKept = 4096;

std::FILE* open(const std::string& path) { return path == "-" ? stdin : openFile(path, "rb"); }

}  // namespace

Input::Input(std::string path)
    : path_(std::move(path)), file_(open(path_), std::fclose), size_(fileSize(path_)) {
  if (file_ == nullptr) throw Fault(path_ + ": " + std::strerror(errno));
  if (path_ == "-") path_ = "standard input";
  std::setvbuf(file_.get(), nullptr, _IONBF, 0);
  block_.resize(kBlockBytes);
  at_ = end_ = mark_ = block_.data();
}

std::string Input::marked() const {
  const std::string_view here(mark_, static_cast<std::size_t>(at_ - mark_));
  return kept_ + std::string(here.substr(0, kMostKept - kept_.size()));
}

bool Input::refill() {
  blockOffset_ = offset();
  kept_ = marked();
  errno = 0;
  const std::size_t count = std::fread(block_.data(), 1, block_.size(), file_.get());
  if (count == 0 && std::ferror(file_.get()) != 0) {
    throw Fault(path_ + ": " + std::strerror(errno));
  }
  at_ = mark_ = block_.data();
  end_ = at_ + count;
  if (onBlock && count > 0) onBlock(*this);
  return count > 0;
}

}  // namespace tapforge_replay
