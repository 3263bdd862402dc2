#include "io/files.h"

#include "io/reporter.h"
#include "io/text.h"

namespace tapforge {
namespace {

bool sameRegularFile(const FileStatus& a, const FileStatus& b) {
  return a.kind == FileKind::regular && b.kind == FileKind::regular && a.device == b.device &&
         a.number == b.number;
}

void skipLine() {
  int c = 0;
  do {
    c = std::getchar();
  } while (c != '\n' && c != EOF);
}

}  // namespace

std::size_t gBlockSize = std::size_t{128} * 1024;

FilePtr fileCheck(const std::string& name, OpenMode mode, Reporter& report) {
  const bool reads = mode == OpenMode::read;
  FilePtr file = reads ? openForReading(name) : openForWriting(name);
  if (file == nullptr || (reads && fileStatus(file.get()).kind == FileKind::folder)) {
    report.fileError(concat("cannot open [", name, "]"));
  }
  return file;
}

bool fileExists(const std::string& name) {
  // Opening a pipe to see whether it is there would wait for its other end.
  return fileStatus(name).kind == FileKind::pipe || openForReading(name) != nullptr;
}

bool sameRegularFile(const std::string& a, const std::string& b) {
  return sameRegularFile(fileStatus(a), fileStatus(b));
}

bool sameRegularFile(std::FILE* a, const std::string& b) {
  return sameRegularFile(fileStatus(a), fileStatus(b));
}

bool isStandardInput(const std::string& name) {
  const FileStatus input = fileStatus(stdin);
  const FileStatus named = fileStatus(name);
  return named.kind != FileKind::none && named.kind == input.kind && named.number != 0 &&
         named.device == input.device && named.number == input.number;
}

char getResponse(std::string_view prompt, std::string_view allowed, char atEnd, EmptyAnswer empty,
                 bool mayRead) {
  std::fflush(stdout);
  std::fputc('\n', stderr);
  for (;;) {
    std::fwrite(prompt.data(), 1, prompt.size(), stderr);
    const int c = mayRead ? std::getchar() : EOF;
    if (c == EOF) return atEnd;
    if (c == '\n' && empty == EmptyAnswer::asksAgain) continue;
    skipLine();
    const char answer = toUpper(static_cast<char>(c));
    if (allowed.find(answer) != std::string_view::npos) return answer;
  }
}

}  // namespace tapforge
