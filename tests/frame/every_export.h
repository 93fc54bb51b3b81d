// A call of each of the 94 functions that take a handle, with arguments that are
// harmless on a session without a device.
#ifndef ORMIDEX_TESTS_FRAME_EVERY_EXPORT_H_
#define ORMIDEX_TESTS_FRAME_EVERY_EXPORT_H_

#include "ormidex.h"

namespace ormidex::testing {

struct ExportCall {
  const char* name;
  // memory: room for every output and input behind a pointer.
  OrmidexStatus (*call)(OrmidexHandle handle, void* memory);
};

inline const char* const kNoSuchPath = "no such directory/file";

// clang-format off
inline constexpr ExportCall kOrdinaryExports[] = {
    {"OrmidexAutoExposure", [](OrmidexHandle h, void*) { return OrmidexAutoExposure(h, 0, 0, 0, 0, 2, 2); }},
    {"OrmidexCaptureFrameToBitmap", [](OrmidexHandle h, void*) { return OrmidexCaptureFrameToBitmap(h, 1.0f, 0, 0, 0, 0, 0, kNoSuchPath, 0, 0, 1); }},
    {"OrmidexColorCorrectRgb", [](OrmidexHandle h, void* m) { return OrmidexColorCorrectRgb(h, 2, 2, m, 0); }},
    {"OrmidexConvertColor16BppTo24Bpp", [](OrmidexHandle h, void* m) { return OrmidexConvertColor16BppTo24Bpp(h, m, 2, 2, m, 1); }},
    {"OrmidexConvertColor16BppTo48Bpp", [](OrmidexHandle h, void* m) { return OrmidexConvertColor16BppTo48Bpp(h, m, 2, 2, m, 1); }},
    {"OrmidexConvertColor8BppTo24Bpp", [](OrmidexHandle h, void* m) { return OrmidexConvertColor8BppTo24Bpp(h, m, 2, 2, m, 1); }},
    {"OrmidexConvertMono16BppTo24Bpp", [](OrmidexHandle h, void* m) { return OrmidexConvertMono16BppTo24Bpp(h, m, 2, 2, m); }},
    {"OrmidexConvertMono8BppTo24Bpp", [](OrmidexHandle h, void* m) { return OrmidexConvertMono8BppTo24Bpp(h, m, 2, 2, m); }},
    {"OrmidexFlushVideoData", [](OrmidexHandle h, void*) { return OrmidexFlushVideoData(h); }},
    {"OrmidexGetBlueGain", [](OrmidexHandle h, void* m) { return OrmidexGetBlueGain(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetCurrentFrameRate", [](OrmidexHandle h, void* m) { return OrmidexGetCurrentFrameRate(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetDataTransferSize", [](OrmidexHandle h, void* m) { return OrmidexGetDataTransferSize(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetExposure", [](OrmidexHandle h, void* m) { return OrmidexGetExposure(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetExposureGain", [](OrmidexHandle h, void* m) { return OrmidexGetExposureGain(h, static_cast<float*>(m)); }},
    {"OrmidexGetExposureTime", [](OrmidexHandle h, void* m) { return OrmidexGetExposureTime(h, static_cast<float*>(m)); }},
    {"OrmidexGetFrameNumber", [](OrmidexHandle h, void* m) { return OrmidexGetFrameNumber(h, static_cast<OrmidexUInt8*>(m), static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetGamma", [](OrmidexHandle h, void* m) { return OrmidexGetGamma(h, static_cast<float*>(m)); }},
    {"OrmidexGetGpo", [](OrmidexHandle h, void* m) { return OrmidexGetGpo(h, static_cast<OrmidexUInt32*>(m), 1); }},
    {"OrmidexGetGreenGain", [](OrmidexHandle h, void* m) { return OrmidexGetGreenGain(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetHardwareVersion", [](OrmidexHandle h, void* m) { return OrmidexGetHardwareVersion(h, static_cast<OrmidexHardwareVersion*>(m)); }},
    {"OrmidexGetImageFlip", [](OrmidexHandle h, void* m) { return OrmidexGetImageFlip(h, static_cast<OrmidexUInt32*>(m), static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetImagerChipId", [](OrmidexHandle h, void* m) { return OrmidexGetImagerChipId(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetImagerClocking", [](OrmidexHandle h, void* m) { return OrmidexGetImagerClocking(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetImagerName", [](OrmidexHandle h, void* m) { return OrmidexGetImagerName(h, static_cast<char*>(m)); }},
    {"OrmidexGetImagerType", [](OrmidexHandle h, void* m) { return OrmidexGetImagerType(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetLightSource", [](OrmidexHandle h, void* m) { return OrmidexGetLightSource(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetLockValue", [](OrmidexHandle h, void* m) { return OrmidexGetLockValue(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetMaxExposureTime", [](OrmidexHandle h, void* m) { return OrmidexGetMaxExposureTime(h, 1, 2, 2, 0, 1.0f, static_cast<float*>(m)); }},
    {"OrmidexGetMonoGain", [](OrmidexHandle h, void* m) { return OrmidexGetMonoGain(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetPreviewWindowPos", [](OrmidexHandle h, void* m) { return OrmidexGetPreviewWindowPos(h, static_cast<OrmidexUInt32*>(m), static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetPreviewWindowSize", [](OrmidexHandle h, void* m) { return OrmidexGetPreviewWindowSize(h, static_cast<OrmidexUInt32*>(m), static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetRedGain", [](OrmidexHandle h, void* m) { return OrmidexGetRedGain(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetSaturation", [](OrmidexHandle h, void* m) { return OrmidexGetSaturation(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetSerialNumber", [](OrmidexHandle h, void* m) { return OrmidexGetSerialNumber(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetSoftwareVersion", [](OrmidexHandle h, void* m) { return OrmidexGetSoftwareVersion(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetSubWindow", [](OrmidexHandle h, void* m) { return OrmidexGetSubWindow(h, static_cast<OrmidexUInt32*>(m), static_cast<OrmidexUInt32*>(m), static_cast<OrmidexUInt32*>(m), static_cast<OrmidexUInt32*>(m), static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetSubWindowPos", [](OrmidexHandle h, void* m) { return OrmidexGetSubWindowPos(h, static_cast<OrmidexUInt32*>(m), static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetSubWindowSize", [](OrmidexHandle h, void* m) { return OrmidexGetSubWindowSize(h, static_cast<OrmidexUInt32*>(m), static_cast<OrmidexUInt32*>(m), static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetTimeout", [](OrmidexHandle h, void* m) { return OrmidexGetTimeout(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexGetVideoMode", [](OrmidexHandle h, void* m) { return OrmidexGetVideoMode(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexI2cRead", [](OrmidexHandle h, void* m) { return OrmidexI2cRead(h, 0, static_cast<const OrmidexUInt8*>(m), 0, static_cast<OrmidexUInt8*>(m), 0); }},
    {"OrmidexI2cWrite", [](OrmidexHandle h, void* m) { return OrmidexI2cWrite(h, 0, static_cast<const OrmidexUInt8*>(m), 1); }},
    {"OrmidexImageFlip", [](OrmidexHandle h, void*) { return OrmidexImageFlip(h, 0, 0); }},
    {"OrmidexIsExtOscillator", [](OrmidexHandle h, void* m) { return OrmidexIsExtOscillator(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexPausePreview", [](OrmidexHandle h, void*) { return OrmidexPausePreview(h, 0); }},
    {"OrmidexPauseVideoStream", [](OrmidexHandle h, void*) { return OrmidexPauseVideoStream(h, 0); }},
    {"OrmidexReadCommand", [](OrmidexHandle h, void* m) { return OrmidexReadCommand(h, static_cast<OrmidexUInt8*>(m), 1); }},
    {"OrmidexReadExtI2CRegister", [](OrmidexHandle h, void* m) { return OrmidexReadExtI2CRegister(h, 0, 0, static_cast<OrmidexUInt8*>(m)); }},
    {"OrmidexReadGpio", [](OrmidexHandle h, void* m) { return OrmidexReadGpio(h, static_cast<OrmidexUInt32*>(m)); }},
    {"OrmidexReadMultRegister", [](OrmidexHandle h, void* m) { return OrmidexReadMultRegister(h, 0, 1, static_cast<OrmidexUInt8*>(m)); }},
    {"OrmidexReadRegister", [](OrmidexHandle h, void* m) { return OrmidexReadRegister(h, 0, static_cast<OrmidexUInt8*>(m)); }},
    {"OrmidexRequestContinuousAutoExposure", [](OrmidexHandle h, void*) { return OrmidexRequestContinuousAutoExposure(h, 0, 0); }},
    {"OrmidexResetPreviewWindow", [](OrmidexHandle h, void*) { return OrmidexResetPreviewWindow(h); }},
    {"OrmidexReturnFrameAfterTrigger", [](OrmidexHandle h, void* m) { return OrmidexReturnFrameAfterTrigger(h, 1.0f, 0, 1.0f, 0, 1.0f, 1.0f, nullptr, 0, m, m, 1); }},
    {"OrmidexReturnStillFrame", [](OrmidexHandle h, void* m) { return OrmidexReturnStillFrame(h, m, 1.0f, 0, 1.0f, 0, 1.0f, 1.0f); }},
    {"OrmidexReturnVideoData", [](OrmidexHandle h, void* m) { return OrmidexReturnVideoData(h, 0, m); }},
    {"OrmidexSaveFrameAsBitmap", [](OrmidexHandle h, void* m) { return OrmidexSaveFrameAsBitmap(h, m, kNoSuchPath); }},
    {"OrmidexSaveFrameAsJpeg", [](OrmidexHandle h, void* m) { return OrmidexSaveFrameAsJpeg(h, m, kNoSuchPath); }},
    {"OrmidexSaveFrameAsMono16", [](OrmidexHandle h, void* m) { return OrmidexSaveFrameAsMono16(h, m, kNoSuchPath); }},
    {"OrmidexSaveFrameAsMono8", [](OrmidexHandle h, void* m) { return OrmidexSaveFrameAsMono8(h, m, kNoSuchPath); }},
    {"OrmidexSaveFrameAsTiff", [](OrmidexHandle h, void* m) { return OrmidexSaveFrameAsTiff(h, m, kNoSuchPath, 0, 0, 1); }},
    {"OrmidexSetBlueGain", [](OrmidexHandle h, void*) { return OrmidexSetBlueGain(h, 0); }},
    {"OrmidexSetDataTransferSize", [](OrmidexHandle h, void*) { return OrmidexSetDataTransferSize(h, 8); }},
    {"OrmidexSetExposure", [](OrmidexHandle h, void*) { return OrmidexSetExposure(h, 0); }},
    {"OrmidexSetExposureGain", [](OrmidexHandle h, void*) { return OrmidexSetExposureGain(h, 1.0f); }},
    {"OrmidexSetExposureTime", [](OrmidexHandle h, void*) { return OrmidexSetExposureTime(h, 1.0f, 0); }},
    {"OrmidexSetGamma", [](OrmidexHandle h, void*) { return OrmidexSetGamma(h, 1.0f); }},
    {"OrmidexSetGpo", [](OrmidexHandle h, void*) { return OrmidexSetGpo(h, 0, 1.0f, 1); }},
    {"OrmidexSetGreenGain", [](OrmidexHandle h, void*) { return OrmidexSetGreenGain(h, 0); }},
    {"OrmidexSetImagerClocking", [](OrmidexHandle h, void*) { return OrmidexSetImagerClocking(h, 0); }},
    {"OrmidexSetImagerName", [](OrmidexHandle h, void* m) { return OrmidexSetImagerName(h, static_cast<const char*>(m)); }},
    {"OrmidexSetLightSource", [](OrmidexHandle h, void*) { return OrmidexSetLightSource(h, 1); }},
    {"OrmidexSetMonoGain", [](OrmidexHandle h, void*) { return OrmidexSetMonoGain(h, 0); }},
    {"OrmidexSetOverlayCallBack", [](OrmidexHandle h, void*) { return OrmidexSetOverlayCallBack(h, 0, 0, nullptr); }},
    {"OrmidexSetPreviewColorConversion", [](OrmidexHandle h, void*) { return OrmidexSetPreviewColorConversion(h, 1); }},
    {"OrmidexSetPreviewWindow", [](OrmidexHandle h, void* m) { return OrmidexSetPreviewWindow(h, static_cast<const OrmidexRect*>(m)); }},
    {"OrmidexSetRedGain", [](OrmidexHandle h, void*) { return OrmidexSetRedGain(h, 0); }},
    {"OrmidexSetSaturation", [](OrmidexHandle h, void*) { return OrmidexSetSaturation(h, 0); }},
    {"OrmidexSetSubWindow", [](OrmidexHandle h, void*) { return OrmidexSetSubWindow(h, 1, 0, 0, 2, 2); }},
    {"OrmidexSetSubWindowPos", [](OrmidexHandle h, void*) { return OrmidexSetSubWindowPos(h, 0, 0); }},
    {"OrmidexSetSubWindowSize", [](OrmidexHandle h, void*) { return OrmidexSetSubWindowSize(h, 1, 2, 2); }},
    {"OrmidexSetTimeout", [](OrmidexHandle h, void*) { return OrmidexSetTimeout(h, 0); }},
    {"OrmidexSetVideoMode", [](OrmidexHandle h, void*) { return OrmidexSetVideoMode(h, 0); }},
    {"OrmidexStartPreview", [](OrmidexHandle h, void* m) { return OrmidexStartPreview(h, static_cast<const char*>(m), 0, 0, 0, 2, 2, m, 0, 0, 0); }},
    {"OrmidexStartVideoStream", [](OrmidexHandle h, void*) { return OrmidexStartVideoStream(h); }},
    {"OrmidexStopPreview", [](OrmidexHandle h, void*) { return OrmidexStopPreview(h); }},
    {"OrmidexStopTriggerMode", [](OrmidexHandle h, void*) { return OrmidexStopTriggerMode(h); }},
    {"OrmidexStopVideoStream", [](OrmidexHandle h, void*) { return OrmidexStopVideoStream(h); }},
    {"OrmidexWhiteBalance", [](OrmidexHandle h, void*) { return OrmidexWhiteBalance(h, 0, 0, 0, 2, 2, 0, 0, 0); }},
    {"OrmidexWriteCommand", [](OrmidexHandle h, void* m) { return OrmidexWriteCommand(h, static_cast<const OrmidexUInt8*>(m), 1); }},
    {"OrmidexWriteExtI2CRegister", [](OrmidexHandle h, void*) { return OrmidexWriteExtI2CRegister(h, 0, 0, 0); }},
    {"OrmidexWriteGpio", [](OrmidexHandle h, void*) { return OrmidexWriteGpio(h, 0); }},
    {"OrmidexWriteMultRegister", [](OrmidexHandle h, void* m) { return OrmidexWriteMultRegister(h, 0, 1, static_cast<const OrmidexUInt8*>(m), 0); }},
    {"OrmidexWriteRegister", [](OrmidexHandle h, void*) { return OrmidexWriteRegister(h, 0, 0, 0); }},
};
// clang-format on

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_FRAME_EVERY_EXPORT_H_
