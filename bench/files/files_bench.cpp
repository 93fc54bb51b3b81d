// The file writers against the least that could be done for the same file.
//
// JPEG is compared with libjpeg's bare loop over rows that are in its order already;
// a colour TIFF with its demosaicing and one fwrite; all others with one fwrite of the
// same bytes. Writer and reference take turns, and the medians are compared, so that
// what else the machine does meets both. Files go to memory (/dev/shm) if there is
// such a place. usage: files_bench [rounds]
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>
// After cstdio, whose types it uses.
#include <jpeglib.h>

#include "convert/convert.h"
#include "platform/timer.h"
#include "support/model_gateway.h"
#include "support/test_session.h"

namespace {

using ormidex::device::CameraSession;
using ormidex::testing::ModelGateway;
using ormidex::testing::TestSession;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kWidth = 1280;
constexpr std::uint32_t kHeight = 1024;
constexpr double kJpegFloor = 0.95;
constexpr double kPlainFloor = 0.80;

std::string Folder() {
  std::FILE* probe = std::fopen("/dev/shm/ormidex_bench", "wb");
  if (probe == nullptr) return "./";
  std::fclose(probe);
  std::remove("/dev/shm/ormidex_bench");
  return "/dev/shm/";
}

const std::string folder = Folder();
const std::string written = folder + "ormidex_bench_writer";
const std::string reference = folder + "ormidex_bench_reference";

double Seconds(const std::function<void()>& work) {
  const std::uint64_t begin = ormidex::platform::MonotonicMicroseconds();
  work();
  return static_cast<double>(ormidex::platform::MonotonicMicroseconds() - begin) * 1e-6;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

struct Contest {
  const char* name;
  double floor;
  std::function<void()> writer;
  std::function<void()> reference;
};

// The ratio is that of the speeds: 1 when the writer adds nothing to the reference.
bool Run(const Contest& contest, int rounds) {
  std::vector<double> writer;
  std::vector<double> least;
  contest.writer();
  contest.reference();
  for (int i = 0; i < rounds; ++i) {
    writer.push_back(Seconds(contest.writer));
    least.push_back(Seconds(contest.reference));
  }
  const double ratio = Median(least) / Median(writer);
  const bool reached = ratio >= contest.floor;
  std::printf("%-22s %8.3f ms  reference %8.3f ms  ratio %.3f  floor %.2f  %s\n", contest.name,
              Median(writer) * 1e3, Median(least) * 1e3, ratio, contest.floor,
              reached ? "reached" : "MISSED");
  return reached;
}

// Slopes, edges and some noise, as a camera sees them.
Bytes Scene(std::size_t bytes, std::size_t row_bytes) {
  Bytes scene(bytes);
  std::uint32_t noise = 1;
  for (std::size_t i = 0; i < bytes; ++i) {
    noise = noise * 1664525u + 1013904223u;
    const std::size_t x = i % row_bytes;
    const std::size_t y = i / row_bytes;
    const std::size_t edge = (x / 96 + y / 64) % 2 * 60;
    scene[i] = static_cast<std::uint8_t>(40 + x * 60 / row_bytes + y * 60 / kHeight + edge +
                                         (noise >> 29));
  }
  return scene;
}

void WriteAtOnce(const Bytes& bytes) {
  std::FILE* file = std::fopen(reference.c_str(), "wb");
  if (file == nullptr || std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) {
    std::perror(reference.c_str());
    std::exit(1);
  }
  std::fclose(file);
}

void CompressBarely(const Bytes& rgb) {
  jpeg_compress_struct compressor;
  jpeg_error_mgr errors;
  compressor.err = jpeg_std_error(&errors);
  jpeg_create_compress(&compressor);
  std::FILE* file = std::fopen(reference.c_str(), "wb");
  jpeg_stdio_dest(&compressor, file);
  compressor.image_width = kWidth;
  compressor.image_height = kHeight;
  compressor.input_components = 3;
  compressor.in_color_space = JCS_RGB;
  jpeg_set_defaults(&compressor);
  jpeg_set_quality(&compressor, 95, TRUE);
  jpeg_start_compress(&compressor, TRUE);
  while (compressor.next_scanline < compressor.image_height) {
    JSAMPROW row =
        const_cast<JSAMPROW>(rgb.data()) + std::size_t{compressor.next_scanline} * kWidth * 3;
    jpeg_write_scanlines(&compressor, &row, 1);
  }
  jpeg_finish_compress(&compressor);
  jpeg_destroy_compress(&compressor);
  std::fclose(file);
}

// The same image in libjpeg's order.
Bytes TopDownRgb(const Bytes& image) {
  Bytes rgb(image.size());
  for (std::size_t i = 0; i < image.size(); ++i) {
    const std::size_t row = i / (kWidth * 3);
    const std::size_t column = i % (kWidth * 3);
    rgb[(kHeight - 1 - row) * kWidth * 3 + column - column % 3 + 2 - column % 3] = image[i];
  }
  return rgb;
}

class Bench {
 public:
  Bench() : session_(driver_) {
    session_->bitmap_header.header_bytes = 40;
    session_->bitmap_header.planes = 1;
    session_->bitmap_header.bits_per_pixel = 24;
  }

  bool RunAll(int rounds) {
    bool reached = RunJpegAndBitmap(rounds);
    for (const std::uint32_t bytes : {1u, 2u}) reached = RunRaw(bytes, rounds) && reached;
    return reached;
  }

 private:
  void Use(std::uint32_t imager, std::uint32_t bytes_per_pixel) {
    session_->identity.imager_type = imager;
    session_->geometry.width = kWidth;
    session_->geometry.height = kHeight;
    session_->geometry.bytes_per_pixel = bytes_per_pixel;
    session_->RecomputeFrameSizes();
  }

  bool RunJpegAndBitmap(int rounds) {
    Use(ormidex::device::kImagerColour, 1);
    Bytes image = Scene(kPixels * 3, kWidth * 3);
    const Bytes rgb = TopDownRgb(image);
    const Bytes bitmap(kPixels * 3 + 54);
    const bool jpeg =
        Run({"JPEG", kJpegFloor, [&] { session_->SaveFrameAsJpeg(image.data(), written.c_str()); },
             [&] { CompressBarely(rgb); }},
            rounds);
    const bool plain = Run({"bitmap 24", kPlainFloor,
                            [&] { session_->SaveFrameAsBitmap(image.data(), written.c_str()); },
                            [&] { WriteAtOnce(bitmap); }},
                           rounds);
    return jpeg && plain;
  }

  bool RunRaw(std::uint32_t bytes, int rounds) {
    const bool wide = bytes == 2;
    Bytes frame = Scene(kPixels * bytes, kWidth * bytes);
    Use(ormidex::device::kImagerMono, bytes);
    const Bytes grey(frame.size() + (wide ? 4150 : 1078));
    const Bytes tiff(frame.size() + 146);
    const Contest bitmap = {wide ? "bitmap grey 16" : "bitmap grey 8", kPlainFloor,
                            [&] {
                              wide ? session_->SaveFrameAsMono16(frame.data(), written.c_str())
                                   : session_->SaveFrameAsMono8(frame.data(), written.c_str());
                            },
                            [&] { WriteAtOnce(grey); }};
    const Contest mono = {
        wide ? "TIFF grey 16" : "TIFF grey 8", kPlainFloor,
        [&] { session_->SaveFrameAsTiff(frame.data(), written.c_str(), 0, 0, 1); },
        [&] { WriteAtOnce(tiff); }};
    bool reached = Run(bitmap, rounds);
    reached = Run(mono, rounds) && reached;

    Use(ormidex::device::kImagerColour, bytes);
    Bytes file(kPixels * 3 * bytes + 146);
    const Contest colour = {
        wide ? "TIFF colour 16" : "TIFF colour 8", kPlainFloor,
        [&] { session_->SaveFrameAsTiff(frame.data(), written.c_str(), 0, 0, 1); },
        [&] {
          const auto demosaic =
              wide ? ormidex::convert::DemosaicTo48From16 : ormidex::convert::DemosaicTo24From8;
          demosaic(frame.data(), kWidth, kHeight, file.data(), 1, 0);
          WriteAtOnce(file);
        }};
    return Run(colour, rounds) && reached;
  }

  static constexpr std::size_t kPixels = std::size_t{kWidth} * kHeight;
  ModelGateway driver_;
  TestSession session_;
};

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::max(std::atoi(argv[1]), 1) : 61;
  std::printf("%u x %u, %d rounds, files in %s\n", kWidth, kHeight, rounds, folder.c_str());
  Bench bench;
  const bool reached = bench.RunAll(rounds);
  std::remove(written.c_str());
  std::remove(reference.c_str());
  return reached ? 0 : 1;
}
