#include "shell/io/block_size.h"

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

// All conversions of a text, in sets of options that take all ways through the writers.
std::string conversions(std::string_view svf) {
  std::string text;
  const auto add = [&text](const Converted& converted) {
    // The finish time stands at the end of the status lines.
    const std::string status = converted.status.substr(0, converted.status.find("Finish"));
    text += converted.output + "\n--\n" + converted.listing + "\n--\n" + converted.messages +
            "\n--\n" + status + (converted.good ? "\ngood\n" : "\nbad\n");
  };
  add(toScript(svf));
  add(toScript(svf, {.iSvfSyntaxCheck = true, .iInsertWait = 7, .lGlobPrintLine = 2}));
  add(toScript(svf, {.iSvfSyntaxCheck = true, .iGlobOutFormat = true, .lGlobPrintLine = 1}));
  add(toKsvf(svf, {.lFpgaRecSize = 128, .iOptPrintSrc = 2, .lGlobTckFreq = 1000}));
  add(toKsvf(svf, {.iFpgaFormat = true,
                   .lFpgaRecSize = 68,
                   .iOptPrintSrc = 3,
                   .iOptMinKstateUsage = false,
                   .iKsvfExt = true,
                   .giUseKwait = true,
                   .g_lMaxLinesToCopy = 9,
                   .lGlobTckFreq = 1000}));
  return text;
}

void expectTheSameInAllBlocks(const std::string& svf, const std::vector<std::size_t>& sizes) {
  const std::string expected = conversions(svf);
  for (const std::size_t size : sizes) {
    const WithBlockSize blocks(size);
    EXPECT_EQ(conversions(svf), expected) << "blocks of " << size;
  }
}

TEST(BlockSize, DoesNotShowInConversions) {
  std::string all;
  for (const auto& entry : std::filesystem::directory_iterator(TAPFORGE_EXAMPLES)) {
    if (entry.path().extension() != ".svf") continue;
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string svf{std::istreambuf_iterator<char>(file), {}};
    expectTheSameInAllBlocks(svf, {1, 2, 3, 5, 64, 199, 200});
    all += svf + "\n";
  }
  EXPECT_GT(all.size(), 3000U);
  expectTheSameInAllBlocks(all + all, {1, 4, 97, 1021});
}

// Cut off anywhere, too.
TEST(BlockSize, DoesNotShowInOddTexts) {
  const std::string pad(185, ' ');
  const std::string svf =
      "! c\r//d\nTRST ON; TRST OFF;\r\n\tSIR 8 TDI // in\n(0\r\n1 )TDO(F\t1);FOO a/b/ //" + pad +
      "\n12ab;FREQUENCY 12.5e+ 2 HZ; ! end\n" + pad +
      "TRST Z; SDR 70 TDI (123456789 aBcdef01\n23)" + "TDO(1) SMASK(" + std::string(19, '5') +
      "1);PIOMAP(IN a OUT b INOUT " + std::string(97, 'w') + ");PIO (h\nUz);";
  for (std::size_t size = 0; size <= svf.size(); ++size) {
    const bool amongBlanks = size > 0 && svf.substr(size - 1, 2) == "  ";
    if (!amongBlanks) expectTheSameInAllBlocks(svf.substr(0, size), {1, 3});
  }
}

}  // namespace
}  // namespace tapforge::testing
