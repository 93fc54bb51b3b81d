// Exported functions: identity, registers, serial bus, I/O lines and driver settings.
#include "frame/entry.h"

using ormidex::device::CameraSession;
using ormidex::frame::CallSession;

// ---- Identity

ORMIDEX_ENTRY OrmidexGetSerialNumber(OrmidexHandle handle, OrmidexUInt32* serial) {
  return CallSession(&CameraSession::GetSerialNumber, handle, serial);
}

ORMIDEX_ENTRY OrmidexGetSoftwareVersion(OrmidexHandle handle, OrmidexUInt32* version) {
  return CallSession(&CameraSession::GetSoftwareVersion, handle, version);
}

ORMIDEX_ENTRY OrmidexGetHardwareVersion(OrmidexHandle handle, OrmidexHardwareVersion* info) {
  return CallSession(&CameraSession::GetHardwareVersion, handle, info);
}

ORMIDEX_ENTRY OrmidexGetImagerType(OrmidexHandle handle, OrmidexUInt32* type) {
  return CallSession(&CameraSession::GetImagerType, handle, type);
}

ORMIDEX_ENTRY OrmidexGetImagerName(OrmidexHandle handle, char* name) {
  return CallSession(&CameraSession::GetImagerName, handle, name);
}

ORMIDEX_ENTRY OrmidexSetImagerName(OrmidexHandle handle, const char* name) {
  return CallSession(&CameraSession::SetImagerName, handle, name);
}

ORMIDEX_ENTRY OrmidexGetImagerChipId(OrmidexHandle handle, OrmidexUInt32* id) {
  return CallSession(&CameraSession::GetImagerChipId, handle, id);
}

ORMIDEX_ENTRY OrmidexGetLockValue(OrmidexHandle handle, OrmidexUInt32* value) {
  return CallSession(&CameraSession::GetLockValue, handle, value);
}

ORMIDEX_ENTRY OrmidexIsExtOscillator(OrmidexHandle handle, OrmidexUInt32* isExternal) {
  return CallSession(&CameraSession::IsExtOscillator, handle, isExternal);
}

// ---- Registers, serial bus, I/O lines, driver

ORMIDEX_ENTRY OrmidexReadRegister(OrmidexHandle handle, OrmidexUInt32 address,
                                  OrmidexUInt8* value) {
  return CallSession(&CameraSession::ReadRegister, handle, address, value);
}

ORMIDEX_ENTRY OrmidexWriteRegister(OrmidexHandle handle, OrmidexUInt32 address, OrmidexUInt8 value,
                                   OrmidexUInt32 asynchronous) {
  return CallSession(&CameraSession::WriteRegister, handle, address, value, asynchronous);
}

ORMIDEX_ENTRY OrmidexReadMultRegister(OrmidexHandle handle, OrmidexUInt32 address,
                                      OrmidexUInt32 count, OrmidexUInt8* values) {
  return CallSession(&CameraSession::ReadMultRegister, handle, address, count, values);
}

ORMIDEX_ENTRY OrmidexWriteMultRegister(OrmidexHandle handle, OrmidexUInt32 address,
                                       OrmidexUInt32 count, const OrmidexUInt8* values,
                                       OrmidexUInt32 asynchronous) {
  return CallSession(&CameraSession::WriteMultRegister, handle, address, count, values,
                     asynchronous);
}

ORMIDEX_ENTRY OrmidexReadExtI2CRegister(OrmidexHandle handle, OrmidexUInt32 busAddress,
                                        OrmidexUInt32 address, OrmidexUInt8* value) {
  return CallSession(&CameraSession::ReadExtI2CRegister, handle, busAddress, address, value);
}

ORMIDEX_ENTRY OrmidexWriteExtI2CRegister(OrmidexHandle handle, OrmidexUInt32 busAddress,
                                         OrmidexUInt32 address, OrmidexUInt8 value) {
  return CallSession(&CameraSession::WriteExtI2CRegister, handle, busAddress, address, value);
}

ORMIDEX_ENTRY OrmidexI2cRead(OrmidexHandle handle, OrmidexUInt8 deviceAddress,
                             const OrmidexUInt8* writeData, OrmidexInt32 writeCount,
                             OrmidexUInt8* readData, OrmidexInt32 readCount) {
  return CallSession(&CameraSession::I2cRead, handle, deviceAddress, writeData, writeCount,
                     readData, readCount);
}

ORMIDEX_ENTRY OrmidexI2cWrite(OrmidexHandle handle, OrmidexUInt8 deviceAddress,
                              const OrmidexUInt8* data, OrmidexUInt32 count) {
  return CallSession(&CameraSession::I2cWrite, handle, deviceAddress, data, count);
}

ORMIDEX_ENTRY OrmidexReadGpio(OrmidexHandle handle, OrmidexUInt32* value) {
  return CallSession(&CameraSession::ReadGpio, handle, value);
}

ORMIDEX_ENTRY OrmidexWriteGpio(OrmidexHandle handle, OrmidexUInt32 value) {
  return CallSession(&CameraSession::WriteGpio, handle, value);
}

ORMIDEX_ENTRY OrmidexGetGpo(OrmidexHandle handle, OrmidexUInt32* level, OrmidexUInt32 line) {
  return CallSession(&CameraSession::GetGpo, handle, level, line);
}

ORMIDEX_ENTRY OrmidexSetGpo(OrmidexHandle handle, OrmidexUInt32 level, float duration,
                            OrmidexUInt32 line) {
  return CallSession(&CameraSession::SetGpo, handle, level, duration, line);
}

ORMIDEX_ENTRY OrmidexGetFrameNumber(OrmidexHandle handle, OrmidexUInt8* frame,
                                    OrmidexUInt32 counters[2]) {
  return CallSession(&CameraSession::GetFrameNumber, handle, frame, counters);
}

ORMIDEX_ENTRY OrmidexSetTimeout(OrmidexHandle handle, OrmidexUInt32 timeout) {
  return CallSession(&CameraSession::SetTimeout, handle, timeout);
}

ORMIDEX_ENTRY OrmidexGetTimeout(OrmidexHandle handle, OrmidexUInt32* timeout) {
  return CallSession(&CameraSession::GetTimeout, handle, timeout);
}
