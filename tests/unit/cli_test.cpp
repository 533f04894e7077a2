// Option values (base-10 strtol without a trailing check), the multi-stream
// flag and the protect wait.
#include <gtest/gtest.h>

#include <cstdint>

#include "cli/options.h"
#include "cli/sync_table.h"

namespace {

TEST(OptionValue, ReadsLikeStrtol) {
  const std::pair<const char*, long> cases[] = {
      {"3x", 3}, {"x", 0}, {" -2", -2}, {"007", 7}, {"0x10", 0}, {"4294967297", 4294967297L}};
  for (auto [text, value] : cases) EXPECT_EQ(cli::optionValue(text), value) << text;
}

TEST(MultiStreamFlag, DeviceFirstThenBrand) {
  const int cases[][3] = {{7, 0, 1}, {6, 0, 1},  {5, 12, 1}, {5, 11, 0},
                          {0, 0, 0}, {2, 40, 1}, {8, 11, 0}};  // device, brand, flag
  for (const auto& c : cases)
    EXPECT_EQ(cli::multiStreamFlag(c[0], c[1]), c[2]) << c[0] << "/" << c[1];
}

// A stuck flag is waited out for the whole count of steps; a flag that is not
// 1 still costs one step.
TEST(ProtectWait, CountsItsSteps) {
  const int cases[][3] = {{1, 300, 300}, {1, 7, 7}, {0, 300, 1}, {2, 300, 1}, {1, 0, 1}};
  for (const auto& [flag, steps, slept] : cases) {
    std::int32_t mem[1001] = {};
    shm::ShmBlock block(mem, sizeof mem);
    block.set(shm::Slot::WEB_SYNC_PROTECT, flag);
    EXPECT_EQ(cli::protectWait(block, shm::Slot::WEB_SYNC_PROTECT, {1, steps}), slept)
        << flag << "/" << steps;
  }
}

}  // namespace
