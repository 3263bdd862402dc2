#include "replay/list.h"

#include <algorithm>
#include <fstream>

#include "replay/fault.h"

namespace tapforge_replay {
namespace {

constexpr std::uint64_t kMostText = 4096;  // characters of a statement

}  // namespace

void listOperations(Reader& reader, std::size_t width, Output& output) {
  Operation operation;
  while (reader.next(operation), operation.kind != Operation::Kind::kEnd) {
    std::string line = describe(operation.place) + ": " + describe(operation, width);
    if (line.size() > width) line.replace(std::max<std::size_t>(width, 3) - 3, line.npos, "...");
    output << line << "\n";
  }
}

void showScan(Reader& reader, std::uint64_t number, const std::string& path, Output& output) {
  Operation operation;
  do {
    reader.next(operation);
    if (operation.kind == Operation::Kind::kEnd) {
      throw Fault(path + ": no scan " + std::to_string(number) + " in this file");
    }
  } while (operation.kind != Operation::Kind::kScan || operation.number != number);

  output << path << ": " << describe(operation.place) << ": " << describe(operation, 64) << "\n";
  if (operation.place.line == 0) return;  // nothing to read for people
  std::ifstream file(path, std::ios::binary);
  const std::uint64_t size = operation.place.end - operation.place.offset;
  std::string text(static_cast<std::size_t>(std::min(size, kMostText)), '\0');
  file.seekg(static_cast<std::streamoff>(operation.place.offset));
  if (!file.read(text.data(), static_cast<std::streamsize>(text.size()))) {
    throw Fault(path + ": cannot be read again");
  }
  text.erase(text.find_last_not_of(" \t\r\n") + 1);
  output << text << (size > kMostText ? "...\n" : "\n");
}

}  // namespace tapforge_replay
