#include "replay/list.h"

#include <algorithm>

#include "replay/fault.h"

namespace tapforge_replay {

std::string listed(Operation& operation, std::size_t mostDigits) {
  if (operation.kind == Operation::Kind::kScan && operation.mask != nullptr) {
    std::size_t word = 0;
    while (word < operation.mask->wordCount() && operation.mask->word(word) == 0) ++word;
    if (word == operation.mask->wordCount()) operation.tdo = operation.mask = nullptr;
  }
  return printable(describe(operation.place) + ": " + describe(operation, mostDigits));
}

void listOperations(Reader& reader, std::size_t width, Output& output) {
  Operation operation;
  while (reader.next(operation), operation.kind != Operation::Kind::kEnd) {
    std::string line = listed(operation, width);
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

  output << input.path() << ": " << listed(operation, 64) << "\n";
  if (operation.place.line == 0) return;  // nothing to read for people
  std::string text = input.marked();
  const bool isWhole = input.offset() - operation.place.offset == text.size();
  text.erase(text.find_last_not_of(" \t\r\n") + 1);
  std::erase(text, '\r');
  output << printable(text, "\n\t") << (isWhole ? "\n" : "...\n");
}

}  // namespace tapforge_replay
