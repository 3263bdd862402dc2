#include "io/files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/fakes.h"
#include "tests/support/in_memory.h"

namespace tapforge::testing {
namespace {

// All conversions of a text, with options that take all ways through the writers.
std::string conversions(std::string_view svf) {
  progmode_svf2ksvf::KsvfVars plain{.lFpgaRecSize = 128, .iOptPrintSrc = 2, .lGlobTckFreq = 1000};
  progmode_svf2ksvf::KsvfVars records{.iFpgaFormat = true, .lFpgaRecSize = 68, .iOptPrintSrc = 3};
  records.giUseKwait = records.iKsvfExt = true;
  records.g_lMaxLinesToCopy = 9;
  std::string text;
  for (const Converted& converted :
       {toScript(svf),
        toScript(svf, {.iSvfSyntaxCheck = true, .iInsertWait = 7, .lGlobPrintLine = 2}),
        toScript(svf, {.iSvfSyntaxCheck = true, .iGlobOutFormat = true}), toKsvf(svf, plain),
        toKsvf(svf, records)}) {
    // The finish time stands at the end of the status lines.
    const std::string status = converted.status.substr(0, converted.status.find("Finish"));
    for (const auto& part : {converted.output, converted.listing, converted.messages, status}) {
      text += part + "\n--\n";
    }
    text += converted.good ? "good\n" : "bad\n";
  }
  return text;
}

// The shipped examples, and an odd text that is cut off anywhere.
TEST(BlockSize, DoesNotShow) {
  std::vector<std::string> texts;
  for (const auto& entry : std::filesystem::directory_iterator(TAPFORGE_EXAMPLES)) {
    std::ifstream file(entry.path(), std::ios::binary);
    texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  ASSERT_GT(texts.size(), 3U);
  const std::string blanks(185, ' ');
  const std::string svf =
      "! c\r//d\nTRST ON; TRST OFF;\r\n\tSIR 8 TDI // in\n(0\r\n1 )TDO(F\t1);FOO a/b/ //" + blanks +
      "\n12ab;FREQUENCY 12.5e+ 2 HZ; ! end\n" + blanks +
      "TRST Z; SDR 70 TDI (123456789 aBcdef01\n23)TDO(1) SMASK(55555555555555555551);" +
      "PIOMAP(IN a OUT b INOUT " + std::string(97, 'w') + ");PIO (h\nUz);";
  for (std::size_t size = 0; size <= svf.size(); ++size) {
    if (size == 0 || svf.substr(size - 1, 2) != "  ") texts.push_back(svf.substr(0, size));
  }
  for (const std::string& text : texts) {
    const std::string expected = conversions(text);
    for (const std::size_t size : {1U, 3U, 200U}) {
      const WithBlockSize blocks(size);
      EXPECT_EQ(conversions(text), expected) << "blocks of " << size;
    }
  }
}

}  // namespace
}  // namespace tapforge::testing
