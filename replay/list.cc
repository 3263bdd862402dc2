#include "replay/list.h"

#include <algorithm>

#include "replay/fault.h"

namespace tapforge_replay {

void listOperations(Reader& reader, std::size_t width, Output& output) {
  Operation operation;
  while (reader.next(operation), operation.kind != Operation::Kind::kEnd) {
    std::string line = printable(describe(operation.place) + ": " + describe(operation, width));
    if (line.size() > width) line.replace(std::max<std::size_t>(width, 3) - 3, line.npos, "...");
    output << line << "\n";
  }
}

void showScan(Reader& reader, std::uint64_t number, const Input& input, Output& output) {
  Operation operation;
  do {
    reader.next(operation);
    if (operation.kind == Operation::Kind::kEnd) {
      throw Fault(input.path() + ": no scan " + std::to_string(number) + " in this file");
    }
  } while (operation.kind != Operation::Kind::kScan || operation.number != number);

  output << input.path() << ": " << describe(operation.place) << ": " << describe(operation, 64)
         << "\n";
  if (operation.place.line == 0) return;  // nothing to read for people
  std::string text = input.marked();
  const bool isWhole = input.offset() - operation.place.offset == text.size();
  text.erase(text.find_last_not_of(" \t\r\n") + 1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isLineEnd = text[i] == '\n' || (text[i] == '\r' && text[i + 1] != '\n');
    if (text[i] == '\r' && !isLineEnd) continue;
    output << (isLineEnd ? "\n" : text[i] == '\t' ? "\t" : printable({&text[i], 1}));
  }
  output << (isWhole ? "\n" : "...\n");
}

}  // namespace tapforge_replay
