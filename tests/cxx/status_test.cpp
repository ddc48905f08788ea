// Statuses, the exception, levels and shapes of qkr.hpp.
#include <gtest/gtest.h>
#include <qkr/qkr.hpp>

namespace {

TEST(CxxStatus, TellsRoomCodeAndText) {
  const qkr::status bad(qkr::room::dft, DFTX_NOT_COMMITTED);
  try {
    qkr::check(bad);
    FAIL();
  } catch (const qkr::error &error) {
    EXPECT_STREQ(error.what(), qkr_status_text(QKR_ROOM_DFT, DFTX_NOT_COMMITTED));
    EXPECT_EQ(error.status(), bad);
  }
  EXPECT_TRUE(qkr::status(qkr::room::streams, 5).ok());  // of a user's generator
  EXPECT_FALSE(qkr::status(qkr::room::vecmath, VXM_STATUS_ERRDOM).ok());
}

TEST(CxxStatus, LevelsAreThoseOfTheLibrary) {
  const qkr::simd_level before = qkr::level_in_use();
  EXPECT_EQ(qkr::use_level(qkr::simd_level::sse2), qkr::simd_level::sse2);
  EXPECT_EQ(qkr_level(), QKR_LEVEL_SSE2);
  EXPECT_EQ(qkr::use_level(before), before);
}

TEST(CxxShape, TakesWhatThirtyTwoBitsHold) {
  const short height = -480;
  const qkr::shape picture = {size_t{640}, height}, row = std::vector<size_t>{3, 4, 5};
  EXPECT_TRUE(picture.valid() && row.valid());
  EXPECT_EQ(picture.size(), 2u);
  EXPECT_EQ(picture[1], -480);
  EXPECT_EQ(row[2], 5);
  for (const qkr::shape &none :
       {qkr::shape(size_t{1} << 31), qkr::shape(2, int64_t{-1} << 40), qkr::shape(1, 2, 3, 4, 5, 6, 7, 8)})
    EXPECT_FALSE(none.valid());
}

}  // namespace
