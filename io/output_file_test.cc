#include "io/output_file.h"

#include <gtest/gtest.h>

namespace tapforge {
namespace {

TEST(OutputFile, FailsOnce) {
  FilePtr full = openForWriting("/dev/full");
  if (full == nullptr) GTEST_SKIP() << "no file here is always full";
  OutputFile file(std::move(full), "name");
  file.write("lost");
  EXPECT_THROW(file.flush(), WriteFailed);
  file.write("lost too");
  file.close();
}

}  // namespace
}  // namespace tapforge
