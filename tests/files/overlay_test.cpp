// Overlay callbacks: installing them, and what the writers hand to them.
#include <gtest/gtest.h>

#include <atomic>

#include "files/image_files.h"

namespace ormidex::testing {
namespace {

using namespace device;

struct Seen {
  int calls = 0;
  void* handle = nullptr;
  void* image = nullptr;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t format = 0;
  Bytes first_bytes;
};
Seen seen;

std::uint32_t ORMIDEX_CALLBACK LookAndMark(void* handle, void* image, std::uint32_t width,
                                           std::uint32_t height, std::uint32_t format) {
  auto* bytes = static_cast<std::uint8_t*>(image);
  seen = {seen.calls + 1, handle, image, width, height, format, Bytes(bytes, bytes + 6)};
  bytes[0] = 0xEE;
  return 1;  // ignored
}

std::uint32_t ORMIDEX_CALLBACK OtherCallback(void*, void*, std::uint32_t, std::uint32_t,
                                             std::uint32_t) {
  return 0;
}

class Overlay : public ::testing::Test {
 protected:
  Overlay() { seen = {}; }
  ModelGateway driver;
  TemporaryFile file{"overlay.img"};
};

TEST_F(Overlay, TheFlagsSayWhichCallbackIsReplaced) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  EXPECT_EQ(session->SetOverlayCallBack(1, 0, LookAndMark), kOk);
  EXPECT_EQ(session->overlay.preview, LookAndMark);
  EXPECT_EQ(session->overlay.saving, nullptr);
  EXPECT_EQ(session->SetOverlayCallBack(0, 7, OtherCallback), kOk);
  EXPECT_EQ(session->overlay.preview, LookAndMark);
  EXPECT_EQ(session->overlay.saving, OtherCallback);
  EXPECT_EQ(session->SetOverlayCallBack(1, 1, nullptr), kOk);
  EXPECT_EQ(session->overlay.preview, nullptr);
  EXPECT_EQ(session->overlay.saving, nullptr);
}

TEST_F(Overlay, WithBothFlagsZeroItIs7AndChangesNothing) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  session->SetOverlayCallBack(1, 1, LookAndMark);
  EXPECT_EQ(session->SetOverlayCallBack(0, 0, OtherCallback), kOutOfRange);
  EXPECT_EQ(session->overlay.preview, LookAndMark);
  EXPECT_EQ(session->overlay.saving, LookAndMark);
}

TEST_F(Overlay, WithoutADeviceItIs1) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  session->link.handle = nullptr;
  EXPECT_EQ(session->SetOverlayCallBack(0, 0, LookAndMark), kNoCamera);
}

TEST_F(Overlay, The24BitWriterTellsFormat3AndWritesWhatWasDrawn) {
  FilesSession session(driver, kImagerColour, 2, 1, 1);
  session->SetOverlayCallBack(0, 1, LookAndMark);
  Bytes image = FromHex("010203 040506");
  EXPECT_EQ(session->SaveFrameAsBitmap(image.data(), file.path()), kOk);
  EXPECT_EQ(seen.calls, 1);
  EXPECT_EQ(seen.handle, &*session);
  EXPECT_EQ(seen.image, image.data());
  EXPECT_EQ(seen.width, 2u);
  EXPECT_EQ(seen.height, 1u);
  EXPECT_EQ(seen.format, 3u);
  EXPECT_EQ(Hex(Slice(file.Content(), 54, 6)), Hex("ee0203 040506"));
}

TEST_F(Overlay, TheMono8WriterTellsFormat1) {
  FilesSession session(driver, kImagerMono, 3, 2, 1);
  session->SetOverlayCallBack(0, 1, LookAndMark);
  Bytes frame = FromHex("010203 040506");
  EXPECT_EQ(session->SaveFrameAsMono8(frame.data(), file.path()), kOk);
  EXPECT_EQ(seen.format, 1u);
  EXPECT_EQ(seen.image, frame.data());
  EXPECT_EQ(Hex(Slice(file.Content(), 1078, 6)), Hex("ee0203 040506"));
}

TEST_F(Overlay, TheMono16WriterTellsFormat3AndTheFileIsConvertedBefore) {
  FilesSession session(driver, kImagerMono, 3, 1, 2);
  session->SetOverlayCallBack(0, 1, LookAndMark);
  Bytes frame = FromHex("4000 8000 c000");
  EXPECT_EQ(session->SaveFrameAsMono16(frame.data(), file.path()), kOk);
  EXPECT_EQ(seen.format, 3u);
  EXPECT_EQ(seen.image, frame.data());
  EXPECT_EQ(Hex(seen.first_bytes), Hex("4000 8000 c000"));
  EXPECT_EQ(frame[0], 0xEE);
  EXPECT_EQ(Hex(Slice(file.Content(), 4150, 6)), Hex("0100 0200 0300"));
}

TEST_F(Overlay, TheTiffWriterShowsTheBottomUpBlueFirstImage) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  session->SetOverlayCallBack(0, 1, LookAndMark);
  const Bytes frame = FromHex("10 20 30 40");  // red green / green blue
  EXPECT_EQ(session->SaveFrameAsTiff(frame.data(), file.path(), 0, 0, 255), kOk);
  EXPECT_EQ(seen.format, 3u);
  EXPECT_EQ(Hex(seen.first_bytes), Hex("003000 400000"));
  // The marked byte is the blue of the bottom left pixel.
  EXPECT_EQ(Hex(Slice(file.Content(), 146, 12)), Hex("100000 002000 0030ee 000040"));
}

TEST_F(Overlay, TheTiffWriterTellsFormat4ForWideColour) {
  FilesSession session(driver, kImagerColour, 2, 2, 2);
  session->SetOverlayCallBack(0, 1, LookAndMark);
  const Bytes frame = FromHex("0110 0220 0330 0440");
  EXPECT_EQ(session->SaveFrameAsTiff(frame.data(), file.path(), 0, 0, 255), kOk);
  EXPECT_EQ(seen.format, 4u);
  EXPECT_EQ(Hex(seen.first_bytes), Hex("0000 0330 0000"));
}

TEST_F(Overlay, TheTiffWriterTellsTheBytesPerPixelOfMonochromeFramesAndCopiesThem) {
  for (const std::uint32_t bytes : {1u, 2u}) {
    FilesSession session(driver, kImagerMono, 6, 1, bytes);
    session->SetOverlayCallBack(0, 1, LookAndMark);
    const Bytes frame(6 * bytes, 0x11);
    EXPECT_EQ(session->SaveFrameAsTiff(frame.data(), file.path(), 0, 0, 0), kOk);
    EXPECT_EQ(seen.format, bytes);
    EXPECT_NE(seen.image, frame.data());
    EXPECT_EQ(frame, Bytes(6 * bytes, 0x11));
    EXPECT_EQ(Slice(file.Content(), 146, 1), Bytes{0xEE});
  }
}

TEST_F(Overlay, TheJpegWriterCallsNone) {
  FilesSession session(driver, kImagerColour, 2, 1, 1);
  session->SetOverlayCallBack(1, 1, LookAndMark);
  const Bytes image(6);
  EXPECT_EQ(session->SaveFrameAsJpeg(image.data(), file.path()), kOk);
  EXPECT_EQ(seen.calls, 0);
}

TEST_F(Overlay, ThePreviewCallbackIsNotCalledForFiles) {
  FilesSession session(driver, kImagerColour, 2, 1, 1);
  session->SetOverlayCallBack(1, 0, LookAndMark);
  Bytes image(6);
  EXPECT_EQ(session->SaveFrameAsBitmap(image.data(), file.path()), kOk);
  EXPECT_EQ(seen.calls, 0);
}

TEST_F(Overlay, ItIsCalledEvenWhenTheFileThenCannotBeOpened) {
  FilesSession session(driver, kImagerColour, 2, 1, 1);
  session->SetOverlayCallBack(0, 1, LookAndMark);
  Bytes image(6);
  const std::string path = FilePath("no_such_folder") + "/image.bmp";
  EXPECT_EQ(session->SaveFrameAsBitmap(image.data(), path.c_str()), kFileNotOpened);
  EXPECT_EQ(seen.calls, 1);
}

std::atomic<int> inside{0};
std::atomic<int> overlaps{0};

std::uint32_t ORMIDEX_CALLBACK CountOverlaps(void*, void*, std::uint32_t, std::uint32_t,
                                             std::uint32_t) {
  if (inside.fetch_add(1) != 0) overlaps.fetch_add(1);
  platform::SleepMilliseconds(1);
  inside.fetch_sub(1);
  return 0;
}

struct SavingThread {
  CameraSession* session;
  int number;
  std::atomic<int>* left;
};

void SaveRepeatedly(void* argument) {
  auto& thread = *static_cast<SavingThread*>(argument);
  const TemporaryFile own("thread" + std::to_string(thread.number));
  Bytes image(6);
  for (int i = 0; i < 20; ++i) {
    thread.session->SaveFrameAsBitmap(image.data(), own.path());
    thread.session->SetOverlayCallBack(0, 1, CountOverlaps);
  }
  thread.left->fetch_sub(1);
}

TEST_F(Overlay, CallsOfSeveralThreadsFollowOneAnother) {
  FilesSession session(driver, kImagerColour, 2, 1, 1);
  session->SetOverlayCallBack(0, 1, CountOverlaps);
  std::atomic<int> left{4};
  SavingThread threads[4];
  for (int i = 0; i < 4; ++i) {
    threads[i] = {&*session, i, &left};
    ASSERT_TRUE(platform::StartThread(SaveRepeatedly, &threads[i]));
  }
  while (left.load() != 0) platform::SleepMilliseconds(1);
  EXPECT_EQ(overlaps.load(), 0);
}

}  // namespace
}  // namespace ormidex::testing
