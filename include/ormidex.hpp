/// @file
/// Ormidex for C++20: a camera that closes itself, and statuses as exceptions.
///
/// A thin layer over ormidex.h. Each member calls the function of the same name and
/// throws ormidex::Error unless it succeeds; what each means, its units and ranges
/// stand in ormidex.h. Whatever has no member here is called with handle().
///
///     ormidex::Camera camera;                       // the first camera
///     camera.StartStream();
///     const ormidex::Frame frame = camera.ReadFrame();
///     camera.SaveBitmap(camera.Convert(frame), "first.bmp");
///
/// Who would rather not use exceptions wraps a call in Try:
///
///     auto frame = ormidex::Try([&] { return camera.ReadFrame(); });
///     if (!frame) std::puts(ormidex::Describe(frame.status()));
///
/// A Camera may be used from several threads; it must not be moved or destroyed
/// while a call is in progress.
#ifndef ORMIDEX_HPP_
#define ORMIDEX_HPP_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "ormidex.h"

namespace ormidex {

/// What a status means, in a few words.
inline const char* Describe(OrmidexStatus status) {
  static constexpr const char* kTexts[] = {
      "success",
      "no camera is open, or it could not be opened",
      "a required pointer is null",
      "there is no camera with that number",
      "the system's device enumeration is not available",
      "the camera driver failed a request",
      "the file could not be opened for writing",
      "an argument is out of range or does not fit the others",
      "the camera's imager is not one the library knows",
      "memory ran out",
      "the camera or the system answered in an unexpected way",
      "there is no preview window",
      "this camera or its firmware cannot do that",
      "the camera is not in a state for that",
      "the driver reported a condition of its own",
      "this operating system is not supported",
      "the automatic control did not settle",
      "the command took longer than a second",
      "success, with a slower imager clocking",
  };
  return status < std::size(kTexts) ? kTexts[status] : "the driver's own status";
}

/// A call that did not succeed.
class Error : public std::runtime_error {
 public:
  /// `function` is the name of the function that returned `status`.
  Error(OrmidexStatus status, const char* function)
      : std::runtime_error(std::string(function) + ": " + Describe(status)), status_(status) {}
  /// What the function returned.
  OrmidexStatus status() const { return status_; }

 private:
  OrmidexStatus status_;
};

/// Throws an Error for any status but success.
inline void Check(OrmidexStatus status, const char* function) {
  if (status != ORMIDEX_OK) throw Error(status, function);
}

/// The value of a call, or the status it failed with.
template <typename T>
class Result {
 public:
  /// Success.
  Result(T value) : value_(std::move(value)) {}
  /// No value.
  static Result Failure(OrmidexStatus status) { return Result(status, 0); }

  /// Whether there is a value.
  explicit operator bool() const { return value_.has_value(); }
  /// ORMIDEX_OK, or what the call failed with.
  OrmidexStatus status() const { return status_; }
  /// The value, which must be there.
  T& operator*() { return *value_; }
  /// The value, which must be there.
  T* operator->() { return &*value_; }

 private:
  Result(OrmidexStatus status, int) : status_(status) {}
  std::optional<T> value_;
  OrmidexStatus status_ = ORMIDEX_OK;
};

/// Runs a call that may throw an Error and returns its value or its status; a call
/// without a value returns the status alone.
template <typename Call>
auto Try(Call call) {
  using Value = decltype(call());
  try {
    if constexpr (std::is_void_v<Value>) {
      call();
      return OrmidexStatus{ORMIDEX_OK};
    } else {
      return Result<Value>(call());
    }
  } catch (const Error& error) {
    if constexpr (std::is_void_v<Value>) {
      return error.status();
    } else {
      return Result<Value>::Failure(error.status());
    }
  }
}

/// The part of the imager's array that is read.
struct SubWindow {
  std::uint32_t factor = 1;  ///< sub-sampling: 1, 2 or 4
  std::uint32_t column = 0;  ///< of its left edge
  std::uint32_t row = 0;     ///< of its top edge
  std::uint32_t width = 0;   ///< before sub-sampling
  std::uint32_t height = 0;  ///< before sub-sampling
};

/// A raw frame: width x height samples of one or two bytes, rows from top to bottom.
struct Frame {
  std::uint32_t width = 0;            ///< in pixels
  std::uint32_t height = 0;           ///< in pixels
  std::uint32_t bytes_per_pixel = 1;  ///< 1 or 2
  std::vector<std::uint8_t> data;     ///< the samples
};

/// A 24-bit image: blue, green, red, rows from bottom to top without padding.
struct Image {
  std::uint32_t width = 0;         ///< in pixels
  std::uint32_t height = 0;        ///< in pixels
  std::vector<std::uint8_t> data;  ///< the samples
};

/// The gain codes of the colours, 0 to 63.
struct Gains {
  std::uint32_t red = 0;    ///< OrmidexSetRedGain
  std::uint32_t green = 0;  ///< OrmidexSetGreenGain
  std::uint32_t blue = 0;   ///< OrmidexSetBlueGain
};

/// An open camera.
class Camera {
 public:
  /// The number of cameras.
  static std::uint32_t Count() {
    std::uint32_t count = 0;
    Check(OrmidexGetNumberDevices("", &count), "OrmidexGetNumberDevices");
    return count;
  }

  /// Opens a camera; they are numbered from 0.
  explicit Camera(std::uint32_t index = 0) {
    Check(OrmidexInitialize("", index, &handle_), "OrmidexInitialize");
  }
  ~Camera() { Close(); }
  /// The other one is closed for its owner and stays open here.
  Camera(Camera&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  /// Closes this camera first.
  Camera& operator=(Camera&& other) noexcept {
    if (this != &other) {
      Close();
      handle_ = std::exchange(other.handle_, nullptr);
    }
    return *this;
  }
  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;

  /// For the functions that have no member here.
  OrmidexHandle handle() const { return handle_; }

  // ---- Identity ----
  /// OrmidexGetSerialNumber
  std::uint32_t SerialNumber() const {
    return Get<OrmidexGetSerialNumber>("OrmidexGetSerialNumber");
  }
  /// OrmidexGetSoftwareVersion
  std::uint32_t SoftwareVersion() const {
    return Get<OrmidexGetSoftwareVersion>("OrmidexGetSoftwareVersion");
  }
  /// OrmidexGetImagerType: whether the imager has a mosaic of colours.
  bool IsColour() const {
    return Get<OrmidexGetImagerType>("OrmidexGetImagerType") == ORMIDEX_IMAGER_COLOR;
  }
  /// OrmidexGetHardwareVersion
  OrmidexHardwareVersion HardwareVersion() const {
    OrmidexHardwareVersion version = {};
    Check(OrmidexGetHardwareVersion(handle_, &version), "OrmidexGetHardwareVersion");
    return version;
  }

  // ---- Settings ----
  /// The exposure time in milliseconds.
  float ExposureTime() const {
    float milliseconds = 0;
    Check(OrmidexGetExposureTime(handle_, &milliseconds), "OrmidexGetExposureTime");
    return milliseconds;
  }
  /// Sets it, at a slower imager clock if needed and allowed.
  void SetExposureTime(float milliseconds, bool adjust_clock = false) {
    Check(OrmidexSetExposureTime(handle_, milliseconds, adjust_clock ? 1 : 0),
          "OrmidexSetExposureTime");
  }
  /// The gains of the three colours.
  ormidex::Gains Gains() const {
    return {Get<OrmidexGetRedGain>("OrmidexGetRedGain"),
            Get<OrmidexGetGreenGain>("OrmidexGetGreenGain"),
            Get<OrmidexGetBlueGain>("OrmidexGetBlueGain")};
  }
  /// Sets red, green and blue, in this order.
  void SetGains(const ormidex::Gains& gains) {
    Check(OrmidexSetRedGain(handle_, gains.red), "OrmidexSetRedGain");
    Check(OrmidexSetGreenGain(handle_, gains.green), "OrmidexSetGreenGain");
    Check(OrmidexSetBlueGain(handle_, gains.blue), "OrmidexSetBlueGain");
  }
  /// OrmidexSetGamma
  void SetGamma(float gamma) { Check(OrmidexSetGamma(handle_, gamma), "OrmidexSetGamma"); }
  /// OrmidexSetImagerClocking: one of OrmidexClocking.
  void SetClocking(std::uint32_t code) {
    Check(OrmidexSetImagerClocking(handle_, code), "OrmidexSetImagerClocking");
  }
  /// OrmidexGetSubWindow
  ormidex::SubWindow SubWindow() const {
    ormidex::SubWindow window;
    Check(OrmidexGetSubWindow(handle_, &window.factor, &window.column, &window.row, &window.width,
                              &window.height),
          "OrmidexGetSubWindow");
    return window;
  }
  /// OrmidexSetSubWindow
  void SetSubWindow(const ormidex::SubWindow& window) {
    Check(OrmidexSetSubWindow(handle_, window.factor, window.column, window.row, window.width,
                              window.height),
          "OrmidexSetSubWindow");
  }
  /// 8 or 16. True when the imager clocking had to be slowed down for it.
  bool SetBitsPerPixel(std::uint32_t bits) {
    const OrmidexStatus status = OrmidexSetDataTransferSize(handle_, bits);
    if (status == ORMIDEX_CLOCKING_CHANGED) return true;
    Check(status, "OrmidexSetDataTransferSize");
    return false;
  }

  // ---- Frames ----
  /// OrmidexStartVideoStream
  void StartStream() { Check(OrmidexStartVideoStream(handle_), "OrmidexStartVideoStream"); }
  /// OrmidexStopVideoStream
  void StopStream() { Check(OrmidexStopVideoStream(handle_), "OrmidexStopVideoStream"); }

  /// A frame of the present geometry, its memory allocated but not read yet: give it
  /// to ReadFrame again and again, fresh memory costs far more than the copy.
  Frame MakeFrame() const {
    const auto window = SubWindow();
    const std::uint32_t bytes = Get<OrmidexGetDataTransferSize>("OrmidexGetDataTransferSize") / 8;
    Frame frame{window.width / window.factor, window.height / window.factor, bytes, {}};
    frame.data.resize(std::size_t{frame.width} * frame.height * bytes);
    return frame;
  }
  /// Reads a frame into memory of its size.
  void ReadFrame(std::span<std::uint8_t> data) {
    Check(OrmidexReturnVideoData(handle_, static_cast<OrmidexUInt32>(data.size()), data.data()),
          "OrmidexReturnVideoData");
  }
  /// Reads into a frame of MakeFrame().
  void ReadFrame(Frame& frame) { ReadFrame(std::span(frame.data)); }
  /// Reads into a new frame.
  Frame ReadFrame() {
    Frame frame = MakeFrame();
    ReadFrame(frame);
    return frame;
  }

  /// Demosaics, or expands a monochrome frame, into an image that is sized to fit.
  void Convert(const Frame& frame, Image& image, std::uint32_t algorithm = ORMIDEX_BILINEAR) const {
    image.width = frame.width;
    image.height = frame.height;
    image.data.resize(std::size_t{3} * frame.width * frame.height);
    const bool wide = frame.bytes_per_pixel == 2;
    if (IsColour()) {
      const auto convert = wide ? OrmidexConvertColor16BppTo24Bpp : OrmidexConvertColor8BppTo24Bpp;
      Check(convert(handle_, frame.data.data(), frame.width, frame.height, image.data.data(),
                    algorithm),
            "OrmidexConvertColor");
    } else {
      const auto convert = wide ? OrmidexConvertMono16BppTo24Bpp : OrmidexConvertMono8BppTo24Bpp;
      Check(convert(handle_, frame.data.data(), frame.width, frame.height, image.data.data()),
            "OrmidexConvertMono");
    }
  }
  /// Converts into a new image.
  Image Convert(const Frame& frame, std::uint32_t algorithm = ORMIDEX_BILINEAR) const {
    Image image;
    Convert(frame, image, algorithm);
    return image;
  }

  // ---- Automatic control; the stream must run ----
  /// OrmidexAutoExposure, for the whole frame.
  void AutoExposure(std::uint32_t target_percent = 50) {
    Check(OrmidexAutoExposure(handle_, target_percent, 0, 0, 0, 0, 0), "OrmidexAutoExposure");
  }
  /// OrmidexWhiteBalance, for the whole frame.
  void WhiteBalance() {
    Check(OrmidexWhiteBalance(handle_, 0, 0, 0, 0, 0, 1, 1, 1), "OrmidexWhiteBalance");
  }

  // ---- Files ----
  /// Writes a bitmap. An overlay callback may draw into the image first, hence a copy.
  void SaveBitmap(Image image, const std::string& path) const {
    Check(OrmidexSaveFrameAsBitmap(handle_, image.data.data(), path.c_str()),
          "OrmidexSaveFrameAsBitmap");
  }
  /// OrmidexSaveFrameAsJpeg
  void SaveJpeg(const Image& image, const std::string& path) const {
    Check(OrmidexSaveFrameAsJpeg(handle_, image.data.data(), path.c_str()),
          "OrmidexSaveFrameAsJpeg");
  }
  /// OrmidexSaveFrameAsTiff, which takes the raw frame.
  void SaveTiff(const Frame& frame, const std::string& path,
                std::uint32_t algorithm = ORMIDEX_BILINEAR) const {
    Check(OrmidexSaveFrameAsTiff(handle_, frame.data.data(), path.c_str(), 0, 0, algorithm),
          "OrmidexSaveFrameAsTiff");
  }

 private:
  template <auto function>
  std::uint32_t Get(const char* name) const {
    OrmidexUInt32 value = 0;
    Check(function(handle_, &value), name);
    return value;
  }
  void Close() {
    if (handle_ != nullptr) OrmidexUninitialize(&handle_);
  }

  OrmidexHandle handle_ = nullptr;
};

}  // namespace ormidex

#endif  // ORMIDEX_HPP_
