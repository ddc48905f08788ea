// Version, level and the texts of statuses.
#include <algorithm>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <qkr/library.h>
#include <qkr/vecmath.h>
#include <regex>
#include <set>
#include <sstream>

#include "simd/level.h"
#include "tests/support/child.h"

namespace {

TEST(Version, IsThatOfTheProject) {
  int major, minor, patch;
  ASSERT_EQ(sscanf(QKR_PROJECT_VERSION, "%d.%d.%d", &major, &minor, &patch), 3);
  EXPECT_EQ(qkr_version(), major * 10000 + minor * 100 + patch);
  EXPECT_EQ(QKR_VERSION, qkr_version());
  EXPECT_STREQ(QKR_VERSION_STRING, QKR_PROJECT_VERSION);
}

TEST(Level, IsSetBeforeAndAfterTheFirstUse) {
  const auto widest = static_cast<int32_t>(qkr::supported_level());
  EXPECT_EQ(in_child({},
                     [] {
                       qkr::chosen_level = -1;
                       return qkr_set_level(QKR_LEVEL_SSE2) == 0 && qkr_level() == 0 ? 1 : 0;
                     }),
            1);
  EXPECT_EQ(qkr_level(), widest);
  const double x[3] = {0.1, 0.5, 3};
  double expected[3], y[3];
  _vxmdExp_HA(3, x, expected);
  for (int32_t level = 0; level < 3; ++level) {
    EXPECT_EQ(qkr_set_level(level), std::min(level, widest));
    EXPECT_EQ(qkr_level(), std::min(level, widest));
    _vxmdExp_HA(3, x, y);
    EXPECT_EQ(memcmp(y, expected, sizeof y), 0);
  }
  for (const int32_t none : {-1, 3, INT32_MIN, INT32_MAX}) EXPECT_EQ(qkr_set_level(none), -1);
  EXPECT_EQ(qkr_level(), widest);
}

// Every status that a header has gets a text of its own, and other numbers get none.
TEST(StatusText, ServesAllStatusesOfTheHeaders) {
  const struct {
    int32_t room;
    const char *header, *pattern;
    int first, last;  // numbers that are asked for
  } rows[] = {{QKR_ROOM_VECMATH, "vecmath_control.h", R"(\bVXM_STATUS_\w+ = (-?\d+))", -100, 100},
              {QKR_ROOM_STREAMS, "streams.h", R"(\bVXS_STATUS_\w+ = (-?\d+))", -3000, 100},
              {QKR_ROOM_SIGFFT, "sigfft.h", R"(\bzprSts\w+ = (-?\d+))", -300, 100},
              {QKR_ROOM_DFT, "dft.h", R"(\bDFTX_\w+ = (\d),? +/\*\*<.*)", -100, 100},
              {QKR_ROOM_CONVCORR, "convcorr.h", R"(\bVXS_CC_(?:OK|ERROR_\w+) = (-?\d+))", -3000, 100}};
  for (const auto &row : rows) {
    std::stringstream text;
    text << std::ifstream(std::string(QKR_INCLUDE "/") + row.header).rdbuf();
    std::string header = text.str();
    if (row.room == QKR_ROOM_DFT) header.resize(header.find("Parameters of"));
    std::set<int> statuses;
    const std::regex pattern(row.pattern);
    for (std::sregex_iterator found(header.begin(), header.end(), pattern), end; found != end; ++found)
      statuses.insert(std::stoi((*found)[1]));
    EXPECT_GE(statuses.size(), 7u) << row.header;
    std::set<std::string> texts;
    for (int status = row.first; status <= row.last; ++status) {
      const std::string answer = qkr_status_text(row.room, status);
      EXPECT_EQ(answer != "unknown status", statuses.count(status) == 1) << row.header << ' ' << status;
      if (statuses.count(status)) {
        EXPECT_TRUE(texts.insert(answer).second) << answer;
      }
    }
  }
  EXPECT_STREQ(qkr_status_text(-1, 0), "unknown room");
  EXPECT_STREQ(qkr_status_text(5, 0), "unknown room");
}

}  // namespace
