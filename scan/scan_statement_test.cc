#include "scan/scan_statement.h"

#include <gtest/gtest.h>

#include <string>

#include "script/script_traits.h"
#include "shell/io/text.h"
#include "tests/support/in_memory.h"

namespace tapforge {
namespace {

// Digits are counted down while they are read and up while they are written.
TEST(ScanStatement, ShowsProgressEvery200000Digits) {
  const std::string svf = concat("SDR 800008 TDI (", std::string(200002, '5'), ");");
  const std::string wipe(progmode_svf2tapbus::kMessageStyle.screenWipe);
  EXPECT_EQ(testing::toScript(svf).status, concat("\r*** Reading hex char #  200000", wipe,
                                                  "\r*** Writing hex char #  200000", wipe));
  EXPECT_NE(testing::toKsvf(svf).status.find("\r*** Reading hex char #  200000\r"),
            std::string::npos);
}

}  // namespace
}  // namespace tapforge
