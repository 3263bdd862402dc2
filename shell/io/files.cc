#include "shell/io/files.h"

#include <filesystem>
#include <system_error>

#include "shell/io/reporter.h"
#include "shell/io/text.h"

namespace tapforge {
namespace {

void skipLine() {
  int c = 0;
  do {
    c = std::getchar();
  } while (c != '\n' && c != EOF);
}

}  // namespace

FilePtr fileCheck(const std::string& name, OpenMode mode, Reporter& report) {
  if (mode == OpenMode::createAsking && fileExists(name)) {
    const char answer = getResponse(concat("[", name, "] exists; Overwrite or Exit (o/e)? "), "OE",
                                    'E', report.dialect().emptyAnswerTakesNext);
    if (answer != 'O') throw ProgramEnd{1};
  }
  FilePtr file(std::fopen(name.c_str(), mode == OpenMode::read ? "rb" : "wb"));
  std::error_code ignored;
  // A directory opens for reading but gives no characters.
  if (file == nullptr || (mode == OpenMode::read && std::filesystem::is_directory(name, ignored))) {
    report.fileError(concat("cannot open [", name, "]"));
  }
  return file;
}

bool fileExists(const std::string& name) {
  std::error_code ignored;
  // Opening a pipe to see whether it is there would wait for its other end.
  if (std::filesystem::is_fifo(name, ignored)) return true;
  return FilePtr(std::fopen(name.c_str(), "rb")) != nullptr;
}

bool sameRegularFile(const std::string& a, const std::string& b) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(a, ignored) && std::filesystem::equivalent(a, b, ignored);
}

char getResponse(std::string_view prompt, std::string_view allowed, char atEnd,
                 bool emptyTakesNext) {
  std::fflush(stdout);
  std::fputc('\n', stderr);
  for (;;) {
    std::fwrite(prompt.data(), 1, prompt.size(), stderr);
    const int c = std::getchar();
    if (c == EOF) return atEnd;
    if (c == '\n' && !emptyTakesNext) continue;
    skipLine();
    const char answer = toUpper(static_cast<char>(c));
    if (allowed.find(answer) != std::string_view::npos) return answer;
  }
}

}  // namespace tapforge
