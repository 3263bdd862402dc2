#ifndef TAPFORGE_SHELL_IO_FILES_H
#define TAPFORGE_SHELL_IO_FILES_H

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace tapforge {

class Reporter;

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

enum class OpenMode {
  read,          // must exist and be readable as a file
  create,        // made, or emptied when it exists
  createAsking,  // as create, but an existing file is first asked about
};

/// Opens a file or ends the run with the fatal "(tool) cannot open [name]". A
/// refused overwrite ends the run with status 1 and no further message.
FilePtr fileCheck(const std::string& name, OpenMode mode, Reporter& report);

/// Whether something stands under this name that creating it would overwrite.
bool fileExists(const std::string& name);

/// Whether both names lead to one regular file, also through links.
bool sameRegularFile(const std::string& a, const std::string& b);

/// Asks on standard error until a line of standard input begins with one of
/// the `allowed` upper-case letters, and returns that letter. The end of
/// standard input counts as `atEnd`. An empty line asks again; with
/// `emptyTakesNext` the line after it is read away first.
char getResponse(std::string_view prompt, std::string_view allowed, char atEnd,
                 bool emptyTakesNext);

}  // namespace tapforge

#endif  // TAPFORGE_SHELL_IO_FILES_H
