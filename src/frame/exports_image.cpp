// Exported functions: conversion, the live preview and image files.
#include "frame/entry.h"

using ormidex::device::CameraSession;
using ormidex::frame::CallSession;

namespace {

// The internal operation also takes images of 48 bits.
constexpr std::uint32_t k24BitImage = 0;

}  // namespace

// ---- Conversion

ORMIDEX_ENTRY OrmidexConvertColor8BppTo24Bpp(OrmidexHandle handle, const void* source,
                                             OrmidexUInt32 width, OrmidexUInt32 height,
                                             void* destination, OrmidexUInt32 algorithm) {
  return CallSession(&CameraSession::ConvertColor8BppTo24Bpp, handle, source, width, height,
                     destination, algorithm);
}

ORMIDEX_ENTRY OrmidexConvertColor16BppTo24Bpp(OrmidexHandle handle, const void* source,
                                              OrmidexUInt32 width, OrmidexUInt32 height,
                                              void* destination, OrmidexUInt32 algorithm) {
  return CallSession(&CameraSession::ConvertColor16BppTo24Bpp, handle, source, width, height,
                     destination, algorithm);
}

ORMIDEX_ENTRY OrmidexConvertColor16BppTo48Bpp(OrmidexHandle handle, const void* source,
                                              OrmidexUInt32 width, OrmidexUInt32 height,
                                              void* destination, OrmidexUInt32 algorithm) {
  return CallSession(&CameraSession::ConvertColor16BppTo48Bpp, handle, source, width, height,
                     destination, algorithm);
}

ORMIDEX_ENTRY OrmidexConvertMono8BppTo24Bpp(OrmidexHandle handle, const void* source,
                                            OrmidexUInt32 width, OrmidexUInt32 height,
                                            void* destination) {
  return CallSession(&CameraSession::ConvertMono8BppTo24Bpp, handle, source, width, height,
                     destination);
}

ORMIDEX_ENTRY OrmidexConvertMono16BppTo24Bpp(OrmidexHandle handle, const void* source,
                                             OrmidexUInt32 width, OrmidexUInt32 height,
                                             void* destination) {
  return CallSession(&CameraSession::ConvertMono16BppTo24Bpp, handle, source, width, height,
                     destination);
}

ORMIDEX_ENTRY OrmidexColorCorrectRgb(OrmidexHandle handle, OrmidexUInt32 width,
                                     OrmidexUInt32 height, void* image, OrmidexInt32 amount) {
  return CallSession(&CameraSession::ColorCorrectRgb, handle, width, height, image, amount,
                     k24BitImage);
}

// ---- Live preview

// Two arguments more than it needs: existing applications push eleven.
ORMIDEX_ENTRY OrmidexStartPreview(OrmidexHandle handle, const char* title, OrmidexUInt32 style,
                                  OrmidexUInt32 x, OrmidexUInt32 y, OrmidexUInt32 width,
                                  OrmidexUInt32 height, void* parent, OrmidexUInt32 childId,
                                  OrmidexUInt32, OrmidexUInt32) {
  return CallSession(&CameraSession::StartPreview, handle, title, style, x, y, width, height,
                     parent, childId);
}

ORMIDEX_ENTRY OrmidexStopPreview(OrmidexHandle handle) {
  return CallSession(&CameraSession::StopPreview, handle);
}

ORMIDEX_ENTRY OrmidexPausePreview(OrmidexHandle handle, OrmidexUInt32 suspend) {
  return CallSession(&CameraSession::PausePreview, handle, suspend);
}

ORMIDEX_ENTRY OrmidexSetPreviewColorConversion(OrmidexHandle handle, OrmidexUInt32 algorithm) {
  return CallSession(&CameraSession::SetPreviewColorConversion, handle, algorithm);
}

ORMIDEX_ENTRY OrmidexGetPreviewWindowPos(OrmidexHandle handle, OrmidexUInt32* x, OrmidexUInt32* y) {
  return CallSession(&CameraSession::GetPreviewWindowPos, handle, x, y);
}

ORMIDEX_ENTRY OrmidexGetPreviewWindowSize(OrmidexHandle handle, OrmidexUInt32* width,
                                          OrmidexUInt32* height) {
  return CallSession(&CameraSession::GetPreviewWindowSize, handle, width, height);
}

ORMIDEX_ENTRY OrmidexSetPreviewWindow(OrmidexHandle handle, const OrmidexRect* rectangle) {
  return CallSession(&CameraSession::SetPreviewWindow, handle, rectangle);
}

ORMIDEX_ENTRY OrmidexResetPreviewWindow(OrmidexHandle handle) {
  return CallSession(&CameraSession::ResetPreviewWindow, handle);
}

ORMIDEX_ENTRY OrmidexSetOverlayCallBack(OrmidexHandle handle, OrmidexUInt32 forPreview,
                                        OrmidexUInt32 forSaving, OrmidexOverlayCallback callback) {
  return CallSession(&CameraSession::SetOverlayCallBack, handle, forPreview, forSaving, callback);
}

// ---- Files

ORMIDEX_ENTRY OrmidexSaveFrameAsBitmap(OrmidexHandle handle, void* image, const char* path) {
  return CallSession(&CameraSession::SaveFrameAsBitmap, handle, image, path);
}

ORMIDEX_ENTRY OrmidexSaveFrameAsMono8(OrmidexHandle handle, void* frame, const char* path) {
  return CallSession(&CameraSession::SaveFrameAsMono8, handle, frame, path);
}

ORMIDEX_ENTRY OrmidexSaveFrameAsMono16(OrmidexHandle handle, void* frame, const char* path) {
  return CallSession(&CameraSession::SaveFrameAsMono16, handle, frame, path);
}

ORMIDEX_ENTRY OrmidexSaveFrameAsTiff(OrmidexHandle handle, const void* frame, const char* path,
                                     OrmidexUInt32 correctColor, OrmidexInt32 amount,
                                     OrmidexUInt32 algorithm) {
  return CallSession(&CameraSession::SaveFrameAsTiff, handle, frame, path, correctColor, amount,
                     algorithm);
}

ORMIDEX_ENTRY OrmidexSaveFrameAsJpeg(OrmidexHandle handle, const void* image, const char* path) {
  return CallSession(&CameraSession::SaveFrameAsJpeg, handle, image, path);
}

ORMIDEX_ENTRY OrmidexCaptureFrameToBitmap(
    OrmidexHandle handle, float exposure, OrmidexUInt32 useFirstOutput,
    OrmidexUInt32 firstOutputTime, OrmidexUInt32 useSecondOutput, OrmidexUInt32 secondOutputTimeA,
    OrmidexUInt32 secondOutputTimeB, const char* path, OrmidexUInt32 correctColor,
    OrmidexInt32 amount, OrmidexUInt32 algorithm) {
  return CallSession(&CameraSession::CaptureFrameToBitmap, handle, exposure, useFirstOutput,
                     firstOutputTime, useSecondOutput, secondOutputTimeA, secondOutputTimeB, path,
                     correctColor, amount, algorithm);
}
