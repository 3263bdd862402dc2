#include "replay/output.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "replay/fault.h"
#include "replay/system.h"

namespace tapforge_replay {

Output::Output(const std::string& path) : name_(path), file_(openFile(path, "wb")) {
  if (file_ == nullptr) fail();
}

Output::~Output() {
  if (file_ != nullptr && file_ != stdout) std::fclose(file_);
}

void Output::fail() const { throw Fault(name_ + ": " + std::strerror(errno)); }

Output& Output::operator<<(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), file_) != text.size()) fail();
  return *this;
}

void Output::close() {
  if (std::fclose(std::exchange(file_, nullptr)) != 0) fail();
}

}  // namespace tapforge_replay
