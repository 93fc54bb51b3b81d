// JPEG files against libjpeg used directly.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
// After cstdio, whose types it uses.
#include <jpeglib.h>

#include "files/image_files.h"

namespace ormidex::testing {
namespace {

using namespace device;

// What libjpeg makes of top-down red-green-blue rows at quality 95.
Bytes CompressDirectly(Bytes rgb, std::uint32_t width, std::uint32_t height) {
  jpeg_compress_struct compressor;
  jpeg_error_mgr errors;
  compressor.err = jpeg_std_error(&errors);
  jpeg_create_compress(&compressor);
  unsigned char* memory = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&compressor, &memory, &size);
  compressor.image_width = width;
  compressor.image_height = height;
  compressor.input_components = 3;
  compressor.in_color_space = JCS_RGB;
  jpeg_set_defaults(&compressor);
  jpeg_set_quality(&compressor, 95, TRUE);
  jpeg_start_compress(&compressor, TRUE);
  while (compressor.next_scanline < height) {
    JSAMPROW row = rgb.data() + std::size_t{compressor.next_scanline} * width * 3;
    jpeg_write_scanlines(&compressor, &row, 1);
  }
  jpeg_finish_compress(&compressor);
  const Bytes file(memory, memory + size);
  jpeg_destroy_compress(&compressor);
  std::free(memory);
  return file;
}

class Jpeg : public ::testing::Test {
 protected:
  ~Jpeg() override { platform::ClearFaults(); }
  ModelGateway driver;
  TemporaryFile file{"image.jpg"};
};

TEST_F(Jpeg, TwoByTwoIsCompressedFromTopDownRedGreenBlueRows) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  const Bytes image = FromHex("b00000 00b100  0000b2 b3c3d3");
  EXPECT_EQ(session->SaveFrameAsJpeg(image.data(), file.path()), kOk);
  EXPECT_EQ(Hex(file.Content()),
            Hex(CompressDirectly(FromHex("b20000 d3c3b3  0000b0 00b100"), 2, 2)));
}

TEST_F(Jpeg, ThreeByOneAndOneByThree) {
  const Bytes image = FromHex("b00000 00b100 0000b2");
  FilesSession flat(driver, kImagerColour, 3, 1, 1);
  EXPECT_EQ(flat->SaveFrameAsJpeg(image.data(), file.path()), kOk);
  EXPECT_EQ(Hex(file.Content()), Hex(CompressDirectly(FromHex("0000b0 00b100 b20000"), 3, 1)));
  FilesSession tall(driver, kImagerColour, 1, 3, 1);
  EXPECT_EQ(tall->SaveFrameAsJpeg(image.data(), file.path()), kOk);
  EXPECT_EQ(Hex(file.Content()), Hex(CompressDirectly(FromHex("b20000 00b100 0000b0"), 1, 3)));
}

TEST_F(Jpeg, OddSizesOfNoise) {
  for (const std::uint32_t width : {1u, 7u, 16u, 33u, 641u}) {
    for (const std::uint32_t height : {1u, 5u, 17u}) {
      FilesSession session(driver, kImagerColour, width, height, 1);
      const Bytes image = Noise(std::size_t{width} * height * 3, width * 100 + height);
      Bytes rgb(image.size());
      for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
          for (std::size_t c = 0; c < 3; ++c) {
            rgb[(y * width + x) * 3 + c] = image[((height - 1 - y) * width + x) * 3 + 2 - c];
          }
        }
      }
      EXPECT_EQ(session->SaveFrameAsJpeg(image.data(), file.path()), kOk);
      EXPECT_TRUE(file.Content() == CompressDirectly(rgb, width, height))
          << width << " x " << height;
    }
  }
}

TEST_F(Jpeg, TheQuantisationTablesAreThoseOfQuality95) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  const Bytes image(12, 0x80);
  EXPECT_EQ(session->SaveFrameAsJpeg(image.data(), file.path()), kOk);
  // Start, JFIF of 18 bytes, then the first table: the standard 16 11 12 14 12 10 16
  // 14 in zigzag order at a tenth, rounded.
  EXPECT_EQ(Hex(Slice(file.Content(), 0, 33)),
            Hex("ffd8 ffe0 0010 4a46494600 0101 00 0001 0001 00 00 ffdb 0043 00 02 01 01 01 01 01 "
                "02 01"));
}

TEST_F(Jpeg, NoDeviceIsNeeded) {
  FilesSession session(driver, kImagerMono, 2, 2, 1);
  session->link.handle = nullptr;
  const Bytes image(12, 0x80);
  EXPECT_EQ(session->SaveFrameAsJpeg(image.data(), file.path()), kOk);
  EXPECT_EQ(Hex(Slice(file.Content(), 0, 2)), Hex("ffd8"));
}

TEST_F(Jpeg, SizesAreThoseOfTheBitmapHeader) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  session->bitmap_header.width = 1;
  session->bitmap_header.height = 1;
  const Bytes image = FromHex("102030");
  EXPECT_EQ(session->SaveFrameAsJpeg(image.data(), file.path()), kOk);
  EXPECT_EQ(Hex(file.Content()), Hex(CompressDirectly(FromHex("302010"), 1, 1)));
}

TEST_F(Jpeg, AFileThatCannotBeOpenedPrintsErrorAndIsNoFailure) {
  FilesSession session(driver, kImagerColour, 40, 40, 1);
  const Bytes image = Noise(40 * 40 * 3, 7);
  const std::string nowhere = FilePath("no_such_folder") + "/image.jpg";
  ::testing::internal::CaptureStdout();
  const Status status = session->SaveFrameAsJpeg(image.data(), nowhere.c_str());
  std::fflush(stdout);
  const std::string printed = ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(status, kOk);
  EXPECT_EQ(printed, "Error\n");
}

TEST_F(Jpeg, AnOpenedFilePrintsNothing) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  const Bytes image(12);
  ::testing::internal::CaptureStdout();
  session->SaveFrameAsJpeg(image.data(), file.path());
  std::fflush(stdout);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

// libjpeg ends the process over such images by itself.
TEST_F(Jpeg, ImagesThatLibjpegRefusesDoNotEndTheProcess) {
  const struct {
    std::uint32_t width, height;
  } sizes[] = {{0, 0}, {0, 5}, {5, 0}, {65501, 1}, {1, 70000}};
  for (const auto& size : sizes) {
    FilesSession session(driver, kImagerColour, size.width, size.height, 1);
    const Bytes image(std::size_t{size.width} * size.height * 3 + 1);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(session->SaveFrameAsJpeg(image.data(), file.path()), kOk);
    EXPECT_NE(::testing::internal::GetCapturedStderr(), "") << "libjpeg's own message";
    EXPECT_TRUE(file.Content().empty()) << size.width << " x " << size.height;
  }
}

TEST_F(Jpeg, WithoutWorkingMemoryTheStatusIs9AndNoFileIsMade) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  const Bytes image(12);
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
  EXPECT_EQ(session->SaveFrameAsJpeg(image.data(), file.path()), kOutOfMemory);
  EXPECT_FALSE(file.Exists());
  FilesSession endless(driver, kImagerColour, 0xFFFFFFFF, 0xFFFFFFFF, 1);
  EXPECT_EQ(endless->SaveFrameAsJpeg(image.data(), file.path()), kOutOfMemory);
  EXPECT_FALSE(file.Exists());
}

}  // namespace
}  // namespace ormidex::testing
