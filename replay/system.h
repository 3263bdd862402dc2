#ifndef TAPFORGE_REPLAY_SYSTEM_H_
#define TAPFORGE_REPLAY_SYSTEM_H_

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

/// What POSIX systems and Windows do differently. Names of files are bytes on
/// POSIX systems and UTF-8 on Windows, whatever the code page is.

namespace tapforge_replay {

/// To be called first: line ends stay as they are, and a closed pipe or a file that may
/// grow no more is an error of writing.
void prepareStreams();

/// The arguments after the name of the program; Windows does not look at `argv`.
std::vector<std::string> commandLine(int argc, char** argv);

bool isTerminal(std::FILE* stream);

/// As fopen(): null if it fails, with errno. The caller closes it.
std::FILE* openFile(const std::string& name, const char* mode);

/// In what follows "-" is standard input, and names may lead through links.

/// Bytes of a regular file, 0 where they are not known.
std::uint64_t fileSize(const std::string& name);

bool isRegularFile(const std::string& name);

/// Whether both names lead to one file.
bool isSameFile(const std::string& one, const std::string& other);

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_SYSTEM_H_
