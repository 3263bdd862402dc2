#ifndef TAPFORGE_IO_SYSTEM_H
#define TAPFORGE_IO_SYSTEM_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

/// Everything that POSIX systems and Windows do differently. Nothing else in
/// the program asks which of them it runs on. File names are plain bytes on
/// POSIX systems and UTF-8 on Windows.

namespace tapforge {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

/// To be called first in the program. A write to a closed pipe or to a file
/// that may grow no more then fails like any other write instead of ending the
/// process; a file opened later does not take the place of a standard stream
/// that is closed; and standard output and error keep line ends as they are
/// written. Returns false if there is no null device to hold the places.
[[nodiscard]] bool prepareProcess();

/// The arguments after the program name; on Windows in UTF-8, whatever the code
/// page is, and `argv` is not looked at.
std::vector<std::string> commandLine(int argc, char** argv);

/// Opens a file byte for byte, of any size. Null if that fails. POSIX systems
/// open a folder too, and only reading from it fails.
FilePtr openForReading(const std::string& name);

/// As openForReading(), for writing from the start. A file that exists keeps
/// what it holds until emptyFile(); one that does not is made.
FilePtr openForWriting(const std::string& name);

/// Cuts a regular file to no bytes, and leaves pipes and devices alone. Returns
/// false if that fails.
bool emptyFile(std::FILE* file);

/// Removes a file that is left unfinished; where its name is a link, empties it. Returns
/// false if that fails.
bool discardFile(const std::string& name);

enum class FileKind { none, regular, folder, pipe, other };

/// What a name or an open file leads to, through links.
struct FileStatus {
  FileKind kind = FileKind::none;
  // Together they identify a file as long as it exists; 0 where they are not known.
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  std::uint64_t size = 0;  // bytes, of a regular file
};

FileStatus fileStatus(const std::string& name);
FileStatus fileStatus(std::FILE* file);

/// Asks the system for large pages under `size` bytes of new memory, which saves
/// page faults while a long value is filled: an eighth of the time of its
/// conversion. Only a hint, so nothing depends on its success.
void preferLargePages(unsigned char* data, std::size_t size);

}  // namespace tapforge

#endif  // TAPFORGE_IO_SYSTEM_H
