#ifndef TAPFORGE_IO_FILES_H
#define TAPFORGE_IO_FILES_H

#include <cstddef>
#include <string>
#include <string_view>

#include "io/system.h"

namespace tapforge {

class Reporter;

/// How many bytes of a file are read or written at a time, at least 1. A file
/// keeps the value that it was opened with. Tests make it small, so that
/// everything is seen at the edge between two blocks.
extern std::size_t gBlockSize;

/// An input file that was opened when the command line named it, which proves
/// that it can be read; the conversion goes on with the same handle, so that a
/// pipe works too.
struct InputFile {
  std::string name;
  FilePtr file;
};

enum class OpenMode {
  read,   // must exist, and be no folder
  write,  // is made unless it exists; OutputFile::begin() empties it
};

/// Opens a file or ends the run with the fatal "(tool) cannot open [name]".
FilePtr fileCheck(const std::string& name, OpenMode mode, Reporter& report);

/// Whether writing to this name would overwrite something that can be read.
bool fileExists(const std::string& name);

/// Whether both lead to one regular file, also through links.
bool sameRegularFile(const std::string& a, const std::string& b);
bool sameRegularFile(std::FILE* a, const std::string& b);

/// Whether the name leads to what standard input reads, of whatever kind.
bool isStandardInput(const std::string& name);

/// What an empty line does as the answer to a question.
enum class EmptyAnswer {
  asksAgain,
  takesNextLine,  // reads the next line away and asks again
};

/// Asks on standard error until a line of standard input begins with one of
/// the `allowed` upper-case letters, and returns that letter. The end of
/// standard input counts as `atEnd`, and so does a standard input that is none to ask.
char getResponse(std::string_view prompt, std::string_view allowed, char atEnd, EmptyAnswer empty,
                 bool mayRead);

}  // namespace tapforge

#endif  // TAPFORGE_IO_FILES_H
