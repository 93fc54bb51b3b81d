// Bitmap files byte by byte.
#include <gtest/gtest.h>

#include "files/bitmap.h"
#include "files/image_files.h"

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define ORMIDEX_COUNTS_MEMORY 1
#include <malloc.h>
#endif

namespace ormidex::testing {
namespace {

using namespace device;

class Bitmap : public ::testing::Test {
 protected:
  ~Bitmap() override { platform::ClearFaults(); }

  ModelGateway driver;
  TemporaryFile file{"image.bmp"};
};

// ---- 24 bits ----

TEST_F(Bitmap, TwoByTwoIn24Bits) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  Bytes image = FromHex("010203 040506 070809 0a0b0c");
  EXPECT_EQ(session->SaveFrameAsBitmap(image.data(), file.path()), kOk);
  EXPECT_EQ(Hex(file.Content()), Hex("424d 42000000 0000 0000 36000000"
                                     "28000000 02000000 02000000 0100 1800 00000000 0c000000"
                                     "00000000 00000000 00000000 00000000"
                                     "010203 040506 070809 0a0b0c"));
}

TEST_F(Bitmap, ThreeByOneIn24BitsHasAnUnpaddedRow) {
  FilesSession session(driver, kImagerColour, 3, 1, 1);
  Bytes image = FromHex("010203 040506 070809");
  EXPECT_EQ(session->SaveFrameAsBitmap(image.data(), file.path()), kOk);
  EXPECT_EQ(Hex(file.Content()), Hex("424d 3f000000 0000 0000 36000000"
                                     "28000000 03000000 01000000 0100 1800 00000000 09000000"
                                     "00000000 00000000 00000000 00000000"
                                     "010203 040506 070809"));
}

TEST_F(Bitmap, OneByThreeIn24BitsHasUnpaddedRows) {
  FilesSession session(driver, kImagerColour, 1, 3, 1);
  Bytes image = FromHex("010203 040506 070809");
  EXPECT_EQ(session->SaveFrameAsBitmap(image.data(), file.path()), kOk);
  EXPECT_EQ(Hex(file.Content()), Hex("424d 3f000000 0000 0000 36000000"
                                     "28000000 01000000 03000000 0100 1800 00000000 09000000"
                                     "00000000 00000000 00000000 00000000"
                                     "010203 040506 070809"));
}

TEST_F(Bitmap, TheSessionsHeaderIsWrittenAsItStands) {
  FilesSession session(driver, kImagerColour, 1, 1, 1);
  session->bitmap_header.horizontal_resolution = 0x11223344;
  session->bitmap_header.vertical_resolution = 0x55667788;
  Bytes image = FromHex("010203");
  EXPECT_EQ(session->SaveFrameAsBitmap(image.data(), file.path()), kOk);
  EXPECT_EQ(Hex(Slice(file.Content(), 38, 8)), Hex("44332211 88776655"));
}

TEST_F(Bitmap, AnExistingFileIsReplaced) {
  FilesSession session(driver, kImagerColour, 10, 10, 1);
  Bytes image(300);
  EXPECT_EQ(session->SaveFrameAsBitmap(image.data(), file.path()), kOk);
  session->geometry.width = session->geometry.height = 1;
  session->RecomputeFrameSizes();
  EXPECT_EQ(session->SaveFrameAsBitmap(image.data(), file.path()), kOk);
  EXPECT_EQ(file.Content().size(), 57u);
}

// ---- 8-bit grey ----

void ExpectGreyRamp(const Bytes& table, std::size_t entries) {
  for (std::size_t i = 0; i < entries; ++i) {
    const auto grey = static_cast<std::uint8_t>(i % 256);
    ASSERT_EQ(Slice(table, i * 4, 4), (Bytes{grey, grey, grey, 0})) << "entry " << i;
  }
}

TEST_F(Bitmap, TwoByTwoIn8BitGrey) {
  FilesSession session(driver, kImagerMono, 2, 2, 1);
  Bytes frame = FromHex("a1 a2 a3 a4");
  EXPECT_EQ(session->SaveFrameAsMono8(frame.data(), file.path()), kOk);
  const Bytes content = file.Content();
  ASSERT_EQ(content.size(), 1082u);
  // The image size is that of 24 bits: 2 x 2 x 3 = 12.
  EXPECT_EQ(Hex(Slice(content, 0, 54)), Hex("424d 3a040000 0000 0000 36040000"
                                            "28000000 02000000 02000000 0100 0800 00000000 0c000000"
                                            "00000000 00000000 00000000 00000000"));
  ExpectGreyRamp(Slice(content, 54, 1024), 256);
  EXPECT_EQ(Hex(Slice(content, 1078, 4)), Hex("a1a2a3a4"));
}

TEST_F(Bitmap, ThreeByOneAndOneByThreeIn8BitGreyAreUnpadded) {
  const struct {
    std::uint32_t width, height;
    const char* size_fields;
  } cases[] = {{3, 1, "03000000 01000000"}, {1, 3, "01000000 03000000"}};
  for (const auto& item : cases) {
    FilesSession session(driver, kImagerMono, item.width, item.height, 1);
    Bytes frame = FromHex("a1 a2 a3");
    EXPECT_EQ(session->SaveFrameAsMono8(frame.data(), file.path()), kOk);
    const Bytes content = file.Content();
    ASSERT_EQ(content.size(), 1081u);
    EXPECT_EQ(Hex(Slice(content, 0, 14)), Hex("424d 39040000 0000 0000 36040000"));
    EXPECT_EQ(Hex(Slice(content, 18, 8)), Hex(item.size_fields));
    EXPECT_EQ(Hex(Slice(content, 34, 4)), Hex("09000000"));
    EXPECT_EQ(Hex(Slice(content, 1078, 3)), Hex("a1a2a3"));
  }
}

TEST_F(Bitmap, ImageSizeFieldsOfTheGreyFilesAreThatOf24Bits) {
  FilesSession session(driver, kImagerMono, 640, 480, 2);
  Bytes frame(640 * 480 * 2);
  ASSERT_EQ(session->SaveFrameAsMono8(frame.data(), file.path()), kOk);
  EXPECT_EQ(Hex(Slice(file.Content(), 34, 4)), Hex("00100e00"));  // 921600
  ASSERT_EQ(session->SaveFrameAsMono16(frame.data(), file.path()), kOk);
  EXPECT_EQ(Hex(Slice(file.Content(), 34, 4)), Hex("00100e00"));
}

// The raw frame size counts, whatever its samples are.
TEST_F(Bitmap, The8BitFormWritesA16BitFrameWhole) {
  FilesSession session(driver, kImagerMono, 2, 1, 2);
  Bytes frame = FromHex("a1 a2 a3 a4");
  EXPECT_EQ(session->SaveFrameAsMono8(frame.data(), file.path()), kOk);
  const Bytes content = file.Content();
  EXPECT_EQ(Hex(Slice(content, 2, 4)), Hex("3a040000"));
  EXPECT_EQ(Hex(Slice(content, 1078, 4)), Hex("a1a2a3a4"));
}

// ---- 16-bit grey ----

TEST_F(Bitmap, TwoByTwoIn16BitGrey) {
  FilesSession session(driver, kImagerMono, 2, 2, 2);
  Bytes frame = FromHex("c0ff 4000 3f00 0080");
  const Bytes before = frame;
  EXPECT_EQ(session->SaveFrameAsMono16(frame.data(), file.path()), kOk);
  EXPECT_EQ(frame, before);
  const Bytes content = file.Content();
  ASSERT_EQ(content.size(), 4158u);
  EXPECT_EQ(Hex(Slice(content, 0, 54)), Hex("424d 3e100000 0000 0000 36100000"
                                            "28000000 02000000 02000000 0100 1000 00000000 0c000000"
                                            "00000000 00000000 00040000 00000000"));
  ExpectGreyRamp(Slice(content, 54, 4096), 1024);
  // 0xFFC0 is 1023, 0x0040 is 1, 0x003F is 0, 0x8000 is 512.
  EXPECT_EQ(Hex(Slice(content, 4150, 8)), Hex("ff03 0100 0000 0002"));
}

TEST_F(Bitmap, ThreeByOneAndOneByThreeIn16BitGrey) {
  const struct {
    std::uint32_t width, height;
    const char* size_fields;
  } cases[] = {{3, 1, "03000000 01000000"}, {1, 3, "01000000 03000000"}};
  for (const auto& item : cases) {
    FilesSession session(driver, kImagerMono, item.width, item.height, 2);
    Bytes frame = FromHex("ffff 8001 0000");
    EXPECT_EQ(session->SaveFrameAsMono16(frame.data(), file.path()), kOk);
    const Bytes content = file.Content();
    ASSERT_EQ(content.size(), 4156u);
    EXPECT_EQ(Hex(Slice(content, 0, 14)), Hex("424d 3c100000 0000 0000 36100000"));
    EXPECT_EQ(Hex(Slice(content, 18, 8)), Hex(item.size_fields));
    EXPECT_EQ(Hex(Slice(content, 34, 4)), Hex("09000000"));
    EXPECT_EQ(Hex(Slice(content, 4150, 6)), Hex("ff03 0600 0000"));
  }
}

TEST_F(Bitmap, EverySampleMovesItsUpperTenBitsDown) {
  Bytes samples(65536 * 2);
  for (std::uint32_t i = 0; i < 65536; ++i) {
    samples[i * 2] = static_cast<std::uint8_t>(i);
    samples[i * 2 + 1] = static_cast<std::uint8_t>(i >> 8);
  }
  Bytes moved(samples.size());
  files::MoveTenBitsDown(samples.data(), samples.size(), moved.data());
  for (std::uint32_t i = 0; i < 65536; ++i) {
    ASSERT_EQ(moved[i * 2] + 256u * moved[i * 2 + 1], i / 64) << i;
  }
}

// Larger than what is converted at a time.
TEST_F(Bitmap, LargeFramesAreConvertedWhole) {
  FilesSession session(driver, kImagerMono, 331, 211, 2);
  Bytes frame = Noise(331 * 211 * 2, 9);
  EXPECT_EQ(session->SaveFrameAsMono16(frame.data(), file.path()), kOk);
  const Bytes content = file.Content();
  ASSERT_EQ(content.size(), 4150 + frame.size());
  for (std::size_t i = 0; i < frame.size(); i += 2) {
    ASSERT_EQ(content[4150 + i] + 256u * content[4150 + i + 1],
              (frame[i] + 256u * frame[i + 1]) / 64)
        << "byte " << i;
  }
}

TEST_F(Bitmap, AnOddNumberOfBytesIsNotReadOrWrittenPast) {
  // An 8-bit camera of 3 x 1 in the 16-bit form: exactly three bytes each.
  const Bytes samples = FromHex("c0 ff ff");
  Bytes moved = FromHex("ee ee ee ee");
  files::MoveTenBitsDown(samples.data(), 3, moved.data());
  EXPECT_EQ(Hex(moved), Hex("ff03 03ee"));
}

// ---- Statuses ----

struct Writer {
  const char* name;
  Status (*save)(CameraSession& session, void* image, const char* path);
};

class EveryBitmapWriter : public Bitmap, public ::testing::WithParamInterface<Writer> {};

INSTANTIATE_TEST_SUITE_P(
    All, EveryBitmapWriter,
    ::testing::Values(Writer{"Bitmap", [](CameraSession& s, void* i,
                                          const char* p) { return s.SaveFrameAsBitmap(i, p); }},
                      Writer{"Mono8", [](CameraSession& s, void* i,
                                         const char* p) { return s.SaveFrameAsMono8(i, p); }},
                      Writer{"Mono16", [](CameraSession& s, void* i,
                                          const char* p) { return s.SaveFrameAsMono16(i, p); }}),
    [](const auto& name_of) { return name_of.param.name; });

TEST_P(EveryBitmapWriter, ChecksTheDeviceThenTheArguments) {
  FilesSession session(driver, kImagerMono, 2, 2, 2);
  Bytes image(12);
  void* handle = session->link.handle;
  session->link.handle = nullptr;
  EXPECT_EQ(GetParam().save(*session, nullptr, nullptr), kNoCamera);
  EXPECT_EQ(GetParam().save(*session, image.data(), file.path()), kNoCamera);
  session->link.handle = handle;
  EXPECT_EQ(GetParam().save(*session, nullptr, file.path()), kNullPointer);
  EXPECT_EQ(GetParam().save(*session, image.data(), nullptr), kNullPointer);
  EXPECT_FALSE(file.Exists());
}

TEST_P(EveryBitmapWriter, APathThatCannotBeCreatedIs6AndLeavesNoFile) {
  FilesSession session(driver, kImagerMono, 2, 2, 2);
  Bytes image(12);
  const std::string path = FilePath("no_such_folder") + "/image.bmp";
  EXPECT_EQ(GetParam().save(*session, image.data(), path.c_str()), kFileNotOpened);
  EXPECT_EQ(std::fopen(path.c_str(), "rb"), nullptr);
}

TEST_F(Bitmap, WithoutMemoryForItsTableTheGreyFormsAreSilent) {
  FilesSession session(driver, kImagerMono, 2, 2, 2);
  Bytes frame(8);
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
  EXPECT_EQ(session->SaveFrameAsMono8(frame.data(), file.path()), kOk);
  EXPECT_FALSE(file.Exists());
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 1);
  EXPECT_EQ(session->SaveFrameAsMono16(frame.data(), file.path()), kOk);
  EXPECT_FALSE(file.Exists());
}

TEST_F(Bitmap, WithoutMemoryForTheConvertedFrameTheChecksStillDecide) {
  FilesSession session(driver, kImagerMono, 2, 2, 2);
  Bytes frame(8);
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
  EXPECT_EQ(session->SaveFrameAsMono16(nullptr, file.path()), kNullPointer);
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
  EXPECT_EQ(session->SaveFrameAsMono16(frame.data(), file.path()), kOutOfMemory);
  EXPECT_FALSE(file.Exists());
}

#ifdef ORMIDEX_COUNTS_MEMORY

std::size_t MemoryInUse() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

// Memory that 100 calls have left behind, for each of them.
template <typename Call>
std::size_t KeptByEach(const Call& call) {
  call();
  const std::size_t before = MemoryInUse();
  for (int i = 0; i < 100; ++i) call();
  return (MemoryInUse() - before) / 100;
}

TEST_F(Bitmap, MemoryKeptOnFailingPathsIsExactlyThatWhichIsMeantToBe) {
  FilesSession session(driver, kImagerMono, 100, 100, 2);
  Bytes frame(20000);
  const std::string nowhere = FilePath("no_such_folder") + "/image.bmp";
  const std::size_t mono8 =
      KeptByEach([&] { session->SaveFrameAsMono8(frame.data(), nowhere.c_str()); });
  EXPECT_GE(mono8, 1064u);
  EXPECT_LE(mono8, 1064u + 64u);
  const std::size_t mono16_null =
      KeptByEach([&] { session->SaveFrameAsMono16(nullptr, file.path()); });
  EXPECT_GE(mono16_null, 20000u);
  EXPECT_LE(mono16_null, 20000u + 64u);
  const std::size_t mono16 =
      KeptByEach([&] { session->SaveFrameAsMono16(frame.data(), nowhere.c_str()); });
  EXPECT_LE(mono16, 64u);
  const std::size_t saved = KeptByEach([&] {
    session->SaveFrameAsMono8(frame.data(), file.path());
    session->SaveFrameAsMono16(frame.data(), file.path());
  });
  EXPECT_LE(saved, 64u);
}

#endif  // ORMIDEX_COUNTS_MEMORY

}  // namespace
}  // namespace ormidex::testing
