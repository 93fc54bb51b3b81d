// Exported functions: streaming, still and triggered capture, and the command channel.
#include "frame/entry.h"

using ormidex::device::CameraSession;
using ormidex::frame::CallSession;

// ---- Streaming

ORMIDEX_ENTRY OrmidexStartVideoStream(OrmidexHandle handle) {
  return CallSession(&CameraSession::StartVideoStream, handle);
}

ORMIDEX_ENTRY OrmidexStopVideoStream(OrmidexHandle handle) {
  return CallSession(&CameraSession::StopVideoStream, handle);
}

ORMIDEX_ENTRY OrmidexPauseVideoStream(OrmidexHandle handle, OrmidexUInt32 pause) {
  return CallSession(&CameraSession::PauseVideoStream, handle, pause);
}

ORMIDEX_ENTRY OrmidexReturnVideoData(OrmidexHandle handle, OrmidexUInt32 size, void* buffer) {
  return CallSession(&CameraSession::ReturnVideoData, handle, size, buffer);
}

ORMIDEX_ENTRY OrmidexFlushVideoData(OrmidexHandle handle) {
  return CallSession(&CameraSession::FlushVideoData, handle);
}

// ---- Still and triggered capture

ORMIDEX_ENTRY OrmidexReturnStillFrame(OrmidexHandle handle, void* buffer, float exposure,
                                      OrmidexUInt32 useFirstOutput, float firstOutputTime,
                                      OrmidexUInt32 useSecondOutput, float secondOutputTimeA,
                                      float secondOutputTimeB) {
  return CallSession(&CameraSession::ReturnStillFrame, handle, buffer, exposure, useFirstOutput,
                     firstOutputTime, useSecondOutput, secondOutputTimeA, secondOutputTimeB);
}

ORMIDEX_ENTRY OrmidexReturnFrameAfterTrigger(OrmidexHandle handle, float exposure,
                                             OrmidexUInt32 useFirstOutput, float firstOutputTime,
                                             OrmidexUInt32 useSecondOutput, float secondOutputTimeA,
                                             float secondOutputTimeB,
                                             OrmidexTriggerCallback callback, OrmidexUInt32 convert,
                                             void* raw, void* output, OrmidexUInt32 algorithm) {
  return CallSession(&CameraSession::ReturnFrameAfterTrigger, handle, exposure, useFirstOutput,
                     firstOutputTime, useSecondOutput, secondOutputTimeA, secondOutputTimeB,
                     callback, convert, raw, output, algorithm);
}

ORMIDEX_ENTRY OrmidexStopTriggerMode(OrmidexHandle handle) {
  return CallSession(&CameraSession::StopTriggerMode, handle);
}

// ---- Command channel

ORMIDEX_ENTRY OrmidexReadCommand(OrmidexHandle handle, OrmidexUInt8* buffer, OrmidexUInt32 count) {
  return CallSession(&CameraSession::ReadCommand, handle, buffer, count);
}

ORMIDEX_ENTRY OrmidexWriteCommand(OrmidexHandle handle, const OrmidexUInt8* buffer,
                                  OrmidexUInt32 count) {
  return CallSession(&CameraSession::WriteCommand, handle, const_cast<OrmidexUInt8*>(buffer),
                     count);
}
