#include "replay/output.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "replay/system.h"

namespace tapforge_replay {

// Other characters could be commands to a terminal.
std::string printable(std::string_view text, std::string_view kept) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string shown;
  for (const char c : text) {
    if ((c >= ' ' && c <= '~') || kept.find(c) != kept.npos) {
      shown += c;
    } else {
      shown.append({'\\', 'x', kDigits[c >> 4 & 15], kDigits[c & 15]});
    }
  }
  return shown;
}

Output::Output(const std::string& path) : name_(path), file_(openFile(path, "wb")) {
  if (file_ == nullptr) fail();
}

Output::~Output() {
  if (file_ != nullptr && file_ != stdout) std::fclose(file_);
}

void Output::fail() const {
  const std::string text = name_ + ": " + std::strerror(errno);
  if (errno == EPIPE && file_ == stdout) throw ClosedPipe(text);
  throw Fault(text);
}

Output& Output::operator<<(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), file_) != text.size()) fail();
  return *this;
}

void Output::close() {
  if (std::fflush(file_) != 0 || std::fclose(std::exchange(file_, nullptr)) != 0) fail();
}

}  // namespace tapforge_replay
