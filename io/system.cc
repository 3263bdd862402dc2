#ifndef _WIN32
// Files beyond 2 GiB also where a file offset has 32 bits by default.
#define _FILE_OFFSET_BITS 64  // NOLINT(bugprone-reserved-identifier)
#endif

#include "io/system.h"

#include <fcntl.h>
#include <sys/stat.h>

#ifdef _WIN32
#include <io.h>
#include <windows.h>
// After windows.h, which it needs.
#include <shellapi.h>
#else
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#endif

namespace tapforge {
namespace {

constexpr int kLastStandardStream = 2;

#ifdef _WIN32

constexpr const char* kNullDevice = "NUL";

int descriptorOf(std::FILE* file) { return _fileno(file); }

std::wstring wide(const std::string& utf8) {
  const int size = static_cast<int>(utf8.size());
  const int count = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0);
  std::wstring text(static_cast<std::size_t>(count), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, text.data(), count);
  return text;
}

std::string utf8(const wchar_t* text) {
  const int count = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  // The count includes the zero at the end.
  std::string bytes(static_cast<std::size_t>(count), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes.data(), count, nullptr, nullptr);
  bytes.pop_back();
  return bytes;
}

bool isLink(const std::string& name) {
  const DWORD attributes = GetFileAttributesW(wide(name).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

bool removeName(const std::string& name) { return _wremove(wide(name).c_str()) == 0; }

FileStatus statusOf(HANDLE handle) {
  switch (GetFileType(handle)) {
    case FILE_TYPE_DISK: {
      BY_HANDLE_FILE_INFORMATION found = {};
      if (GetFileInformationByHandle(handle, &found) == 0) return {};
      if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return {FileKind::folder};
      return {FileKind::regular, found.dwVolumeSerialNumber,
              std::uint64_t{found.nFileIndexHigh} << 32 | found.nFileIndexLow,
              std::uint64_t{found.nFileSizeHigh} << 32 | found.nFileSizeLow};
    }
    case FILE_TYPE_PIPE:
      return {FileKind::pipe};
    default:
      return {FileKind::other};
  }
}

#else

constexpr const char* kNullDevice = "/dev/null";

int descriptorOf(std::FILE* file) { return fileno(file); }

bool isLink(const std::string& name) {
  struct stat found = {};
  return lstat(name.c_str(), &found) == 0 && S_ISLNK(found.st_mode);
}

bool removeName(const std::string& name) { return unlink(name.c_str()) == 0; }

FileKind kindOf(mode_t mode) {
  if (S_ISREG(mode)) return FileKind::regular;
  if (S_ISDIR(mode)) return FileKind::folder;
  return S_ISFIFO(mode) ? FileKind::pipe : FileKind::other;
}

FileStatus statusOf(const struct stat& found) {
  const FileKind kind = kindOf(found.st_mode);
  const auto size = kind == FileKind::regular ? static_cast<std::uint64_t>(found.st_size) : 0;
  // The number of a device has a sign on some systems.
  return {kind, static_cast<std::uint64_t>(found.st_dev), found.st_ino, size};
}

#endif

bool holdStandardStreams() {
  for (;;) {
    FilePtr file(std::fopen(kNullDevice, "r+"));
    if (file == nullptr) return false;
    if (descriptorOf(file.get()) > kLastStandardStream) return true;
    // This one stays open: it holds a place.
    static_cast<void>(file.release());
  }
}

}  // namespace

#ifdef _WIN32

bool prepareProcess() {
  _setmode(descriptorOf(stdout), _O_BINARY);
  _setmode(descriptorOf(stderr), _O_BINARY);
  // Some C libraries keep what goes to a file or pipe, and mix up the order then.
  std::setvbuf(stderr, nullptr, _IONBF, 0);
  return holdStandardStreams();
}

std::vector<std::string> commandLine(int /*argc*/, char** /*argv*/) {
  std::vector<std::string> arguments;
  int count = 0;
  if (wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count); words != nullptr) {
    for (int i = 1; i < count; ++i) arguments.push_back(utf8(words[i]));
    LocalFree(words);
  }
  return arguments;
}

FilePtr openForReading(const std::string& name) {
  return FilePtr(_wfopen(wide(name).c_str(), L"rb"));
}

FilePtr openForWriting(const std::string& name) {
  const int descriptor =
      _wopen(wide(name).c_str(), _O_WRONLY | _O_CREAT | _O_BINARY, _S_IREAD | _S_IWRITE);
  return FilePtr(descriptor < 0 ? nullptr : _fdopen(descriptor, "wb"));
}

bool emptyFile(std::FILE* file) {
  return fileStatus(file).kind != FileKind::regular || _chsize_s(descriptorOf(file), 0) == 0;
}

FileStatus fileStatus(const std::string& name) {
  constexpr DWORD kOthersMay = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  // Backup semantics: without them folders cannot be opened.
  HANDLE handle = CreateFileW(wide(name).c_str(), 0, kOthersMay, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return {};
  const FileStatus status = statusOf(handle);
  CloseHandle(handle);
  return status;
}

FileStatus fileStatus(std::FILE* file) {
  return statusOf(reinterpret_cast<HANDLE>(_get_osfhandle(descriptorOf(file))));
}

#else

bool prepareProcess() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  return holdStandardStreams();
}

std::vector<std::string> commandLine(int argc, char** argv) {
  // A program can be started without even its name.
  if (argc < 1) return {};
  return {argv + 1, argv + argc};
}

FilePtr openForReading(const std::string& name) { return FilePtr(std::fopen(name.c_str(), "rb")); }

FilePtr openForWriting(const std::string& name) {
  constexpr mode_t kReadAndWriteForAll = 0666;  // as far as the umask lets it
  const int descriptor = open(name.c_str(), O_WRONLY | O_CREAT, kReadAndWriteForAll);
  return FilePtr(descriptor < 0 ? nullptr : fdopen(descriptor, "wb"));
}

bool emptyFile(std::FILE* file) {
  return fileStatus(file).kind != FileKind::regular || ftruncate(descriptorOf(file), 0) == 0;
}

FileStatus fileStatus(const std::string& name) {
  struct stat found = {};
  return stat(name.c_str(), &found) == 0 ? statusOf(found) : FileStatus{};
}

FileStatus fileStatus(std::FILE* file) {
  struct stat found = {};
  return fstat(descriptorOf(file), &found) == 0 ? statusOf(found) : FileStatus{};
}

#endif

bool discardFile(const std::string& name) {
  // Emptied first, since it may have other names.
  FilePtr file = openForWriting(name);
  const bool emptied = file != nullptr && emptyFile(file.get());
  file.reset();
  return isLink(name) ? emptied : removeName(name);
}

void preferLargePages([[maybe_unused]] unsigned char* data, [[maybe_unused]] std::size_t size) {
#ifdef MADV_HUGEPAGE
  constexpr std::size_t kPage = 4096;
  constexpr std::size_t kWorthwhile = std::size_t{4} * 1024 * 1024;
  void* pages = data;
  if (size < kWorthwhile || std::align(kPage, kPage, pages, size) == nullptr) return;
  madvise(pages, size / kPage * kPage, MADV_HUGEPAGE);
#endif
}

}  // namespace tapforge
