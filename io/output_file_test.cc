#include "io/output_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "tests/support/fakes.h"

namespace tapforge {
namespace {

using testing::WithBlockSize;

class OutputFileTest : public ::testing::Test {
 protected:
  ~OutputFileTest() override { std::remove(name_.c_str()); }

  OutputFile open() const { return {openForWriting(name_), name_}; }

  std::string content() const {
    std::array<char, 65536> text{};
    return {text.data(), std::fread(text.data(), 1, text.size(), openForReading(name_).get())};
  }

  const std::string name_ = ::testing::TempDir() + "output_file_test.out";
};

TEST_F(OutputFileTest, WritesTheSameInBlocksOfAnySize) {
  const std::string text = "a text that is longer than some blocks";
  for (const std::size_t size :
       {std::size_t{1}, std::size_t{2}, std::size_t{7}, std::size_t{4095}, std::size_t{1} << 17}) {
    const WithBlockSize blocks(size);
    std::string expected;
    OutputFile file = open();
    for (const std::size_t reserved : {std::size_t{1}, std::size_t{16}, OutputFile::kReserve}) {
      file.write(text);
      file.put('+');
      file.advance(std::fill_n(file.reserve(reserved), reserved, '.'));
      file.write("");
      expected += text + "+" + std::string(reserved, '.');
    }
    file.close();
    EXPECT_EQ(content(), expected) << "block of " << size;
  }
}

TEST(OutputFile, FailsOnce) {
  FilePtr full = openForWriting("/dev/full");
  if (full == nullptr) GTEST_SKIP() << "no file here is always full";
  OutputFile file(std::move(full), "name");
  file.write("lost");
  try {
    file.flush();
    FAIL() << "not noticed";
  } catch (const WriteFailed& failed) {
    EXPECT_EQ(failed.name, "name");
  }
  file.write("lost too");
  file.close();
}

}  // namespace
}  // namespace tapforge
