// Exported functions: exposure, gains, geometry and the automatic controls.
#include "frame/entry.h"

using ormidex::device::CameraSession;
using ormidex::frame::CallSession;

// ---- Exposure and clocking

ORMIDEX_ENTRY OrmidexGetExposure(OrmidexHandle handle, OrmidexUInt32* exposure) {
  return CallSession(&CameraSession::GetExposure, handle, exposure);
}

ORMIDEX_ENTRY OrmidexSetExposure(OrmidexHandle handle, OrmidexUInt32 exposure) {
  return CallSession(&CameraSession::SetExposure, handle, exposure);
}

ORMIDEX_ENTRY OrmidexGetExposureTime(OrmidexHandle handle, float* milliseconds) {
  return CallSession(&CameraSession::GetExposureTime, handle, milliseconds);
}

ORMIDEX_ENTRY OrmidexSetExposureTime(OrmidexHandle handle, float milliseconds,
                                     OrmidexUInt32 adjustClock) {
  return CallSession(&CameraSession::SetExposureTime, handle, milliseconds, adjustClock);
}

ORMIDEX_ENTRY OrmidexGetMaxExposureTime(OrmidexHandle handle, OrmidexUInt32 subSampling,
                                        OrmidexUInt32 width, OrmidexUInt32 height,
                                        OrmidexUInt32 clocking, float frameRate,
                                        float* milliseconds) {
  return CallSession(&CameraSession::GetMaxExposureTime, handle, subSampling, width, height,
                     clocking, frameRate, milliseconds);
}

ORMIDEX_ENTRY OrmidexGetExposureGain(OrmidexHandle handle, float* gain) {
  return CallSession(&CameraSession::GetExposureGain, handle, gain);
}

ORMIDEX_ENTRY OrmidexSetExposureGain(OrmidexHandle handle, float gain) {
  return CallSession(&CameraSession::SetExposureGain, handle, gain);
}

ORMIDEX_ENTRY OrmidexGetImagerClocking(OrmidexHandle handle, OrmidexUInt32* clocking) {
  return CallSession(&CameraSession::GetImagerClocking, handle, clocking);
}

ORMIDEX_ENTRY OrmidexSetImagerClocking(OrmidexHandle handle, OrmidexUInt32 clocking) {
  return CallSession(&CameraSession::SetImagerClocking, handle, clocking);
}

ORMIDEX_ENTRY OrmidexGetCurrentFrameRate(OrmidexHandle handle, OrmidexUInt32* rate) {
  return CallSession(&CameraSession::GetCurrentFrameRate, handle, rate);
}

// ---- Gains, gamma, saturation, light source, automatic control

ORMIDEX_ENTRY OrmidexGetRedGain(OrmidexHandle handle, OrmidexUInt32* gain) {
  return CallSession(&CameraSession::GetRedGain, handle, gain);
}

ORMIDEX_ENTRY OrmidexSetRedGain(OrmidexHandle handle, OrmidexUInt32 gain) {
  return CallSession(&CameraSession::SetRedGain, handle, gain);
}

ORMIDEX_ENTRY OrmidexGetGreenGain(OrmidexHandle handle, OrmidexUInt32* gain) {
  return CallSession(&CameraSession::GetGreenGain, handle, gain);
}

ORMIDEX_ENTRY OrmidexSetGreenGain(OrmidexHandle handle, OrmidexUInt32 gain) {
  return CallSession(&CameraSession::SetGreenGain, handle, gain);
}

ORMIDEX_ENTRY OrmidexGetBlueGain(OrmidexHandle handle, OrmidexUInt32* gain) {
  return CallSession(&CameraSession::GetBlueGain, handle, gain);
}

ORMIDEX_ENTRY OrmidexSetBlueGain(OrmidexHandle handle, OrmidexUInt32 gain) {
  return CallSession(&CameraSession::SetBlueGain, handle, gain);
}

ORMIDEX_ENTRY OrmidexGetMonoGain(OrmidexHandle handle, OrmidexUInt32* gain) {
  return CallSession(&CameraSession::GetMonoGain, handle, gain);
}

ORMIDEX_ENTRY OrmidexSetMonoGain(OrmidexHandle handle, OrmidexUInt32 gain) {
  return CallSession(&CameraSession::SetMonoGain, handle, gain);
}

ORMIDEX_ENTRY OrmidexGetGamma(OrmidexHandle handle, float* gamma) {
  return CallSession(&CameraSession::GetGamma, handle, gamma);
}

ORMIDEX_ENTRY OrmidexSetGamma(OrmidexHandle handle, float gamma) {
  return CallSession(&CameraSession::SetGamma, handle, gamma);
}

ORMIDEX_ENTRY OrmidexGetSaturation(OrmidexHandle handle, OrmidexUInt32* saturation) {
  return CallSession(&CameraSession::GetSaturation, handle, saturation);
}

ORMIDEX_ENTRY OrmidexSetSaturation(OrmidexHandle handle, OrmidexUInt32 saturation) {
  return CallSession(&CameraSession::SetSaturation, handle, saturation);
}

ORMIDEX_ENTRY OrmidexGetLightSource(OrmidexHandle handle, OrmidexUInt32* source) {
  return CallSession(&CameraSession::GetLightSource, handle, source);
}

ORMIDEX_ENTRY OrmidexSetLightSource(OrmidexHandle handle, OrmidexUInt32 source) {
  return CallSession(&CameraSession::SetLightSource, handle, source);
}

ORMIDEX_ENTRY OrmidexAutoExposure(OrmidexHandle handle, OrmidexUInt32 targetPercent,
                                  OrmidexUInt32 useRectangle, OrmidexUInt32 left, OrmidexUInt32 top,
                                  OrmidexUInt32 width, OrmidexUInt32 height) {
  return CallSession(&CameraSession::AutoExposure, handle, targetPercent, useRectangle, left, top,
                     width, height);
}

// The result is dropped, deliberately: applications ask every camera for it, also
// those that cannot do it, and would take a failure for a lost camera.
ORMIDEX_ENTRY OrmidexRequestContinuousAutoExposure(OrmidexHandle handle, OrmidexUInt32 mode,
                                                   OrmidexUInt32 parameter) {
  if (handle == nullptr) return ORMIDEX_NO_CAMERA;
  CallSession(&CameraSession::RequestContinuousAutoExposure, handle, mode, parameter);
  return ORMIDEX_OK;
}

ORMIDEX_ENTRY OrmidexWhiteBalance(OrmidexHandle handle, OrmidexUInt32 useRectangle,
                                  OrmidexUInt32 left, OrmidexUInt32 top, OrmidexUInt32 width,
                                  OrmidexUInt32 height, OrmidexUInt32 red, OrmidexUInt32 green,
                                  OrmidexUInt32 blue) {
  return CallSession(&CameraSession::WhiteBalance, handle, useRectangle, left, top, width, height,
                     red, green, blue);
}

// ---- Frame geometry, video mode, transfer size

ORMIDEX_ENTRY OrmidexGetSubWindow(OrmidexHandle handle, OrmidexUInt32* subSampling,
                                  OrmidexUInt32* column, OrmidexUInt32* row, OrmidexUInt32* width,
                                  OrmidexUInt32* height) {
  return CallSession(&CameraSession::GetSubWindow, handle, subSampling, column, row, width, height);
}

ORMIDEX_ENTRY OrmidexSetSubWindow(OrmidexHandle handle, OrmidexUInt32 subSampling,
                                  OrmidexUInt32 column, OrmidexUInt32 row, OrmidexUInt32 width,
                                  OrmidexUInt32 height) {
  return CallSession(&CameraSession::SetSubWindow, handle, subSampling, column, row, width, height);
}

ORMIDEX_ENTRY OrmidexGetSubWindowPos(OrmidexHandle handle, OrmidexUInt32* column,
                                     OrmidexUInt32* row) {
  return CallSession(&CameraSession::GetSubWindowPos, handle, column, row);
}

ORMIDEX_ENTRY OrmidexSetSubWindowPos(OrmidexHandle handle, OrmidexUInt32 column,
                                     OrmidexUInt32 row) {
  return CallSession(&CameraSession::SetSubWindowPos, handle, column, row);
}

ORMIDEX_ENTRY OrmidexGetSubWindowSize(OrmidexHandle handle, OrmidexUInt32* subSampling,
                                      OrmidexUInt32* width, OrmidexUInt32* height) {
  return CallSession(&CameraSession::GetSubWindowSize, handle, subSampling, width, height);
}

ORMIDEX_ENTRY OrmidexSetSubWindowSize(OrmidexHandle handle, OrmidexUInt32 subSampling,
                                      OrmidexUInt32 width, OrmidexUInt32 height) {
  return CallSession(&CameraSession::SetSubWindowSize, handle, subSampling, width, height);
}

ORMIDEX_ENTRY OrmidexGetVideoMode(OrmidexHandle handle, OrmidexUInt32* mode) {
  return CallSession(&CameraSession::GetVideoMode, handle, mode);
}

ORMIDEX_ENTRY OrmidexSetVideoMode(OrmidexHandle handle, OrmidexUInt32 mode) {
  return CallSession(&CameraSession::SetVideoMode, handle, mode);
}

ORMIDEX_ENTRY OrmidexGetDataTransferSize(OrmidexHandle handle, OrmidexUInt32* bits) {
  return CallSession(&CameraSession::GetDataTransferSize, handle, bits);
}

ORMIDEX_ENTRY OrmidexSetDataTransferSize(OrmidexHandle handle, OrmidexUInt32 bits) {
  return CallSession(&CameraSession::SetDataTransferSize, handle, bits);
}

ORMIDEX_ENTRY OrmidexGetImageFlip(OrmidexHandle handle, OrmidexUInt32* horizontal,
                                  OrmidexUInt32* vertical) {
  return CallSession(&CameraSession::GetImageFlip, handle, horizontal, vertical);
}

ORMIDEX_ENTRY OrmidexImageFlip(OrmidexHandle handle, OrmidexInt32 horizontal,
                               OrmidexInt32 vertical) {
  return CallSession(&CameraSession::ImageFlip, handle, horizontal, vertical);
}
