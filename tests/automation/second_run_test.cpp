// A second run of each control law on a scene that has not changed: what it sets, and
// where it ends. The picture follows the settings of a model camera by simple rules, so
// that every step can be worked out by hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "automation/balance_laws.h"
#include "automation/pass_gateway.h"

namespace ormidex::automation {
namespace {

using testing::TestSession;

std::uint8_t Level(double level) {
  return static_cast<std::uint8_t>(std::clamp(level, 0.0, 255.0));
}

// Shows what `scene` makes of the settings at the moment of each frame.
class SceneGateway : public PassGateway {
 public:
  std::function<Cell()> scene;

  bool Control(device::DriverHandle handle, const device::DriverRequest& request,
               std::uint32_t* returned) override {
    if (request.code == device::CAM_IOCTL_READ_FRAME) frames = {scene()};
    return PassGateway::Control(handle, request, returned);
  }
};

class SecondRun : public ::testing::Test {
 protected:
  SecondRun() : session_(gateway_) {
    session_->stream.running.store(1);
    session_->options.gamma = 1.0f;
  }

  Status Expose(std::uint32_t percent) {
    gateway_.ClearRequests();
    return session_->AutoExposure(percent, 1, 0, 0, 64, 64);
  }
  Status Balance() {
    gateway_.ClearRequests();
    return session_->WhiteBalance(1, 0, 0, 64, 64, 1, 1, 1);
  }
  // The data of the last run's writes that begin so.
  std::vector<std::string> Written(const std::string& beginning) {
    std::vector<std::string> data;
    for (const std::string& line : gateway_.Requests()) {
      if (line.rfind(beginning, 0) == 0) data.push_back(line.substr(beginning.size()));
    }
    return data;
  }
  int Register(std::uint32_t address) { return gateway_.registers[address]; }

  SceneGateway gateway_;
  TestSession session_;
};

using Data = std::vector<std::string>;

// ---- Bisection --------------------------------------------------------------------------

class SecondBisection : public SecondRun {
 protected:
  // Half a level for each step above the lower limit of 2046 - 480.
  SecondBisection() {
    gateway_.bus_address = device::kFirstGenerationBusAddress;
    session_->identity.imager_type = device::kImagerMono;
    gateway_.scene = [this] {
      const std::uint8_t level = Level((RawExposure() - 1566) / 2.0);
      return Cell{{level, level, level, level}};
    };
  }
  int RawExposure() { return Register(18) * 256 + Register(19); }
  Data Set() { return Written("0x222004 [18] 00000000 60000000 12000000 02000000 "); }
};

// The law has no memory of the exposure that is set: it begins with the middle of its
// range, 1806. For 127, where levels are 120, 180, 150, 135 and 127: 1806, 1926, 1866,
// 1836 and 1821.
TEST_F(SecondBisection, SearchesAgainAndEndsAtTheSameValue) {
  const Data all = {"070e", "0786", "074a", "072c", "071d"};
  EXPECT_EQ(Expose(50), kOk);
  EXPECT_EQ(Set(), all);
  EXPECT_EQ(Expose(50), kOk);
  EXPECT_EQ(Set(), all);
  EXPECT_EQ(RawExposure(), 1821);
}

// 47 % is 119, within five of the 120 of the middle.
TEST_F(SecondBisection, MakesOneChangeWhereTheMiddleOfTheRangeIsRight) {
  EXPECT_EQ(Expose(47), kOk);
  EXPECT_EQ(Set(), (Data{"070e"}));
  EXPECT_EQ(Expose(47), kOk);
  EXPECT_EQ(Set(), (Data{"070e"}));
  EXPECT_EQ(RawExposure(), 1806);
}

// ---- Proportional law ---------------------------------------------------------------------

class SecondProportional : public SecondRun {
 protected:
  // A row of 1000 clocks, or 62.5 microseconds, and 160 rows: 10 ms.
  SecondProportional() {
    session_.MakeSecondGeneration();
    session_->identity.imager_type = device::kImagerMono;
    gateway_.bus_address = device::kSecondGenerationBusAddress;
    gateway_.registers = {{71, 0x01}, {72, 0xDF}, {75, 0x02}, {76, 0x7F},
                          {78, 0x00}, {79, 160},  {82, 0x03}, {83, 0xD5}};
    gateway_.scene = [this] {
      const std::uint8_t level = Level(Milliseconds() * levels_per_millisecond_);
      return Cell{{level, level, level, level}};
    };
  }
  int Rows() { return (Register(78) & 0x3F) * 256 + Register(79); }
  double Milliseconds() { return Rows() * (Register(82) * 256 + Register(83) + 19) / 16000.0; }
  std::size_t Sets() { return Written("0x222004 [20] ff000000 66000000 4f000000").size(); }

  double levels_per_millisecond_ = 5.0;
};

// 10 ms are level 50, for a target of 127.5: 25.5 ms, which are 609 of the shortest rows,
// of 669 clocks. These are 25.46 ms and level 127.
TEST_F(SecondProportional, ChangesNothing) {
  EXPECT_EQ(Expose(50), kOk);
  EXPECT_EQ(Sets(), 1u);
  EXPECT_EQ(Rows(), 609);
  EXPECT_EQ(Expose(50), kOk);
  EXPECT_EQ(Sets(), 0u);
  EXPECT_EQ(Rows(), 609);
}

// A level of 0 counts as 1, so every pass asks for far more than 300 ms, and two of them
// end the run: 300 ms are 7174 of these rows.
TEST_F(SecondProportional, SetsTheEndOfTheRangeAgainTwice) {
  levels_per_millisecond_ = 0.0;
  for (int run = 0; run < 2; ++run) {
    EXPECT_EQ(Expose(50), kOk);
    EXPECT_EQ(Sets(), 2u);
    EXPECT_EQ(Rows(), 7174);
  }
}

// ---- White balance ------------------------------------------------------------------------

// Levels 200, 100, 100, 80, and twenty codes are as much again; less than twenty do
// nothing. After the zero codes the factors are 2 for green and 2.5 for blue.
TEST_F(SecondRun, OlderBalanceChangesNothing) {
  gateway_.bus_address = device::kFirstGenerationBusAddress;
  gateway_.registers = {{20, 5}, {21, 6}, {22, 7}};
  gateway_.scene = [this] {
    const auto gain = [this](std::uint32_t address) {
      return std::max(Register(address), 20) / 20.0;
    };
    const std::uint8_t green = Level(100 * gain(21));
    return Cell{{Level(200 * gain(20)), green, green, Level(80 * gain(22))}};
  };
  const std::string gains = "0x222004 [19] 00000000 60000000 14000000 03000000 ";
  EXPECT_EQ(Balance(), kOk);
  EXPECT_EQ(Written(gains), (Data{"000000", "002832"}));
  EXPECT_EQ(Balance(), kOk);
  EXPECT_EQ(Written(gains), Data{});
  EXPECT_EQ(Register(20), 0);
  EXPECT_EQ(Register(21), 40);
  EXPECT_EQ(Register(22), 50);
}

// Levels without gain 100, 200, 200, 100, all of them at first times 0.9995: 99, 199, 199,
// 99. Red and blue need 199 / 99 = 2.01, which is code 46 (0x2E), a gain of 2.0; the
// greens stay at code 14 (0x0E).
TEST_F(SecondRun, NewerBalanceChangesNothing) {
  session_.MakeSecondGeneration();
  gateway_.bus_address = device::kSecondGenerationBusAddress;
  gateway_.registers = {{0, 14}, {1, 14}, {2, 14}, {3, 14}};
  gateway_.scene = [this] {
    const auto gain = [this](std::uint32_t address) {
      return GainFromCode(static_cast<std::uint8_t>(Register(address)));
    };
    return Cell{
        {Level(100 * gain(1)), Level(200 * gain(0)), Level(200 * gain(3)), Level(100 * gain(2))}};
  };
  const std::string gains = "0x222004 [20] 00000000 66000000 00000000 04000000 ";
  EXPECT_EQ(Balance(), kOk);
  EXPECT_EQ(Written(gains), (Data{"0e2e2e0e"}));
  EXPECT_EQ(Balance(), kOk);
  EXPECT_EQ(Written(gains), Data{});
  EXPECT_EQ(Register(1), 46);
  EXPECT_EQ(Register(2), 46);
}

}  // namespace
}  // namespace ormidex::automation
