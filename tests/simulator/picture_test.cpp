// The picture answers the controls.
#include <algorithm>
#include <cmath>

#include "simulator/driver_client.h"

namespace ormidex::simulator {
namespace {

using Frame = std::vector<std::uint8_t>;

constexpr int kWidth = 640;
constexpr int kHeight = 480;
constexpr std::uint32_t kPixels = kWidth * kHeight;

std::string Fast(const char* keys) { return std::string("pace=fast,") + keys; }

// A camera that streams 640 x 480 at the exposure it is nominally used with.
class Camera {
 public:
  explicit Camera(const char* keys)
      : simulator_(MakeSimulator(Fast(keys).c_str())), client_(*simulator_) {
    second_ = simulator_->Camera(0).Description().generation == 2;
    if (second_) {
      client_.PrepareSecond();
    } else {
      client_.PrepareFirst();
    }
    EXPECT_TRUE(client_.SetVideoMode(1));
    EXPECT_TRUE(client_.Start(kWidth, kHeight));
  }
  DriverClient* operator->() { return &client_; }
  SimulatedCamera& Sim() { return simulator_->Camera(0); }
  std::uint32_t Bus() const { return second_ ? 0x66 : 0x60; }
  Frame Fresh(std::uint32_t bytes = kPixels) { return client_.FreshFrame(bytes); }
  void SetFlip(std::uint32_t on) {
    device::ThreeWordRecord record = {0, 0, on};
    EXPECT_TRUE(client_.Words(device::CAM_IOCTL_SET_FLIP, &record));
  }
  template <typename Record>
  void LoadTable(Record* table) {
    EXPECT_TRUE(client_.Exchange(device::CAM_IOCTL_LOAD_LOOKUP_TABLE, table));
    EXPECT_EQ(table->status, 0u);
  }

 private:
  std::unique_ptr<Simulator> simulator_;
  DriverClient client_;
  bool second_;
};

std::uint8_t At(const Frame& frame, int column, int row, int width = kWidth) {
  return frame[static_cast<std::size_t>(row * width + column)];
}

// Every sample has one level.
int Level(const Frame& frame) {
  EXPECT_TRUE(std::all_of(frame.begin(), frame.end(),
                          [&frame](std::uint8_t sample) { return sample == frame[0]; }));
  return frame[0];
}

// Where the red sites are when only red light falls in: 10 x row + column of the
// mosaic's cell, -1 when they are not exactly one in four.
int RedPlace(const Frame& frame, int width = kWidth) {
  const int rows = static_cast<int>(frame.size()) / width;
  int place = -1;
  for (int cell = 0; cell < 4; ++cell) {
    int lit = 0;
    for (int row = cell / 2; row < rows; row += 2) {
      for (int column = cell % 2; column < width; column += 2)
        lit += At(frame, column, row, width) > 0;
    }
    if (lit == 0) continue;
    if (lit != rows / 2 * (width / 2) || place >= 0) return -1;
    place = cell / 2 * 10 + cell % 2;
  }
  return place;
}

TEST(SimulatorPicture, GreyLevelsComeOutAsAskedAtTheNominalExposure) {
  EXPECT_EQ(Level(Camera("scene=grey:100").Fresh()), 100);
  EXPECT_EQ(Level(Camera("scene=grey:200,imager=mono").Fresh()), 200);
  EXPECT_EQ(Level(Camera("scene=grey:100,generation=1").Fresh()), 100);
  EXPECT_EQ(Level(Camera("scene=grey:0").Fresh()), 0);
}

TEST(SimulatorPicture, TwiceTheExposureIsTwiceTheLevel) {
  Camera second("scene=grey:60");
  second->SetSecondExposure(2 * 579);
  EXPECT_NEAR(Level(second.Fresh()), 120, 1);
  Camera first("scene=grey:120,generation=1");
  first->SetFirstExposure(479 / 2, 480);
  EXPECT_NEAR(Level(first.Fresh()), 60, 1);
}

TEST(SimulatorPicture, AFirstGenerationExposureBelowItsRangeIsBlack) {
  Camera camera("scene=grey:255,generation=1");
  camera->SetFirstExposure(-5, 480);
  EXPECT_EQ(Level(camera.Fresh()), 0);
}

TEST(SimulatorPicture, TooMuchLightClipsAtFullRange) {
  Camera camera("scene=grey:200");
  camera->SetSecondExposure(4 * 579);
  EXPECT_EQ(Level(camera.Fresh()), 255);
  camera->SetTransferSize(0x66, 16);
  const Frame wide = camera.Fresh(2 * kPixels);
  EXPECT_EQ(wide[1] << 8 | wide[0], 1023 << 6);
}

TEST(SimulatorPicture, TheSecondGenerationExposureWaitsForItsToggle) {
  Camera camera("scene=grey:60");
  camera->WriteRegisters(0x66, 79, {200});  // without the toggle nothing happens
  const int before = Level(camera.Fresh());
  EXPECT_EQ(before, 60);
}

TEST(SimulatorPicture, TheExposureGainFollowsItsCode) {
  Camera camera("scene=grey:50");
  // Code 14: 0.483 + 14 x 0.11119 = 2.03966, against 1.03895 at code 5.
  camera->WriteRegisters(0x66, 16, {14});
  EXPECT_NEAR(Level(camera.Fresh()), 50 * 2.03966 / 1.03895, 1);
  camera->WriteRegisters(0x66, 34, {1});  // not manual: as at power-up
  EXPECT_EQ(Level(camera.Fresh()), 50);
}

TEST(SimulatorPicture, EachColourGainMovesItsOwnSites) {
  Camera camera("scene=grey:50");
  camera->WriteRegisters(0x66, 1, {63});  // red: 1.3475 + 32 x 0.0435 = 2.7395
  const Frame frame = camera.Fresh();
  EXPECT_NEAR(At(frame, 0, 0), 50 * 2.7395 / 0.9995, 1);
  EXPECT_EQ(At(frame, 1, 0), 50);
  EXPECT_EQ(At(frame, 0, 1), 50);
  EXPECT_EQ(At(frame, 1, 1), 50);
  camera->WriteRegisters(0x66, 0, {63, 14, 14, 0});  // green 1 up, green 2 down
  const Frame greens = camera.Fresh();
  EXPECT_NEAR(At(greens, 1, 0), 137, 1);
  EXPECT_NEAR(At(greens, 0, 1), 50 * 0.695 / 0.9995, 1);
  EXPECT_EQ(At(greens, 1, 1), 50);
}

TEST(SimulatorPicture, FirstGenerationGainsDoubleAtCode40) {
  Camera camera("scene=grey:50,generation=1");
  camera->WriteRegisters(0x60, 20, {40, 0, 63});
  const Frame frame = camera.Fresh();
  EXPECT_NEAR(At(frame, 0, 0), 100, 1);
  EXPECT_EQ(At(frame, 1, 0), 50);
  EXPECT_EQ(At(frame, 0, 1), 50);
  EXPECT_NEAR(At(frame, 1, 1), 50 * (1 + 63.0 * 63.0 / 1600.0), 1);
}

TEST(SimulatorPicture, AnEightBitTableMapsTheLevels) {
  Camera camera("scene=grey:100");
  device::LookupTable8Record table;
  for (int i = 0; i < 256; ++i) table.entries[i] = static_cast<std::uint8_t>(255 - i);
  camera.LoadTable(&table);
  EXPECT_EQ(Level(camera.Fresh()), 155);
  camera->SetTransferSize(0x66, 16);
  EXPECT_EQ(camera.Fresh(2 * kPixels)[1], 155);
  device::LookupTableOffRecord off;
  camera.LoadTable(&off);
  camera->SetTransferSize(0x66, 8);
  EXPECT_EQ(Level(camera.Fresh()), 100);
}

TEST(SimulatorPicture, ATenBitTableMapsTheLevels) {
  Camera camera("scene=grey:100");
  device::LookupTable10Record table;
  for (int i = 0; i < 1024; ++i) {
    const int value = 65535 - i;
    table.entries[2 * i] = static_cast<std::uint8_t>(value);
    table.entries[2 * i + 1] = static_cast<std::uint8_t>(value >> 8);
  }
  camera->SetTransferSize(0x66, 16);
  camera.LoadTable(&table);
  const Frame frame = camera.Fresh(2 * kPixels);
  EXPECT_EQ(frame[1] << 8 | frame[0], 65535 - 401);  // 100 / 255 of 1023 is 401
  camera->SetTransferSize(0x66, 8);
  EXPECT_EQ(Level(camera.Fresh()), (65535 - 401) >> 8);
}

TEST(SimulatorPicture, SixteenBitSamplesHoldTenBitsAtTheTop) {
  Camera camera("scene=ramp");
  camera->SetTransferSize(0x66, 16);
  const Frame wide = camera.Fresh(2 * kPixels);
  camera->SetTransferSize(0x66, 8);
  const Frame narrow = camera.Fresh();
  for (std::uint32_t i = 0; i < kPixels; ++i) {
    ASSERT_EQ(wide[2 * i] & 0x3F, 0);
    ASSERT_EQ(wide[2 * i + 1], narrow[i]);
  }
}

TEST(SimulatorPicture, MovingTheSubWindowMovesThePicture) {
  Camera camera("scene=noise");
  const Frame before = camera.Fresh();
  camera->WriteRegisters(0x66, 73, {0, 9 + 32});
  camera->WriteRegisters(0x66, 69, {0, 16 + 20});
  const Frame after = camera.Fresh();
  for (int row = 0; row < kHeight - 20; ++row) {
    for (int column = 0; column < kWidth - 32; ++column) {
      ASSERT_EQ(At(after, column, row), At(before, column + 32, row + 20));
    }
  }
}

TEST(SimulatorPicture, ASecondGenerationMirrorTurnsThePicture) {
  Camera camera("scene=noise");
  const Frame upright = camera.Fresh();
  // Mirrored the window begins at an even column, so that it ends at an odd one.
  camera->WriteRegisters(0x66, 73, {0, 8});
  camera->WriteRegisters(0x66, 87, {1});
  const Frame mirrored = camera.Fresh();
  for (int column = 0; column < kWidth - 1; ++column) {
    ASSERT_EQ(At(mirrored, column, 7), At(upright, kWidth - 2 - column, 7));
  }
  camera->WriteRegisters(0x66, 87, {2});
  camera->WriteRegisters(0x66, 73, {0, 9});
  const Frame upside_down = camera.Fresh();
  for (int row = 1; row < kHeight; ++row) {
    ASSERT_EQ(At(upside_down, 5, row), At(upright, 5, kHeight - row));
  }
}

TEST(SimulatorPicture, AFirstGenerationMirrorTurnsThePicture) {
  Camera camera("scene=noise,generation=1");
  const Frame upright = camera.Fresh();
  camera->WriteRegisters(0x60, 1, {0x18});
  camera.SetFlip(1);
  const Frame mirrored = camera.Fresh();
  for (int column = 1; column < kWidth; ++column) {
    ASSERT_EQ(At(mirrored, column, 7), At(upright, kWidth - column, 7));
  }
  camera->WriteRegisters(0x60, 1, {0x00});
  const Frame upside_down = camera.Fresh();
  for (int row = 1; row < kHeight; ++row) {
    ASSERT_EQ(At(upside_down, 5, row), At(upright, 5, kHeight - row));
  }
}

TEST(SimulatorMosaic, ASecondGenerationHostThatFollowsTheParityRuleGetsPhase0InEveryPosition) {
  Camera camera("scene=grey:200,tint=1:0:0");
  for (const int flips : {0, 1, 2, 3}) {
    camera->WriteRegisters(0x66, 87, {static_cast<std::uint8_t>(flips)});
    for (const int column : {0, 100, 600}) {
      const int c = column + 8 + (flips & 1 ? 0 : 1);
      camera->WriteRegisters(0x66, 73,
                             {static_cast<std::uint8_t>(c >> 8), static_cast<std::uint8_t>(c)});
      EXPECT_EQ(RedPlace(camera.Fresh()), 0) << "flips " << flips << " column " << column;
    }
  }
}

TEST(SimulatorMosaic, ASecondGenerationWindowAtAnEvenColumnShiftsTheMosaic) {
  Camera camera("scene=grey:200,tint=1:0:0");
  camera->WriteRegisters(0x66, 73, {0, 8});
  EXPECT_EQ(RedPlace(camera.Fresh()), 1);
}

TEST(SimulatorMosaic, SubSamplingKeepsThePairsTogether) {
  for (const char* keys : {"scene=grey:200,tint=1:0:0", "scene=grey:200,tint=1:0:0,generation=1"}) {
    Camera camera(keys);
    const bool second = camera.Bus() == 0x66;
    for (const int factor : {2, 4}) {
      const std::uint8_t bits =
          static_cast<std::uint8_t>(second ? (factor == 2 ? 5 : 10) : (factor == 2 ? 0x0A : 0x0E));
      camera->WriteRegisters(camera.Bus(), second ? 65 : 1, {bits});
      if (!second) camera->SetFirstExposure(479 / factor, 480 / factor);
      const int width = kWidth / factor;
      const std::uint32_t bytes = kPixels / static_cast<std::uint32_t>(factor * factor);
      EXPECT_EQ(RedPlace(camera.Fresh(bytes), width), 0) << keys << factor;
      // Mirrored: phase 0 again, without any help.
      if (second) {
        camera->WriteRegisters(0x66, 87, {1});
        camera->WriteRegisters(0x66, 73, {0, 8});
      } else {
        camera->WriteRegisters(0x60, 1, {static_cast<std::uint8_t>(bits | 0x10)});
      }
      EXPECT_EQ(RedPlace(camera.Fresh(bytes), width), 0) << keys << factor;
      if (second) {
        camera->WriteRegisters(0x66, 87, {0});
        camera->WriteRegisters(0x66, 73, {0, 9});
      }
    }
  }
}

TEST(SimulatorMosaic, FirstGenerationReadModeTellsThePhaseOfAnUnshiftedWindow) {
  Camera camera("scene=grey:200,tint=1:0:0,generation=1");
  EXPECT_EQ(camera->ReadRegister(0x60, 1), 0x08);
  EXPECT_EQ(RedPlace(camera.Fresh()), 0);  // red first: phase 0
  camera->WriteRegisters(0x60, 1, {0x10});
  EXPECT_EQ(RedPlace(camera.Fresh()), 1);  // G R / B G: phase 1
  camera->WriteRegisters(0x60, 1, {0x18});
  EXPECT_EQ(RedPlace(camera.Fresh()), 11);  // B G / G R: phase 2
  camera.SetFlip(1);                        // the driver moves the window by a pixel
  EXPECT_EQ(RedPlace(camera.Fresh()), 0);
  camera->WriteRegisters(0x60, 1, {0x00});
  EXPECT_EQ(RedPlace(camera.Fresh()), 0);
}

TEST(SimulatorMosaic, AFirstGenerationWindowAtAnOddColumnShiftsTheMosaic) {
  Camera camera("scene=grey:200,tint=1:0:0,generation=1");
  camera->WriteRegisters(0x60, 4, {0, 5, 0, 4});
  EXPECT_EQ(RedPlace(camera.Fresh()), 1);
  camera->WriteRegisters(0x60, 4, {0, 4, 0, 5});
  EXPECT_EQ(RedPlace(camera.Fresh()), 10);
}

TEST(SimulatorMosaic, HeadsOfPhase1And2AreWiredAndKeepTheirMosaic) {
  Camera one("scene=grey:200,tint=1:0:0,generation=1,phase=1");
  Camera two("scene=grey:200,tint=1:0:0,generation=1,phase=2");
  for (const int mode : {0x08, 0x10, 0x00, 0x18}) {
    one->WriteRegisters(0x60, 1, {static_cast<std::uint8_t>(mode)});
    two->WriteRegisters(0x60, 1, {static_cast<std::uint8_t>(mode)});
    EXPECT_EQ(one->ReadRegister(0x60, 1) & 0x18, 0x10);
    EXPECT_EQ(two->ReadRegister(0x60, 1) & 0x18, 0x18);
    EXPECT_EQ(RedPlace(one.Fresh()), 1);
    EXPECT_EQ(RedPlace(two.Fresh()), 11);
  }
}

TEST(SimulatorMosaic, AMonochromeImagerHasNone) {
  Camera camera("scene=grey:200,tint=1:1:1,imager=mono");
  EXPECT_EQ(Level(camera.Fresh()), 200);
}

TEST(SimulatorPicture, SubSamplingSkipsPixels) {
  Camera camera("scene=noise");
  const Frame full = camera.Fresh();
  camera->WriteRegisters(0x66, 65, {5});
  const Frame half = camera.Fresh(kPixels / 4);
  for (int row = 0; row < kHeight / 2; ++row) {
    for (int column = 0; column < kWidth / 2; ++column) {
      ASSERT_EQ(At(half, column, row, kWidth / 2),
                At(full, column / 2 * 4 + column % 2, row / 2 * 4 + row % 2));
    }
  }
}

TEST(SimulatorPicture, LightAndTintAreWhatFallsIn) {
  Camera camera("scene=grey:100,light=0.5,tint=2:1:0.5");
  const Frame frame = camera.Fresh();
  EXPECT_NEAR(At(frame, 0, 0), 100, 1);
  EXPECT_NEAR(At(frame, 1, 0), 50, 1);
  EXPECT_NEAR(At(frame, 1, 1), 25, 1);
  camera.Sim().SetLight(1.0);
  camera.Sim().SetTint(Tint());
  EXPECT_EQ(Level(camera.Fresh()), 100);
}

TEST(SimulatorPicture, ARampRisesFromLeftToRight) {
  Camera camera("scene=ramp");
  const Frame frame = camera.Fresh();
  EXPECT_EQ(At(frame, 0, 0), 0);
  for (int column = 1; column < kWidth; ++column) {
    ASSERT_GE(At(frame, column, 100), At(frame, column - 1, 100));
  }
  EXPECT_NEAR(At(frame, kWidth - 1, 0), 127, 1);  // half of the sensor is in the window
}

TEST(SimulatorPicture, ALensPutsTheSceneOnASmallerArea) {
  Camera camera("scene=ramp,lens=640x480");
  // 1278 / 1279 of 1023 is 1022, whose upper eight bits are 255.
  EXPECT_EQ(At(camera.Fresh(), kWidth - 1, 0), 255);
}

TEST(SimulatorPicture, NoiseIsSeededKeepsTheMeanAndChangesFromFrameToFrame) {
  Camera camera("scene=grey:100,noise=4,seed=7");
  Camera same("scene=grey:100,noise=4,seed=7");
  Camera other("scene=grey:100,noise=4,seed=8");
  const Frame frame = camera.Fresh();
  EXPECT_EQ(frame, same.Fresh());
  EXPECT_NE(frame, other.Fresh());
  EXPECT_NE(frame, camera.Fresh());
  double sum = 0;
  double squares = 0;
  for (const std::uint8_t sample : frame) {
    sum += sample;
    squares += (sample - 100.0) * (sample - 100.0);
  }
  EXPECT_NEAR(sum / kPixels, 100.0, 1.0);
  EXPECT_NEAR(std::sqrt(squares / kPixels), 4.0, 0.5);
}

TEST(SimulatorPicture, AChartHasColourAndStructure) {
  Camera camera("scene=chart");
  const Frame frame = camera.Fresh();
  EXPECT_EQ(At(frame, 0, 0), At(frame, 1, 1));             // the white frame
  EXPECT_GT(At(frame, 0, 0), 220);                         // well exposed,
  EXPECT_LT(At(frame, 0, 0), 240);                         // and not clipped
  EXPECT_GT(At(frame, 60, 140), At(frame, 61, 141) + 60);  // the red patch
}

TEST(SimulatorPicture, SettingsActOnTheNextExposedFrame) {
  VirtualClock clock;
  const auto simulator = MakeSimulator("scene=grey:100,timeout=0", &clock);
  DriverClient client(*simulator);
  client.PrepareSecond();
  client.SetVideoMode(1);
  client.Start(kWidth, kHeight);
  clock.Advance(10000);                          // in the middle of the first frame
  client.WriteRegisters(0x66, 0, {0, 0, 0, 0});  // all colour gains from 0.9995 to 0.695
  Frame frame(kPixels);
  clock.Advance(20000);
  ASSERT_TRUE(client.ReadFrame(&frame));
  EXPECT_EQ(Level(frame), 100);  // it had begun before
  clock.Advance(30000);
  ASSERT_TRUE(client.ReadFrame(&frame));
  EXPECT_NEAR(Level(frame), 69.5, 1);
}

TEST(SimulatorPicture, AWindowBeyondTheArrayStillGivesAFrame) {
  Camera camera("scene=chart");
  camera->WriteRegisters(0x66, 69, {0x3F, 0xFF, 0x3F, 0xFF, 0x3F, 0xFF, 0x3F, 0xFF});
  Frame frame(kPixels);
  EXPECT_TRUE(camera->ReadFrame(&frame));
  EXPECT_TRUE(camera->ReadFrame(&frame));
  EXPECT_TRUE(camera->ReadFrame(&frame));
  camera->WriteRegisters(0x66, 71, {0, 0, 0, 9, 0, 0});  // one pixel
  EXPECT_TRUE(camera->ReadFrame(&frame));
  EXPECT_TRUE(camera->ReadFrame(&frame));
  EXPECT_EQ(camera->Returned(), 1u);
}

TEST(SimulatorPicture, ContinuousAutoExposureBringsADarkSceneUp) {
  Camera camera("scene=grey:20");
  device::CommandRegisterRecord on;
  on.operation = device::kCommandContinuousAutoExposure;
  on.first = device::BigEndian32(1);
  ASSERT_TRUE(camera->Exchange(device::CAM_IOCTL_COMMAND_REGISTER, &on));
  Frame frame(kPixels);
  for (int i = 0; i < 10; ++i) ASSERT_TRUE(camera->ReadFrame(&frame));
  EXPECT_NEAR(Level(frame), 115, 8);
  EXPECT_GT(camera.Sim().ExposureMicroseconds(), 100000.0);
}

}  // namespace
}  // namespace ormidex::simulator
