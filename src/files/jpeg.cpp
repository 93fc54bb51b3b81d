#include "files/jpeg.h"

#include <csetjmp>
#include <cstdio>
// After cstdio, whose types it uses.
#include <jpeglib.h>

#include "device/session.h"
#include "files/image_size.h"
#include "files/pixel_order.h"
#include "platform/memory.h"

namespace ormidex::files {

namespace {

static_assert(JPEG_LIB_VERSION == 62, "the interface that the library is made for");
static_assert(sizeof(void*) != 4 || sizeof(jpeg_compress_struct) == 360);

constexpr int kQuality = 95;
constexpr std::size_t kOutputBytes = 16384;

// A destination over a file that it opens by its path. Without a file, and when the
// disk is full, the bytes go nowhere: libjpeg is not told.
struct PathDestination {
  jpeg_destination_mgr manager;  // first, so that libjpeg's pointer is this object's
  std::FILE* file;
  JOCTET buffer[kOutputBytes];
};

PathDestination& DestinationOf(j_compress_ptr compressor) {
  return *reinterpret_cast<PathDestination*>(compressor->dest);
}

void Rewind(PathDestination& destination) {
  destination.manager.next_output_byte = destination.buffer;
  destination.manager.free_in_buffer = kOutputBytes;
}

void WriteOut(PathDestination& destination, std::size_t bytes) {
  if (destination.file == nullptr) return;
  if (std::fwrite(destination.buffer, 1, bytes, destination.file) != bytes) {
    // As with the other writers, a full disk shows in the file's size only.
  }
}

void CloseFile(PathDestination& destination) {
  if (destination.file != nullptr) std::fclose(destination.file);
  destination.file = nullptr;
}

void InitDestination(j_compress_ptr compressor) { Rewind(DestinationOf(compressor)); }

boolean EmptyOutputBuffer(j_compress_ptr compressor) {
  PathDestination& destination = DestinationOf(compressor);
  WriteOut(destination, kOutputBytes);  // the whole buffer, whatever the counters say
  Rewind(destination);
  return TRUE;
}

void TermDestination(j_compress_ptr compressor) {
  PathDestination& destination = DestinationOf(compressor);
  WriteOut(destination, kOutputBytes - destination.manager.free_in_buffer);
  CloseFile(destination);
}

// Sets the destination up in any case; false when the file cannot be opened.
bool SetPathDestination(j_compress_ptr compressor, PathDestination& destination, const char* path) {
  destination.manager.init_destination = InitDestination;
  destination.manager.empty_output_buffer = EmptyOutputBuffer;
  destination.manager.term_destination = TermDestination;
  compressor->dest = &destination.manager;
  destination.file = path != nullptr ? std::fopen(path, "wb") : nullptr;
  return destination.file != nullptr;
}

// The standard error manager but for one thing: where that ends the process, after
// the message, this one gives the image up.
struct ErrorManager {
  jpeg_error_mgr standard;  // first, so that libjpeg's pointer is this object's
  std::jmp_buf given_up;
};

[[noreturn]] void GiveUp(j_common_ptr compressor) {
  compressor->err->output_message(compressor);
  std::longjmp(reinterpret_cast<ErrorManager*>(compressor->err)->given_up, 1);
}

struct Image {
  const std::uint8_t* pixels;
  std::uint32_t width;
  std::uint32_t height;
};

struct Compression {
  jpeg_compress_struct compressor;
  ErrorManager errors;
  PathDestination destination;
};

void SetParameters(jpeg_compress_struct& compressor, const Image& image) {
  compressor.image_width = image.width;
  compressor.image_height = image.height;
  compressor.input_components = 3;
  compressor.in_color_space = JCS_RGB;
  jpeg_set_defaults(&compressor);
  jpeg_set_quality(&compressor, kQuality, TRUE);
}

// Each row is put into libjpeg's order just before it is compressed, while it is
// still in the cache, so one row of working memory does.
void WriteRows(jpeg_compress_struct& compressor, const Image& image, std::uint8_t* row) {
  const SwapRow swap = FindSwapRow24();
  const std::size_t row_bytes = std::size_t{image.width} * 3;
  while (compressor.next_scanline < compressor.image_height) {
    const std::uint32_t source_row = image.height - 1 - compressor.next_scanline;
    swap(image.pixels + source_row * row_bytes, row, image.width);
    JSAMPROW rows[1] = {row};
    jpeg_write_scanlines(&compressor, rows, 1);
  }
}

// A file that cannot be opened is told of on standard output and in no other way,
// deliberately: applications see the status 0 and look for the file.
void Compress(Compression& compression, const Image& image, const char* path, std::uint8_t* row) {
  jpeg_compress_struct& compressor = compression.compressor;
  compressor.err = jpeg_std_error(&compression.errors.standard);
  compression.errors.standard.error_exit = GiveUp;
  if (setjmp(compression.errors.given_up) != 0) return;
  jpeg_create_compress(&compressor);
  if (!SetPathDestination(&compressor, compression.destination, path)) std::printf("Error\n");
  SetParameters(compressor, image);
  jpeg_start_compress(&compressor, TRUE);
  WriteRows(compressor, image, row);
  jpeg_finish_compress(&compressor);
}

}  // namespace

Status WriteJpeg(const std::uint8_t* image, std::uint32_t width, std::uint32_t height,
                 const char* path) {
  if (!FitsInMemory(width, height, 3)) return kOutOfMemory;
  const auto row = platform::Buffer::Uncleared(std::size_t{width} * 3);
  if (!row) return kOutOfMemory;
  Compression compression{};
  Compress(compression, {image, width, height}, path, row.Bytes());
  jpeg_destroy_compress(&compression.compressor);
  CloseFile(compression.destination);
  return kOk;
}

}  // namespace ormidex::files

namespace ormidex::device {

// Neither the device nor the arguments are looked at, deliberately: applications also
// save images of a camera that is gone.
Status CameraSession::SaveFrameAsJpeg(const void* image, const char* path) {
  return files::WriteJpeg(static_cast<const std::uint8_t*>(image), bitmap_header.width,
                          static_cast<std::uint32_t>(bitmap_header.height), path);
}

}  // namespace ormidex::device
