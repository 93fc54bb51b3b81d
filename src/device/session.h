// The camera session record: the library's one object per camera. Its address is
// the handle that applications hold.
//
// One method for each exported operation, named as the export without its prefix.
// A method is implemented in the room that owns its topic; so is the state it
// needs, which the rooms declare in their state.h.
//
// Locks. The API lock is held by the exports around each method. Inside, at most
// one of the three session locks is held at a time: the stream lock around every
// change of the stream, the command lock around the queueing of one command
// transfer, the image lock around overlay callbacks and preview images. The
// library's own threads never take the API lock.
#ifndef ORMIDEX_DEVICE_SESSION_H_
#define ORMIDEX_DEVICE_SESSION_H_

#include <cstddef>
#include <cstdint>

#include "acquisition/state.h"
#include "device/callbacks.h"
#include "device/driver_gateway.h"
#include "device/driver_protocol.h"
#include "device/state.h"
#include "files/state.h"
#include "frame/status.h"
#include "imager/state.h"
#include "platform/critical_section.h"
#include "preview/state.h"

struct OrmidexHardwareVersion;
struct OrmidexRect;

namespace ormidex::device {

class CameraSession {
 public:
  // Allocates and constructs a record with the defaults; null when memory is short.
  static CameraSession* Create() noexcept;
  // Frees the record's storage and nothing else: no teardown, no destructors.
  static void FreeStorage(CameraSession* session) noexcept;

  // Opens camera `device_index` and puts it into the default state. On failure the
  // device stays as far open as the sequence came, deliberately; see Open().
  Status Open(const char* device_type_name, std::uint32_t device_index);
  // Ends all activity and closes the device.
  Status Teardown();

  // Register, I2C, GPIO and GPO pass-through (device/registers.cpp, device/lines.cpp)
  Status ReadRegister(std::uint32_t address, std::uint8_t* value);
  Status WriteRegister(std::uint32_t address, std::uint8_t value, std::uint32_t asynchronous);
  Status ReadMultRegister(std::uint32_t address, std::uint32_t count, std::uint8_t* data);
  Status WriteMultRegister(std::uint32_t address, std::uint32_t count, const std::uint8_t* data,
                           std::uint32_t asynchronous);
  Status I2cRead(std::uint8_t device_address, const std::uint8_t* write_data,
                 std::int32_t write_count, std::uint8_t* read_data, std::int32_t read_count);
  Status I2cWrite(std::uint8_t device_address, const std::uint8_t* data, std::uint32_t count);
  Status ReadExtI2CRegister(std::uint32_t bus_address, std::uint32_t address, std::uint8_t* value);
  Status WriteExtI2CRegister(std::uint32_t bus_address, std::uint32_t address, std::uint8_t value);
  Status ReadGpio(std::uint32_t* value);
  Status WriteGpio(std::uint32_t value);
  Status GetGpo(std::uint32_t* level, std::uint32_t line);
  Status SetGpo(std::uint32_t level, float duration, std::uint32_t line);
  Status RequestContinuousAutoExposure(std::uint32_t mode, std::uint32_t parameter);
  Status FlushVideoData();
  Status GetFrameNumber(std::uint8_t* frame_counter, std::uint32_t* counters);
  Status SetTimeout(std::uint32_t timeout);
  Status GetTimeout(std::uint32_t* timeout);

  // Identity (device/identity.cpp)
  Status GetSerialNumber(std::uint32_t* serial);
  Status GetSoftwareVersion(std::uint32_t* version);
  Status GetImagerType(std::uint32_t* type);
  Status GetImagerName(char* name);
  Status SetImagerName(const char* name);
  Status GetImagerChipId(std::uint32_t* id);
  Status GetLockValue(std::uint32_t* value);
  Status IsExtOscillator(std::uint32_t* is_external);
  Status GetHardwareVersion(OrmidexHardwareVersion* info);

  // Exposure and clocking (imager/exposure.cpp, imager/clocking.cpp)
  Status GetExposure(std::uint32_t* value);
  Status SetExposure(std::uint32_t value);
  Status GetExposureGain(float* gain);
  Status SetExposureGain(float gain);
  Status GetExposureTime(float* milliseconds);
  Status SetExposureTime(float milliseconds, std::uint32_t adjust_clock);
  Status GetMaxExposureTime(std::uint32_t factor, std::uint32_t width, std::uint32_t height,
                            std::uint32_t clocking, float frame_rate, float* milliseconds);
  Status SetImagerClocking(std::uint32_t clocking);
  Status GetImagerClocking(std::uint32_t* clocking);
  Status GetCurrentFrameRate(std::uint32_t* frame_rate);

  // Gains and image options (imager/gains.cpp, imager/options.cpp)
  Status SetRedGain(std::uint32_t gain);
  Status GetRedGain(std::uint32_t* gain);
  Status SetGreenGain(std::uint32_t gain);
  Status GetGreenGain(std::uint32_t* gain);
  Status SetBlueGain(std::uint32_t gain);
  Status GetBlueGain(std::uint32_t* gain);
  Status SetMonoGain(std::uint32_t gain);
  Status GetMonoGain(std::uint32_t* gain);
  Status SetGamma(float gamma);
  Status GetGamma(float* gamma);
  Status SetSaturation(std::uint32_t saturation);
  Status GetSaturation(std::uint32_t* saturation);
  Status SetLightSource(std::uint32_t source);
  Status GetLightSource(std::uint32_t* source);

  // Geometry (imager/geometry.cpp, imager/flip.cpp, imager/video_mode.cpp)
  Status SetSubWindowPos(std::uint32_t column, std::uint32_t row);
  Status GetSubWindowPos(std::uint32_t* column, std::uint32_t* row);
  Status SetSubWindowSize(std::uint32_t factor, std::uint32_t width, std::uint32_t height);
  Status GetSubWindowSize(std::uint32_t* factor, std::uint32_t* width, std::uint32_t* height);
  Status SetSubWindow(std::uint32_t factor, std::uint32_t column, std::uint32_t row,
                      std::uint32_t width, std::uint32_t height);
  Status GetSubWindow(std::uint32_t* factor, std::uint32_t* column, std::uint32_t* row,
                      std::uint32_t* width, std::uint32_t* height);
  Status SetVideoMode(std::uint32_t mode);
  Status GetVideoMode(std::uint32_t* mode);
  Status SetDataTransferSize(std::uint32_t bits);
  Status GetDataTransferSize(std::uint32_t* bits);
  Status ImageFlip(std::int32_t horizontal, std::int32_t vertical);
  Status GetImageFlip(std::uint32_t* horizontal, std::uint32_t* vertical);

  // Streaming (acquisition/stream.cpp)
  Status StartVideoStream();
  Status StopVideoStream();
  Status PauseVideoStream(std::uint32_t pause);
  Status ReturnVideoData(std::uint32_t buffer_bytes, void* buffer);

  // Stills and triggered frames (acquisition/still.cpp, acquisition/trigger.cpp)
  Status ReturnStillFrame(void* buffer, float exposure, std::uint32_t first_output_flag,
                          float first_output_time, std::uint32_t second_output_flag,
                          float second_output_time_a, float second_output_time_b);
  Status ReturnFrameAfterTrigger(float exposure, std::uint32_t first_output_flag,
                                 float first_output_time, std::uint32_t second_output_flag,
                                 float second_output_time_a, float second_output_time_b,
                                 TriggerCallback callback, std::uint32_t convert, void* raw_buffer,
                                 void* output_buffer, std::uint32_t algorithm);
  Status StopTriggerMode();

  // Command channel (acquisition/command_channel.cpp)
  Status ReadCommand(void* buffer, std::uint32_t count);
  Status WriteCommand(void* buffer, std::uint32_t count);

  // Conversion (convert/session_convert.cpp)
  Status ConvertColor8BppTo24Bpp(const std::uint8_t* source, std::uint32_t width,
                                 std::uint32_t height, std::uint8_t* destination,
                                 std::uint32_t algorithm);
  Status ConvertColor16BppTo24Bpp(const std::uint8_t* source, std::uint32_t width,
                                  std::uint32_t height, std::uint8_t* destination,
                                  std::uint32_t algorithm);
  Status ConvertColor16BppTo48Bpp(const std::uint8_t* source, std::uint32_t width,
                                  std::uint32_t height, std::uint8_t* destination,
                                  std::uint32_t algorithm);
  Status ConvertMono8BppTo24Bpp(const std::uint8_t* source, std::uint32_t width,
                                std::uint32_t height, std::uint8_t* destination);
  Status ConvertMono16BppTo24Bpp(const std::uint8_t* source, std::uint32_t width,
                                 std::uint32_t height, std::uint8_t* destination);
  // wide: the image has 16 bits a channel (the camera must be in 16-bit transfer too).
  Status ColorCorrectRgb(std::uint32_t width, std::uint32_t height, void* image,
                         std::int32_t amount, std::uint32_t wide);

  // Automation (automation/*.cpp)
  Status AutoExposure(std::uint32_t target_percent, std::uint32_t use_rectangle, std::uint32_t left,
                      std::uint32_t top, std::uint32_t width, std::uint32_t height);
  Status WhiteBalance(std::uint32_t use_rectangle, std::uint32_t left, std::uint32_t top,
                      std::uint32_t width, std::uint32_t height, std::uint32_t red_target,
                      std::uint32_t green_target, std::uint32_t blue_target);

  // Preview (preview/*.cpp). parent is a window handle of the platform.
  Status StartPreview(const char* title, std::uint32_t style, std::uint32_t x, std::uint32_t y,
                      std::uint32_t width, std::uint32_t height, void* parent,
                      std::uint32_t identifier);
  Status StopPreview();
  Status PausePreview(std::uint32_t suspend);
  Status SetPreviewColorConversion(std::uint32_t option);
  Status GetPreviewWindowPos(std::uint32_t* x, std::uint32_t* y);
  Status GetPreviewWindowSize(std::uint32_t* width, std::uint32_t* height);
  Status SetPreviewWindow(const OrmidexRect* rectangle);
  Status ResetPreviewWindow();

  // Files (files/*.cpp)
  Status SaveFrameAsBitmap(void* image, const char* path);
  Status SaveFrameAsMono8(void* frame, const char* path);
  Status SaveFrameAsMono16(void* frame, const char* path);
  Status SaveFrameAsTiff(const void* frame, const char* path, std::uint32_t colour_correct,
                         std::int32_t amount, std::uint32_t option);
  Status SaveFrameAsJpeg(const void* image, const char* path);
  // The three times are the bit patterns of 32-bit floats, in milliseconds:
  // applications have always declared these arguments as integers, and they reach
  // the still capture unchanged.
  Status CaptureFrameToBitmap(float exposure, std::uint32_t first_output_flag,
                              std::uint32_t first_output_time_bits,
                              std::uint32_t second_output_flag,
                              std::uint32_t second_output_time_a_bits,
                              std::uint32_t second_output_time_b_bits, const char* path,
                              std::uint32_t colour_correct, std::int32_t amount,
                              std::uint32_t option);
  Status SetOverlayCallBack(std::uint32_t for_preview, std::uint32_t for_saving,
                            OverlayCallback callback);

  // ---- Shared by the rooms; not exported ----------------------------------

  bool HasDevice() const { return link.handle != nullptr; }
  bool IsSecondGeneration() const { return identity.second_generation != 0; }
  bool IsTriggerActive() const { return trigger.active.load() != 0; }
  // The upper half of the version word is compared with 0x0202 and 0x0300.
  std::uint32_t FirmwareGeneration() const { return identity.firmware_version & 0xFFFF0000u; }
  bool HasCommandRegisterMap3() const { return FirmwareGeneration() >= 0x03000000u; }
  // Firmware variants M and C: no GPO lines, short still and trigger records.
  bool IsReducedFirmware() const {
    const std::uint32_t letter = (identity.firmware_version >> 16) & 0xFFu;
    return letter == 0x4D || letter == 0x43;
  }

  // One synchronous request on the session's device. False: the driver failed it.
  bool Control(std::uint32_t code, const void* in, std::uint32_t in_bytes, void* out,
               std::uint32_t out_bytes, std::uint32_t* returned = nullptr) const;
  // The same with one record as input and output.
  template <typename Record>
  bool Exchange(std::uint32_t code, Record& record) const {
    return Control(code, &record, sizeof(record), &record, sizeof(record));
  }

  // Camera registers of several bytes, most significant first.
  Status WriteRegisterPair(std::uint32_t address, std::uint32_t value);
  // Reads registers `high` and `high` + 1 singly; mask applies to the first.
  Status ReadRegisterPair(std::uint32_t high, std::uint32_t high_mask, std::uint32_t* value);

  // The controller's 8-bit command registers. The driver's status word is never
  // looked at: 0, or 5 when the request failed.
  Status ReadCommandRegister(std::uint32_t address, std::uint8_t* value);
  Status WriteCommandRegister(std::uint32_t address, std::uint8_t value);
  Status ReadCommandBlock(std::uint32_t address, std::uint32_t count, std::uint8_t* data);

  Status ReadSerialNumber();
  Status ReadFirmwareVersion();
  Status ReadIdentityStrings();
  Status CheckImagerIdentity();
  // External oscillator (bit 0), monochrome (bit 3), CMY filter (bit 4).
  Status ReadImagerFlags(std::uint8_t* flags);
  Status LoadFpnValues();

  // Tells an attached preview to suspend (non-zero) or resume (0).
  Status NotifyPreview(std::uint32_t pause);
  // Tells an attached preview that its buffers no longer fit the frame.
  void NotifyPreviewGeometry();
  // Derives frame and image sizes, and the bitmap header, from the geometry.
  void RecomputeFrameSizes();
  // Converts a raw frame to 24-bit RGB as imager type and transfer size ask for.
  Status ConvertRawTo24Bpp(const void* raw, void* rgb, std::uint32_t algorithm);

  LinkState link;
  IdentityState identity;
  OpenState open;
  imager::ExposureState exposure;
  imager::GainState gains;
  imager::OptionState options;
  imager::GeometryState geometry;
  acquisition::StreamState stream;
  acquisition::TriggerState trigger;
  acquisition::CommandState command;
  preview::PreviewState preview;
  files::OverlayState overlay;
  files::BitmapInfoHeader bitmap_header;

  platform::CriticalSection stream_lock;
  platform::CriticalSection command_lock;
  platform::CriticalSection image_lock;

 private:
  CameraSession();
  ~CameraSession() = default;

  Status OpenByList(const char* name, std::uint32_t device_index);
  Status OpenByEnumeration(const char* name, std::uint32_t device_index);
  Status ReadIdentity();
  Status ApplyDefaultGeometry();
  Status ApplyDefaultImagerSettings(std::uint32_t device_index);
  Status ApplyDefaultExposure();
  Status ReadInitialGains();
  void PrepareWorkers();
};

}  // namespace ormidex::device

#endif  // ORMIDEX_DEVICE_SESSION_H_
