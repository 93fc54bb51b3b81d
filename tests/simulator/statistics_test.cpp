// The statistics block in its three layouts.
//
// A grey scene of 100 in red light of 1, green of 0.5 and blue of 0.25 gives sites
// of 100, 50 and 25; the expected words are worked out from these.
#include "simulator/statistics.h"
#include "simulator/driver_client.h"

namespace ormidex::simulator {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::uint32_t kSites = 640 * 480 / 4;

class Statistics : public testing::Test {
 protected:
  void StartCamera(const char* keys, std::uint32_t bits = 8) {
    simulator_ =
        MakeSimulator((std::string("pace=fast,scene=grey:100,tint=1:0.5:0.25,") + keys).c_str());
    client_ = std::make_unique<DriverClient>(*simulator_);
    const bool second = simulator_->Camera(0).Description().generation == 2;
    if (second) {
      client_->PrepareSecond();
    } else {
      client_->PrepareFirst();
    }
    ASSERT_TRUE(client_->SetTransferSize(second ? 0x66 : 0x60, bits));
    ASSERT_TRUE(client_->SetVideoMode(1));
    ASSERT_TRUE(client_->Start(640, 480, bits / 8));
    frame_ = client_->FreshFrame(640 * 480 * bits / 8);
  }
  bool ReadBlock(std::uint32_t address, std::uint32_t count) {
    block_.assign(16 + count, 0xEE);
    device::CommandRegisterRecord record;
    record.operation = device::kCommandReadBlock;
    record.first = device::BigEndian32(address);
    record.second = device::BigEndian32(count);
    std::memcpy(block_.data(), &record, sizeof record);
    const bool done = client_->Request(device::CAM_IOCTL_COMMAND_REGISTER, block_.data(),
                                       16 + count, block_.data(), 16 + count);
    block_.erase(block_.begin(), block_.begin() + 16);
    return done;
  }
  std::uint32_t Little(std::size_t at) const {
    return block_[at] | block_[at + 1] << 8 | block_[at + 2] << 16 |
           static_cast<std::uint32_t>(block_[at + 3]) << 24;
  }
  std::uint32_t Big16(std::size_t at) const {
    return static_cast<std::uint32_t>(block_[at] << 8 | block_[at + 1]);
  }

  std::unique_ptr<Simulator> simulator_;
  std::unique_ptr<DriverClient> client_;
  Bytes frame_;
  Bytes block_;
};

TEST_F(Statistics, FramesHaveTheExpectedSites) {
  StartCamera("generation=2");
  EXPECT_EQ(frame_[0], 100);
  EXPECT_EQ(frame_[1], 50);
  EXPECT_EQ(frame_[640], 50);
  EXPECT_EQ(frame_[641], 25);
}

TEST_F(Statistics, OlderControllersBefore3GiveThreeLittleEndianSums) {
  StartCamera("generation=1,firmware=0x02020000");
  ASSERT_TRUE(ReadBlock(0x8810, 12));
  EXPECT_EQ(Little(0), 100 * kSites);
  EXPECT_EQ(Little(4), 2 * 50 * kSites);
  EXPECT_EQ(Little(8), 25 * kSites);
}

TEST_F(Statistics, SixteenBitSumsOfOlderControllersAreInProportionToTheBytes) {
  StartCamera("generation=1,firmware=0x02020000", 16);
  ASSERT_TRUE(ReadBlock(0x8810, 12));
  // Nine bits of each sample: 100 / 255 of 1023 is 401, the top nine bits 200.
  const std::uint32_t red = static_cast<std::uint32_t>(frame_[1] << 8 | frame_[0]) >> 7;
  EXPECT_EQ(red, 200u);
  EXPECT_EQ(Little(0), 200 * kSites);
  EXPECT_EQ(Little(0) / (640 * 480 * 2 / 4), 100u);
}

TEST_F(Statistics, OlderControllersFrom3GiveThirteenBitsEach) {
  StartCamera("generation=1,firmware=0x03000000");
  ASSERT_TRUE(ReadBlock(0x10, 6));
  EXPECT_EQ(Big16(0), 100 * kSites / 16384);     // 468
  EXPECT_EQ(Big16(2), 2 * 50 * kSites / 32768);  // 234
  EXPECT_EQ(Big16(4), 25 * kSites / 16384);      // 117
}

TEST_F(Statistics, NewerControllersGiveFourSixteenBitCounts) {
  StartCamera("generation=2");
  ASSERT_TRUE(ReadBlock(0x10, 8));
  EXPECT_EQ(Big16(0), 100 * kSites / 2048);  // 3750
  EXPECT_EQ(Big16(2), 50 * kSites / 2048);   // 1875
  EXPECT_EQ(Big16(4), 50 * kSites / 2048);
  EXPECT_EQ(Big16(6), 25 * kSites / 2048);  // 937
}

TEST_F(Statistics, NewerControllersSumTheUpperEightBits) {
  StartCamera("generation=2", 16);
  ASSERT_TRUE(ReadBlock(0x10, 8));
  EXPECT_EQ(Big16(0), 100 * kSites / 2048);
}

TEST_F(Statistics, FirmwareBefore22DoesNotSum) {
  StartCamera("generation=1,firmware=0x02010000");
  EXPECT_FALSE(ReadBlock(0x8810, 12));
}

TEST_F(Statistics, ThirteenBitCountsStopAtTheirEnd) {
  SiteSums sums;
  sums.sum[kRed] = 8192 * 16384ull;
  std::uint8_t block[kLongestStatistics] = {};
  EXPECT_EQ(EncodeShortStatistics(sums, block), 6u);
  EXPECT_EQ(block[0], 0x1F);
  EXPECT_EQ(block[1], 0xFF);
}

TEST_F(Statistics, DarkAndClippedPixelsAreCountedIn32s) {
  StartCamera("generation=2,light=4");  // red 400 clips, green 200, blue 100
  ASSERT_TRUE(client_->WriteCommandRegister(2, 0x20));
  EXPECT_EQ(client_->ReadCommandRegister(6) * 256 + client_->ReadCommandRegister(7),
            static_cast<int>(kSites / 32));
  ASSERT_TRUE(client_->WriteCommandRegister(2, 0x00));
  EXPECT_EQ(client_->ReadCommandRegister(6) * 256 + client_->ReadCommandRegister(7), 0);
  simulator_->Camera(0).SetLight(0.3);  // red 30, green 15, blue 7
  client_->FreshFrame(640 * 480);
  EXPECT_EQ(client_->ReadCommandRegister(6) * 256 + client_->ReadCommandRegister(7),
            static_cast<int>(3 * kSites / 32));
}

TEST_F(Statistics, AreThoseOfTheWholeFrameAsItWasDelivered) {
  StartCamera("generation=2,noise=5");
  ASSERT_TRUE(ReadBlock(0x10, 8));
  std::uint64_t sums[4] = {};
  for (std::size_t i = 0; i < frame_.size(); ++i) {
    sums[i / 640 % 2 * 2 + i % 2] += frame_[i];
  }
  for (std::size_t site = 0; site < 4; ++site) EXPECT_EQ(Big16(2 * site), sums[site] / 2048);
}

TEST_F(Statistics, BeforeTheFirstFrameAreZero) {
  simulator_ = MakeSimulator("1");
  client_ = std::make_unique<DriverClient>(*simulator_);
  ASSERT_TRUE(ReadBlock(0x10, 8));
  EXPECT_EQ(block_, Bytes(8, 0));
}

}  // namespace
}  // namespace ormidex::simulator
