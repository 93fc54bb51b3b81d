// What other programs make of the files: libtiff's tools, djpeg and ImageMagick. A
// program that is not installed fails its tests; scripts/setup-debian.sh installs them.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "files/image_files.h"

namespace ormidex::testing {
namespace {

using namespace device;

struct Outcome {
  int code = -1;
  Bytes output;
  std::string Text() const { return {output.begin(), output.end()}; }
};

// Runs a command of the shell. Its messages are part of the output only if it says so.
Outcome RunShell(const std::string& command) {
  Outcome outcome;
  std::FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return outcome;
  std::uint8_t block[4096];
  for (std::size_t n; (n = std::fread(block, 1, sizeof(block), pipe)) != 0;) {
    outcome.output.insert(outcome.output.end(), block, block + n);
  }
  const int status = pclose(pipe);
  outcome.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  EXPECT_NE(outcome.code, 127) << "not installed: " << command;
  return outcome;
}

struct Size {
  std::uint32_t width, height;
};
constexpr Size kSizes[] = {{1, 1}, {3, 1}, {1, 3}, {7, 4}, {33, 17}};

class Readers : public ::testing::Test {
 protected:
  std::string Path() const { return file.path(); }
  ModelGateway driver;
  TemporaryFile file{"reader.img"};
  TemporaryFile other{"reader.out"};
};

// 16-bit samples as 8-bit ones; a reader may round.
void ExpectNearHighBytes(const Bytes& narrow, const Bytes& wide) {
  ASSERT_EQ(narrow.size() * 2, wide.size());
  for (std::size_t i = 0; i < narrow.size(); ++i) {
    ASSERT_NEAR(narrow[i], wide[i * 2 + 1], 1) << "sample " << i;
  }
}

Bytes GreyToRgb(const Bytes& grey, std::size_t bytes) {
  Bytes rgb;
  for (std::size_t i = 0; i < grey.size(); i += bytes) {
    for (int channel = 0; channel < 3; ++channel) {
      rgb.insert(rgb.end(), grey.begin() + static_cast<std::ptrdiff_t>(i),
                 grey.begin() + static_cast<std::ptrdiff_t>(i + bytes));
    }
  }
  return rgb;
}

class TiffReaders : public Readers,
                    public ::testing::WithParamInterface<std::pair<std::uint32_t, std::uint32_t>> {
 protected:
  // Writes a picture of noise and returns its pixels as red-green-blue.
  Bytes Write(const Size& size) {
    const auto [imager, bytes] = GetParam();
    FilesSession session(driver, imager, size.width, size.height, bytes);
    const Bytes frame = Noise(std::size_t{size.width} * size.height * bytes, size.width);
    EXPECT_EQ(session->SaveFrameAsTiff(frame.data(), file.path(), 0, 0, 255), kOk);
    const Bytes content = file.Content();
    const Bytes pixels = Slice(content, 146, content.size() - 146);
    return imager == kImagerMono ? GreyToRgb(pixels, bytes) : pixels;
  }
};

INSTANTIATE_TEST_SUITE_P(Forms, TiffReaders,
                         ::testing::Values(std::pair{kImagerMono, 1u}, std::pair{kImagerMono, 2u},
                                           std::pair{kImagerColour, 1u},
                                           std::pair{kImagerColour, 2u}));

TEST_P(TiffReaders, TiffinfoReadsTheDirectoryWithoutAWarning) {
  for (const Size& size : kSizes) {
    Write(size);
    const Outcome info = RunShell("tiffinfo " + Path() + " 2>&1");
    EXPECT_EQ(info.code, 0);
    EXPECT_NE(info.Text().find("Image Width: " + std::to_string(size.width) +
                               " Image Length: " + std::to_string(size.height)),
              std::string::npos)
        << info.Text();
    EXPECT_EQ(info.Text().find("arning"), std::string::npos) << info.Text();
  }
}

TEST_P(TiffReaders, Tiff2rgbaReadsEveryPixel) {
  for (const Size& size : kSizes) {
    const Bytes expected = Write(size);
    ASSERT_EQ(RunShell("tiff2rgba -c none -n " + Path() + " " + other.path() + " 2>&1").Text(), "");
    const Bytes read =
        RunShell(std::string("convert tiff:") + other.path() + " -depth 8 rgb:-").output;
    if (GetParam().second == 1) {
      EXPECT_EQ(read, expected);
    } else {
      ExpectNearHighBytes(read, expected);
    }
  }
}

TEST_P(TiffReaders, ImageMagickReadsEveryPixel) {
  const bool wide = GetParam().second == 2;
  for (const Size& size : kSizes) {
    const Bytes expected = Write(size);
    const Outcome read = RunShell("convert tiff:" + Path() + " -endian LSB -depth " +
                                  (wide ? "16" : "8") + " rgb:- 2>&1");
    EXPECT_EQ(read.code, 0);
    EXPECT_TRUE(read.output == expected) << size.width << " x " << size.height;
  }
}

// ---- JPEG ----

// A smooth picture, in which the compression changes little.
Bytes Slopes(const Size& size) {
  Bytes image;
  for (std::uint32_t y = 0; y < size.height; ++y) {
    for (std::uint32_t x = 0; x < size.width; ++x) {
      image.push_back(static_cast<std::uint8_t>(40 + 2 * y));
      image.push_back(static_cast<std::uint8_t>(120 + x / 4));
      image.push_back(static_cast<std::uint8_t>(200 - 2 * y));
    }
  }
  return image;
}

void ExpectNearTopDownRgb(const Bytes& read, const Bytes& image, const Size& size) {
  ASSERT_EQ(read.size(), image.size());
  for (std::size_t i = 0; i < read.size(); ++i) {
    const std::size_t row = i / (size.width * 3);
    const std::size_t column = i % (size.width * 3);
    const std::size_t from =
        (size.height - 1 - row) * size.width * 3 + column / 3 * 3 + 2 - column % 3;
    ASSERT_NEAR(read[i], image[from], 8) << "byte " << i << " of " << size.width;
  }
}

TEST_F(Readers, DjpegAndImageMagickReadJpegFilesTopDown) {
  for (const Size& size : kSizes) {
    FilesSession session(driver, kImagerColour, size.width, size.height, 1);
    const Bytes image = Slopes(size);
    ASSERT_EQ(session->SaveFrameAsJpeg(image.data(), file.path()), kOk);
    const Bytes ppm = RunShell("djpeg -ppm " + Path()).output;
    const std::string head =
        "P6\n" + std::to_string(size.width) + " " + std::to_string(size.height) + "\n255\n";
    ASSERT_EQ(std::string(ppm.begin(), ppm.begin() + static_cast<std::ptrdiff_t>(head.size())),
              head);
    ExpectNearTopDownRgb(Slice(ppm, head.size(), ppm.size() - head.size()), image, size);
    ExpectNearTopDownRgb(RunShell("convert jpeg:" + Path() + " -depth 8 rgb:-").output, image,
                         size);
  }
}

TEST_F(Readers, JpegFilesAreBaselineOfQuality95) {
  FilesSession session(driver, kImagerColour, 33, 17, 1);
  const Bytes image = Slopes({33, 17});
  ASSERT_EQ(session->SaveFrameAsJpeg(image.data(), file.path()), kOk);
  EXPECT_EQ(RunShell("identify -format '%m %w %h %Q %[interlace]' jpeg:" + Path()).Text(),
            "JPEG 33 17 95 None");
}

// ---- Bitmaps: readers expect rows that are padded to 4 bytes ----

TEST_F(Readers, BitmapsWhoseRowsNeedNoPaddingAreRead) {
  for (const Size& size : {Size{4, 3}, Size{8, 5}, Size{640, 2}}) {
    FilesSession session(driver, kImagerColour, size.width, size.height, 1);
    Bytes image = Slopes(size);
    ASSERT_EQ(session->SaveFrameAsBitmap(image.data(), file.path()), kOk);
    const Outcome read = RunShell("convert bmp:" + Path() + " -depth 8 rgb:- 2>&1");
    EXPECT_EQ(read.code, 0);
    ASSERT_EQ(read.output.size(), image.size());
    for (std::size_t i = 0; i < image.size(); ++i) {
      const std::size_t row = i / (size.width * 3);
      const std::size_t column = i % (size.width * 3);
      ASSERT_EQ(read.output[i],
                image[(size.height - 1 - row) * size.width * 3 + column / 3 * 3 + 2 - column % 3]);
    }
  }
}

TEST_F(Readers, BitmapsWhoseRowsWouldNeedPaddingAreRefusedByImageMagick) {
  for (const Size& size : {Size{3, 1}, Size{2, 2}, Size{5, 3}}) {
    FilesSession session(driver, kImagerColour, size.width, size.height, 1);
    Bytes image = Slopes(size);
    ASSERT_EQ(session->SaveFrameAsBitmap(image.data(), file.path()), kOk);
    const Outcome read = RunShell("convert bmp:" + Path() + " -depth 8 rgb:- 2>&1");
    EXPECT_NE(read.code, 0);
    EXPECT_NE(read.Text().find("insufficient image data"), std::string::npos) << read.Text();
  }
}

// The rows of a raw frame are top-down, those of a bitmap are read bottom-up.
TEST_F(Readers, GreyBitmapsOf8BitsAreReadUpsideDown) {
  FilesSession session(driver, kImagerMono, 4, 3, 1);
  Bytes frame = FromHex("01020304 11121314 21222324");
  ASSERT_EQ(session->SaveFrameAsMono8(frame.data(), file.path()), kOk);
  EXPECT_EQ(Hex(RunShell("convert bmp:" + Path() + " -depth 8 gray:-").output),
            Hex("21222324 11121314 01020304"));
}

// A reader that does not know the form reads something, but not the samples.
TEST_F(Readers, GreyBitmapsOf16BitsAreNotReadAsGrey) {
  FilesSession session(driver, kImagerMono, 4, 1, 2);
  Bytes frame = FromHex("0000 0040 0080 c0ff");  // 0, a quarter, a half, white
  ASSERT_EQ(session->SaveFrameAsMono16(frame.data(), file.path()), kOk);
  const Outcome read = RunShell("convert bmp:" + Path() + " -depth 8 gray:- 2>&1");
  EXPECT_EQ(read.code, 0);
  EXPECT_NE(Hex(read.output), Hex("004080ff"));
}

}  // namespace
}  // namespace ormidex::testing
