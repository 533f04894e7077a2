// Option values: base-10 strtol without a trailing check, and each letter's
// accepted set.
#include <gtest/gtest.h>

#include <cstdint>

#include "cli/options.h"
#include "cli/sync_table.h"

namespace {

TEST(OptionValue, ReadsLikeStrtol) {
  EXPECT_EQ(cli::optionValue("3x"), 3);
  EXPECT_EQ(cli::optionValue("x"), 0);
  EXPECT_EQ(cli::optionValue(" -2"), -2);
  EXPECT_EQ(cli::optionValue("007"), 7);
  EXPECT_EQ(cli::optionValue("0x10"), 0);
}

TEST(OptionValue, AcceptedSets) {
  struct Case {
    char option;
    long accepted[6];
    long rejected[6];
  } cases[] = {
      {'u', {0, 1, 36, 98, 101, 17}, {-1, 37, 97, 102, 4294967297L, 1000}},
      {'s', {0, 3, 4, 9, 19, 5}, {-1, 20, 100, 4294967296L, -19, 21}},
      {'t', {0, 1, 2, 3, 4, 0}, {-1, 5, 10, 4294967296L, 6, 7}},
      {'r', {0, 1, 2, 3, 4, 0}, {-1, 5, 10, 4294967296L, 6, 7}},
      {'p', {1, 2, 128, 255, 256, 5}, {0, -1, 257, 4294967297L, 1000, -256}},
      {'q', {1, 2, 128, 255, 256, 5}, {0, -1, 257, 4294967297L, 1000, -256}},
      {'i', {0, 0, 0, 0, 0, 0}, {1, -1, 2, 4294967296L, 10, 100}},
      {'a', {0, 1, 2, 0, 1, 2}, {-1, 3, 4, 4294967296L, 10, 100}},
      {'d', {0, 1, 2, 0, 1, 2}, {-1, 3, 4, 4294967296L, 10, 100}},
  };
  for (const Case& c : cases) {
    for (long v : c.accepted) EXPECT_TRUE(cli::optionValueAccepted(c.option, v)) << c.option << v;
    for (long v : c.rejected) EXPECT_FALSE(cli::optionValueAccepted(c.option, v)) << c.option << v;
  }
  EXPECT_FALSE(cli::optionValueAccepted('b', 0));
}

TEST(MultiStreamFlag, DeviceFirstThenBrand) {
  struct Case {
    int device, brand, flag;
  } cases[] = {{7, 0, 1}, {6, 0, 1}, {5, 12, 1}, {5, 11, 0}, {0, 0, 0}, {2, 40, 1}, {8, 11, 0}};
  for (const Case& c : cases) EXPECT_EQ(cli::multiStreamFlag(c.device, c.brand), c.flag) << c.device << "/" << c.brand;
}

TEST(SyncTable, EveryCommandNumberHasARow) {
  for (int n = 1; n <= 36; ++n) EXPECT_NE(cli::findSyncCommand(n), nullptr) << n;
  for (int n = 98; n <= 101; ++n) EXPECT_NE(cli::findSyncCommand(n), nullptr) << n;
  for (int n : {0, 37, 97, 102}) EXPECT_EQ(cli::findSyncCommand(n), nullptr) << n;
}

// A stuck flag is waited out for the whole count of steps; a flag that is not
// 1 still costs one step.
TEST(ProtectWait, CountsItsSteps) {
  struct Case {
    int flag, steps, slept;
  } cases[] = {{1, 300, 300}, {1, 7, 7}, {0, 300, 1}, {2, 300, 1}, {1, 0, 1}};
  for (const Case& c : cases) {
    std::int32_t mem[1001] = {};
    shm::ShmBlock block(mem, sizeof mem);
    block.set(shm::Slot::WEB_SYNC_PROTECT, c.flag);
    EXPECT_EQ(cli::protectWait(block, shm::Slot::WEB_SYNC_PROTECT, {1, c.steps}), c.slept)
        << c.flag << "/" << c.steps;
  }
}

}  // namespace
