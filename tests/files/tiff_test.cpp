// TIFF files byte by byte.
#include <gtest/gtest.h>

#include "files/image_files.h"
#include "files/tiff.h"

namespace ormidex::testing {
namespace {

using namespace device;

class Tiff : public ::testing::Test {
 protected:
  ~Tiff() override { platform::ClearFaults(); }

  Status Save(FilesSession& session, const Bytes& frame, std::uint32_t option = 255) {
    return session->SaveFrameAsTiff(frame.data(), file.path(), 0, 0, option);
  }

  ModelGateway driver;
  TemporaryFile file{"image.tif"};
};

// The whole file of a camera that delivers raw mosaics (option 255).
TEST_F(Tiff, TwoByTwoColourOf8Bits) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  EXPECT_EQ(Save(session, FromHex("10 20 30 40")), kOk);  // red green / green blue
  EXPECT_EQ(Hex(file.Content()), Hex("49492a00 08000000 0b00"
                                     "fe00 0400 01000000 00000000"
                                     "0001 0400 01000000 02000000"
                                     "0101 0400 01000000 02000000"
                                     "0201 0300 01000000 08000000"
                                     "0301 0300 01000000 01000000"
                                     "0601 0300 01000000 02000000"
                                     "1101 0300 01000000 92000000"
                                     "1501 0300 01000000 03000000"
                                     "1601 0300 01000000 02000000"
                                     "1701 0400 01000000 0c000000"
                                     "2801 0300 01000000 01000000"
                                     "00000000"
                                     "100000 002000  003000 000040"));
}

// An odd width shifts the mosaic of option 255 by one column: green comes first.
TEST_F(Tiff, ThreeByOneColourOf8Bits) {
  FilesSession session(driver, kImagerColour, 3, 1, 1);
  EXPECT_EQ(Save(session, FromHex("10 20 30")), kOk);
  EXPECT_EQ(Hex(file.Content()), Hex("49492a00 08000000 0b00"
                                     "fe00 0400 01000000 00000000"
                                     "0001 0400 01000000 03000000"
                                     "0101 0400 01000000 01000000"
                                     "0201 0300 01000000 08000000"
                                     "0301 0300 01000000 01000000"
                                     "0601 0300 01000000 02000000"
                                     "1101 0300 01000000 92000000"
                                     "1501 0300 01000000 03000000"
                                     "1601 0300 01000000 01000000"
                                     "1701 0400 01000000 09000000"
                                     "2801 0300 01000000 01000000"
                                     "00000000"
                                     "001000 200000 003000"));
}

TEST_F(Tiff, OneByThreeColourOf8Bits) {
  FilesSession session(driver, kImagerColour, 1, 3, 1);
  EXPECT_EQ(Save(session, FromHex("10 20 30")), kOk);
  const Bytes content = file.Content();
  EXPECT_EQ(Hex(Slice(content, 22, 24)),
            Hex("0001 0400 01000000 01000000 0101 0400 01000000 03000000"));
  EXPECT_EQ(Hex(Slice(content, 106, 24)),
            Hex("1601 0300 01000000 03000000 1701 0400 01000000 09000000"));
  EXPECT_EQ(Hex(Slice(content, 146, 9)), Hex("001000 000020 003000"));
  EXPECT_EQ(content.size(), 155u);
}

TEST_F(Tiff, TwoByTwoColourOf16Bits) {
  FilesSession session(driver, kImagerColour, 2, 2, 2);
  EXPECT_EQ(Save(session, FromHex("0110 0220 0330 0440")), kOk);
  EXPECT_EQ(Hex(file.Content()), Hex("49492a00 08000000 0b00"
                                     "fe00 0400 01000000 00000000"
                                     "0001 0400 01000000 02000000"
                                     "0101 0400 01000000 02000000"
                                     "0201 0300 01000000 10000000"
                                     "0301 0300 01000000 01000000"
                                     "0601 0300 01000000 02000000"
                                     "1101 0300 01000000 92000000"
                                     "1501 0300 01000000 03000000"
                                     "1601 0300 01000000 02000000"
                                     "1701 0400 01000000 18000000"
                                     "2801 0300 01000000 01000000"
                                     "00000000"
                                     "011000000000 000002200000  000003300000 000000000440"));
}

TEST_F(Tiff, ThreeByOneAndOneByThreeColourOf16Bits) {
  for (const bool tall : {false, true}) {
    FilesSession session(driver, kImagerColour, tall ? 1 : 3, tall ? 3 : 1, 2);
    EXPECT_EQ(Save(session, FromHex("0110 0220 0330")), kOk);
    const Bytes content = file.Content();
    EXPECT_EQ(Hex(Slice(content, 22, 24)),
              tall ? Hex("0001 0400 01000000 01000000 0101 0400 01000000 03000000")
                   : Hex("0001 0400 01000000 03000000 0101 0400 01000000 01000000"));
    EXPECT_EQ(Hex(Slice(content, 118, 12)), Hex("1701 0400 01000000 12000000"));
    EXPECT_EQ(Hex(Slice(content, 146, 18)), tall ? Hex("000001100000 000000000220 000003300000")
                                                 : Hex("000001100000 022000000000 000003300000"));
    EXPECT_EQ(content.size(), 164u);
  }
}

TEST_F(Tiff, TwoByTwoMonochromeOf8Bits) {
  FilesSession session(driver, kImagerMono, 2, 2, 1);
  EXPECT_EQ(Save(session, FromHex("10 20 30 40")), kOk);
  EXPECT_EQ(Hex(file.Content()), Hex("49492a00 08000000 0b00"
                                     "fe00 0400 01000000 00000000"
                                     "0001 0400 01000000 02000000"
                                     "0101 0400 01000000 02000000"
                                     "0201 0300 01000000 08000000"
                                     "0301 0300 01000000 01000000"
                                     "0601 0300 01000000 01000000"
                                     "1101 0300 01000000 92000000"
                                     "1501 0300 01000000 01000000"
                                     "1601 0300 01000000 02000000"
                                     "1701 0400 01000000 04000000"
                                     "2801 0300 01000000 01000000"
                                     "00000000"
                                     "10203040"));
}

TEST_F(Tiff, TwoByTwoMonochromeOf16BitsKeepsItsBytes) {
  FilesSession session(driver, kImagerMono, 2, 2, 2);
  EXPECT_EQ(Save(session, FromHex("0110 0220 0330 0440")), kOk);
  EXPECT_EQ(Hex(file.Content()), Hex("49492a00 08000000 0b00"
                                     "fe00 0400 01000000 00000000"
                                     "0001 0400 01000000 02000000"
                                     "0101 0400 01000000 02000000"
                                     "0201 0300 01000000 10000000"
                                     "0301 0300 01000000 01000000"
                                     "0601 0300 01000000 01000000"
                                     "1101 0300 01000000 92000000"
                                     "1501 0300 01000000 01000000"
                                     "1601 0300 01000000 02000000"
                                     "1701 0400 01000000 08000000"
                                     "2801 0300 01000000 01000000"
                                     "00000000"
                                     "0110022003300440"));
}

TEST_F(Tiff, ThreeByOneAndOneByThreeMonochrome) {
  for (const std::uint32_t bytes : {1u, 2u}) {
    for (const bool tall : {false, true}) {
      FilesSession session(driver, kImagerMono, tall ? 1 : 3, tall ? 3 : 1, bytes);
      const Bytes frame = Slice(FromHex("010203040506"), 0, 3 * bytes);
      EXPECT_EQ(Save(session, frame), kOk);
      const Bytes content = file.Content();
      EXPECT_EQ(Hex(Slice(content, 118, 12)),
                Hex(bytes == 1 ? "1701 0400 01000000 03000000" : "1701 0400 01000000 06000000"));
      EXPECT_EQ(Slice(content, 146, content.size() - 146), frame);
    }
  }
}

// An imager that was not identified is taken for a monochrome one.
TEST_F(Tiff, AnUnknownImagerIsWrittenAsMonochrome) {
  FilesSession session(driver, kImagerUnknown, 2, 1, 1);
  EXPECT_EQ(Save(session, FromHex("10 20")), kOk);
  EXPECT_EQ(file.Content().size(), 148u);
}

TEST_F(Tiff, SizesAreTheHeaderAndThePixels) {
  const Bytes frame = Noise(640 * 480 * 2, 1);
  FilesSession narrow(driver, kImagerColour, 640, 480, 1);
  EXPECT_EQ(Save(narrow, frame), kOk);
  EXPECT_EQ(file.Content().size(), 146u + 640 * 480 * 3);
  FilesSession wide(driver, kImagerColour, 640, 480, 2);
  EXPECT_EQ(Save(wide, frame), kOk);
  EXPECT_EQ(file.Content().size(), 146u + 640 * 480 * 6);
}

TEST_F(Tiff, RowsOfMoreThan16BitsAreCutInTheirShortField) {
  const files::TiffHeader header = files::MakeTiffHeader(1, 0x12345, {8, 1});
  EXPECT_EQ(ToHex(&header.entries[8], 12), Hex("1601 0300 01000000 45230000"));
  EXPECT_EQ(ToHex(&header.entries[2], 12), Hex("0101 0400 01000000 45230100"));
}

TEST_F(Tiff, TheOptionIsCheckedForEveryImager) {
  for (const std::uint32_t imager : {kImagerColour, kImagerMono}) {
    FilesSession session(driver, imager, 6, 6, 1);
    const Bytes frame(36, 0x40);
    for (std::uint32_t option = 0; option < 300; ++option) {
      const bool accepted = option <= 5 || (option >= 16 && option <= 18) || option == 255;
      EXPECT_EQ(Save(session, frame, option), accepted ? kOk : kOutOfRange) << option;
    }
    EXPECT_EQ(Save(session, frame, 0x80000000u), kOutOfRange);
  }
}

TEST_F(Tiff, ColourIsCorrectedAfterTheReorderingIn8And16Bits) {
  FilesSession narrow(driver, kImagerColour, 2, 2, 1);
  Bytes frame = FromHex("64 64 64 64");
  EXPECT_EQ(narrow->SaveFrameAsTiff(frame.data(), file.path(), 1, 100, 255), kOk);
  // 100 alone in its pixel becomes 200, the others stay 0.
  EXPECT_EQ(Hex(Slice(file.Content(), 146, 12)), Hex("c80000 00c800 00c800 0000c8"));
  FilesSession wide(driver, kImagerColour, 2, 2, 2);
  frame = FromHex("e803 e803 e803 e803");
  EXPECT_EQ(wide->SaveFrameAsTiff(frame.data(), file.path(), 1, 100, 255), kOk);
  // 1000 becomes 2000 = 0x07D0.
  EXPECT_EQ(Hex(Slice(file.Content(), 146, 24)),
            Hex("d00700000000 0000d0070000 0000d0070000 00000000d007"));
}

TEST_F(Tiff, WithoutTheFlagTheAmountIsIgnored) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  const Bytes frame = FromHex("64 64 64 64");
  EXPECT_EQ(session->SaveFrameAsTiff(frame.data(), file.path(), 0, 100, 255), kOk);
  EXPECT_EQ(Hex(Slice(file.Content(), 146, 3)), Hex("640000"));
}

TEST_F(Tiff, ChecksComeInOrder) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  const Bytes frame(4);
  void* handle = session->link.handle;
  session->link.handle = nullptr;
  EXPECT_EQ(session->SaveFrameAsTiff(nullptr, nullptr, 0, 0, 6), kNoCamera);
  session->link.handle = handle;
  EXPECT_EQ(session->SaveFrameAsTiff(nullptr, file.path(), 0, 0, 6), kNullPointer);
  EXPECT_EQ(session->SaveFrameAsTiff(frame.data(), nullptr, 0, 0, 6), kNullPointer);
  EXPECT_EQ(session->SaveFrameAsTiff(frame.data(), file.path(), 0, 0, 6), kOutOfRange);
  const std::string nowhere = FilePath("no_such_folder") + "/image.tif";
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
  EXPECT_EQ(session->SaveFrameAsTiff(frame.data(), nowhere.c_str(), 0, 0, 1), kOutOfMemory);
  EXPECT_EQ(session->SaveFrameAsTiff(frame.data(), nowhere.c_str(), 0, 0, 1), kFileNotOpened);
  EXPECT_FALSE(file.Exists());
}

TEST_F(Tiff, EachBufferIsNeeded) {
  FilesSession colour(driver, kImagerColour, 2, 2, 1);
  for (int granted = 0; granted < 2; ++granted) {
    platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, granted);
    EXPECT_EQ(Save(colour, Bytes(4)), kOutOfMemory) << granted;
  }
  FilesSession mono(driver, kImagerMono, 2, 2, 1);
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
  EXPECT_EQ(Save(mono, Bytes(4)), kOutOfMemory);
  EXPECT_FALSE(file.Exists());
}

// More than one band of rows, the last one not full.
TEST_F(Tiff, LargeImagesAreReorderedAndCorrectedRowByRow) {
  for (const std::uint32_t bytes : {1u, 2u}) {
    FilesSession session(driver, kImagerColour, 300, 301, bytes);
    const std::size_t row = 300 * 3 * bytes;
    const Bytes frame = Noise(300 * 301 * bytes, 5);
    Bytes image(row * 301);
    const auto demosaic = bytes == 2 ? &CameraSession::ConvertColor16BppTo48Bpp
                                     : &CameraSession::ConvertColor8BppTo24Bpp;
    ASSERT_EQ(((*session).*demosaic)(frame.data(), 300, 301, image.data(), 1), kOk);
    ASSERT_EQ(session->ColorCorrectRgb(300, 301, image.data(), 30, bytes - 1), kOk);
    ASSERT_EQ(session->SaveFrameAsTiff(frame.data(), file.path(), 1, 30, 1), kOk);
    const Bytes content = file.Content();
    ASSERT_EQ(content.size(), 146 + image.size());
    for (std::size_t i = 0; i < image.size(); ++i) {
      const std::size_t y = i / row;
      const std::size_t pixel = i % row / (3 * bytes) * 3 * bytes;
      const std::size_t channel = 2 - i % (3 * bytes) / bytes;
      ASSERT_EQ(content[146 + i], image[(300 - y) * row + pixel + channel * bytes + i % bytes])
          << "byte " << i;
    }
  }
}

TEST_F(Tiff, AConversionWithoutMemoryForItsOwnPlaneIs9) {
  FilesSession session(driver, kImagerColour, 6, 6, 1);
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 2);
  EXPECT_EQ(Save(session, Bytes(36), 3), kOutOfMemory);
}

TEST_F(Tiff, AnImageThatCannotBeCountedIs9) {
  FilesSession session(driver, kImagerColour, 0x8000, 0x8001, 2);
  EXPECT_EQ(Save(session, Bytes(4)), kOutOfMemory);
}

}  // namespace
}  // namespace ormidex::testing
