// Raw frames from files into images, without a camera: a simulated one of the same
// kind lends its conversions.
#include <cstdio>
#include <memory>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"
#include "output.h"

namespace ormidex_tool {

namespace {

struct ConvertOptions {
  std::string input;
  std::string output;
  std::string size;
  OrmidexUInt32 bits = 8;
  OrmidexUInt32 phase = 0;
  bool mono = false;
  OrmidexUInt32 algorithm = ORMIDEX_BILINEAR;
  bool force = false;
};

// The mosaic phase of a first-generation camera is read when it is opened; the
// second generation always has phase 0.
std::string Description(const ConvertOptions& options) {
  return "pace=fast,generation=1,phase=" + std::to_string(options.phase) +
         (options.mono ? ",imager=mono" : "");
}

Geometry ParseSize(const ConvertOptions& options) {
  Geometry geometry;
  char rest = '\0';
  if (std::sscanf(options.size.c_str(), "%ux%u%c", &geometry.width, &geometry.height, &rest) != 2 ||
      geometry.width == 0 || geometry.height == 0 || geometry.width > 65535 ||
      geometry.height > 65535) {
    FailUsage("'" + options.size + "' is no size: give WIDTHxHEIGHT, as 1280x1024");
  }
  geometry.bytes_per_pixel = options.bits / 8;
  return geometry;
}

std::vector<unsigned char> ReadRaw(const std::string& path, const Geometry& geometry) {
  std::vector<unsigned char> frame(geometry.FrameBytes() + 1);
  std::FILE* file = path == "-" ? stdin : std::fopen(path.c_str(), "rb");
  if (file == nullptr) FailUsage("'" + path + "' cannot be read");
  const std::size_t bytes = std::fread(frame.data(), 1, frame.size(), file);
  if (file != stdin) std::fclose(file);
  if (bytes != geometry.FrameBytes()) {
    FailUsage("'" + path + "' does not hold one frame of " + std::to_string(geometry.FrameBytes()) +
              " bytes; check --size and --bits");
  }
  frame.resize(bytes);
  return frame;
}

// The library's file writers take the size from the camera, which has a smallest
// step and a largest size; a pixmap has any.
void MatchGeometry(const Camera& camera, const Geometry& geometry, Format format) {
  const std::string size = std::to_string(geometry.width) + "x" + std::to_string(geometry.height);
  if (geometry.bytes_per_pixel == 2) {
    const OrmidexStatus status = OrmidexSetDataTransferSize(camera.handle(), 16);
    if (status != ORMIDEX_CLOCKING_CHANGED) Check(status, "setting 16 bits");
  }
  if (format == Format::kPpm) return;
  const bool set =
      OrmidexSetSubWindow(camera.handle(), 1, 0, 0, geometry.width, geometry.height) == ORMIDEX_OK;
  const Geometry reached = camera.ReadGeometry();
  if (!set || reached.width != geometry.width || reached.height != geometry.height) {
    FailUsage("images of " + size +
              " are written as *.ppm only: the other formats take sizes in "
              "steps of 8 up to 1280x1024");
  }
}

void RunConvert(const ConvertOptions& options) {
  const Format format = FormatOf(options.output, Format::kPpm);
  if (format == Format::kRaw)
    FailUsage(
        "a raw frame is what goes in; name the output *.bmp, *.tif, "
        "*.jpg or *.ppm");
  RefuseOverwriting(options.output, options.force);
  const Geometry geometry = ParseSize(options);
  std::vector<unsigned char> frame = ReadRaw(options.input, geometry);
  UseSimulator(Description(options));
  const Camera camera(0);
  MatchGeometry(camera, geometry, format);
  FrameWriter writer(camera, geometry, {format, options.algorithm});
  writer.Write(frame, options.output);
}

}  // namespace

void AddConvert(CLI::App& app) {
  CLI::App* command = app.add_subcommand("convert", "Turn a raw frame from a file into an image");
  auto options = std::make_shared<ConvertOptions>();
  command->add_option("input", options->input, "Raw frame, or - for standard input")->required();
  command
      ->add_option("-o,--output", options->output,
                   "File to write: *.bmp, *.tif, *.jpg, *.ppm, or - for a pixmap on standard "
                   "output")
      ->required();
  command->add_option("--size", options->size, "Size of the frame, WIDTHxHEIGHT")->required();
  command->add_option("--bits", options->bits, "Bits of a sample: 8 or 16")
      ->check(CLI::IsMember({8, 16}))
      ->capture_default_str();
  command->add_option("--phase", options->phase, "Mosaic phase: 0, 1 or 2")
      ->check(CLI::Range(0, 2))
      ->capture_default_str();
  command->add_flag("--mono", options->mono, "The frame comes from a monochrome camera");
  command->add_option("--algorithm", options->algorithm, "Demosaic algorithm code")
      ->capture_default_str();
  command->add_flag("--force", options->force, "Replace a file that exists");
  command->callback([options] { RunConvert(*options); });
}

}  // namespace ormidex_tool
