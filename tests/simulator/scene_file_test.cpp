// Scenes from the user's own pictures.
#include <cstdio>

#include "simulator/driver_client.h"

namespace ormidex::simulator {
namespace {

using Bytes = std::vector<std::uint8_t>;

// A picture file that is removed with the object.
class PictureFile {
 public:
  PictureFile(const char* name, const Bytes& bytes) : name_(name) {
    std::FILE* file = std::fopen(name, "wb");
    EXPECT_NE(file, nullptr);
    if (file == nullptr) return;
    EXPECT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), file), bytes.size());
    std::fclose(file);
  }
  ~PictureFile() { std::remove(name_); }
  PictureFile(const PictureFile&) = delete;
  PictureFile& operator=(const PictureFile&) = delete;

 private:
  const char* name_;
};

// The first cell of the mosaic of a window at (column, row).
Bytes CellAt(const char* text, int column, int row) {
  const auto simulator = MakeSimulator(text);
  DriverClient client(*simulator);
  client.PrepareSecond();
  client.WriteRegisters(
      0x66, 69, {static_cast<std::uint8_t>((row + 16) >> 8), static_cast<std::uint8_t>(row + 16)});
  client.WriteRegisters(
      0x66, 73,
      {static_cast<std::uint8_t>((column + 9) >> 8), static_cast<std::uint8_t>(column + 9)});
  client.SetVideoMode(1);
  client.Start(640, 480);
  const Bytes frame = client.FreshFrame(640 * 480);
  return {frame[0], frame[1], frame[640], frame[641]};
}

TEST(SceneFile, APpmPictureIsSpreadOverTheSensor) {
  // Two pixels: the left half of the sensor is orange, the right half blue-grey.
  Bytes ppm;
  for (const char c : std::string("P6\n2 1\n255\n")) ppm.push_back(static_cast<std::uint8_t>(c));
  for (const int value : {200, 100, 50, 20, 40, 80})
    ppm.push_back(static_cast<std::uint8_t>(value));
  const PictureFile file("simulator_scene_test.ppm", ppm);
  const char* text = "pace=fast,scene=file:simulator_scene_test.ppm";
  EXPECT_EQ(CellAt(text, 0, 0), (Bytes{200, 100, 100, 50}));
  EXPECT_EQ(CellAt(text, 640 + 330, 500), (Bytes{20, 40, 40, 80}));
}

TEST(SceneFile, APngPictureIsRead) {
  // One red pixel of 255, 0, 0.
  const PictureFile file(
      "simulator_scene_test.png",
      {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48,
       0x44, 0x52, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x08, 0x02, 0x00, 0x00,
       0x00, 0x90, 0x77, 0x53, 0xDE, 0x00, 0x00, 0x00, 0x0C, 0x49, 0x44, 0x41, 0x54, 0x78,
       0x9C, 0x63, 0xF8, 0xCF, 0xC0, 0x00, 0x00, 0x03, 0x01, 0x01, 0x00, 0xC9, 0xFE, 0x92,
       0xEF, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82});
  const Bytes cell = CellAt("pace=fast,scene=file:simulator_scene_test.png", 0, 0);
  EXPECT_GE(cell[0], 254);
  EXPECT_EQ(cell[1], 0);
  EXPECT_EQ(cell[3], 0);
}

TEST(SceneFile, AnythingElseIsRefused) {
  const PictureFile file("simulator_scene_test.txt", {'h', 'e', 'l', 'l', 'o'});
  std::string error;
  const auto simulator = Simulator::Create("scene=file:simulator_scene_test.txt", &error);
  EXPECT_NE(error.find("simulator_scene_test.txt"), std::string::npos);
  EXPECT_EQ(simulator->CameraCount(), 0);
}

}  // namespace
}  // namespace ormidex::simulator
