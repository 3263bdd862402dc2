#include "replay/system.h"

#include <filesystem>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <windows.h>
// After windows.h, which it needs.
#include <shellapi.h>
#else
#include <unistd.h>

#include <csignal>
#endif

namespace tapforge_replay {
namespace {

// On Windows this makes UTF-16 of UTF-8.
std::filesystem::path pathOf(const std::string& name) {
  if (name == "-") return "/dev/stdin";
  return std::u8string(name.begin(), name.end());
}

}  // namespace

#ifdef _WIN32

void prepareStreams() {
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
}

bool isTerminal(std::FILE* stream) { return _isatty(_fileno(stream)) != 0; }

std::vector<std::string> commandLine(int /*argc*/, char** /*argv*/) {
  std::vector<std::string> arguments;
  int count = 0;
  if (wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count); words != nullptr) {
    for (int i = 1; i < count; ++i) {
      const std::u8string word = std::filesystem::path(words[i]).u8string();
      arguments.emplace_back(word.begin(), word.end());
    }
    LocalFree(words);
  }
  return arguments;
}

std::FILE* openFile(const std::string& name, const char* mode) {
  return _wfopen(pathOf(name).c_str(), std::filesystem::path(mode).c_str());
}

#else

void prepareStreams() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

bool isTerminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

std::vector<std::string> commandLine(int argc, char** argv) {
  return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

std::FILE* openFile(const std::string& name, const char* mode) {
  return std::fopen(name.c_str(), mode);
}

#endif

std::uint64_t fileSize(const std::string& name) {
  std::error_code unknown;
  const std::uintmax_t size = std::filesystem::file_size(pathOf(name), unknown);
  return unknown ? 0 : size;
}

bool isRegularFile(const std::string& name) {
  std::error_code unknown;
  return std::filesystem::is_regular_file(pathOf(name), unknown);
}

bool isSameFile(const std::string& one, const std::string& other) {
  std::error_code unknown;
  return std::filesystem::equivalent(pathOf(one), pathOf(other), unknown);
}

}  // namespace tapforge_replay
