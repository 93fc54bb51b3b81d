/**
 * @file
 * Ormidex: control of CMOS cameras on an IEEE 1394 bus.
 *
 * This header is the whole interface. It needs nothing else, and compiles as
 * C89, C++98 and everything later.
 *
 * A first picture, error handling left out:
 *
 *     OrmidexHandle camera;
 *     OrmidexInitialize("", 0, &camera);
 *     OrmidexStartVideoStream(camera);
 *     OrmidexReturnVideoData(camera, 640 * 480, frame);
 *     OrmidexConvertColor8BppTo24Bpp(camera, frame, 640, 480, image, 1);
 *     OrmidexSaveFrameAsBitmap(camera, image, "first.bmp");
 *     OrmidexUninitialize(&camera);
 *
 * Conventions
 *
 * Status. Every function returns a status, ORMIDEX_OK for success. Checks run
 * in a fixed order and the first that fails decides. The lists below name every
 * status a function can return. Unless a function says otherwise, a failure
 * leaves its outputs untouched.
 *
 * The driver's answer. Some requests bring back a status of the camera driver's
 * own. It reaches the caller as ORMIDEX_OK, ORMIDEX_NO_CAMERA,
 * ORMIDEX_CAMERA_NOT_FOUND, ORMIDEX_OUT_OF_RANGE, ORMIDEX_NOT_SUPPORTED,
 * ORMIDEX_DRIVER_CONDITION or, for any answer unknown to the library,
 * ORMIDEX_GENERAL_FAILURE. A function that returns "the driver's answer" can
 * return any of these.
 *
 * Pointers. A pointer must not be null unless its function says what null means
 * or lists ORMIDEX_NULL_POINTER for it. Buffers belong to the caller; the
 * library neither resizes nor frees them, keeps none beyond the call unless the
 * function says so, and cannot check that they are as large as stated.
 *
 * Handles. A handle is valid from OrmidexInitialize to OrmidexUninitialize. Only
 * a null handle is recognised as invalid (ORMIDEX_NO_CAMERA); any other stale or
 * foreign value is the caller's error.
 *
 * Threads. Any thread may call any function at any time. OrmidexInitialize,
 * OrmidexUninitialize and OrmidexGetNumberDevices run alone: they wait for the
 * calls in progress and hold off new ones, which may then wait up to 50 ms
 * longer than needed. All other calls run side by side, also on one camera. Do
 * not call the three from within a callback: they would wait for themselves.
 *
 * Camera generations. There are two generations of imager, and several of
 * controller firmware; OrmidexGetHardwareVersion and OrmidexGetSoftwareVersion
 * tell them apart. What one of them lacks returns ORMIDEX_NOT_SUPPORTED.
 *
 * Frames and images. A raw frame is width x height samples, rows from top to
 * bottom without padding. A sample is one byte, or a 16-bit little-endian word
 * whose significant bits are the upper ones. A colour imager's frame is a 2 x 2
 * mosaic. A 24-bit image has 3 bytes a pixel in the order blue, green, red, rows
 * from bottom to top, exactly 3 * width bytes each, without padding. A 48-bit
 * image is the same with 16-bit little-endian words.
 *
 * Speed. Keep image buffers and use them again. A buffer fresh from the system
 * that has never been written costs far more in page faults on its first
 * conversion than the conversion itself.
 */
#ifndef ORMIDEX_H_
#define ORMIDEX_H_

/**
 * @def ORMIDEX_CALL
 * How functions are called: callee-cleans, 4 bytes an argument, on 32-bit Windows.
 */
#if defined(_WIN32) && !defined(_WIN64)
#define ORMIDEX_CALL __stdcall
#else
#define ORMIDEX_CALL
#endif

/**
 * @def ORMIDEX_API
 * A function that the library exports.
 */
#if defined(__GNUC__) && !defined(_WIN32)
#define ORMIDEX_API __attribute__((visibility("default")))
#else
#define ORMIDEX_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** A byte. */
typedef unsigned char OrmidexUInt8;
/** A signed number of 32 bits. */
typedef int OrmidexInt32;
/** An unsigned number of 32 bits. */
typedef unsigned int OrmidexUInt32;

/** An open camera; null when there is none. */
typedef void* OrmidexHandle;

/** What every function returns: one of OrmidexStatusCode. */
typedef OrmidexUInt32 OrmidexStatus;

/** What the functions return. */
enum OrmidexStatusCode {
  /** Success. */
  ORMIDEX_OK = 0,
  /** There is no camera behind the handle, or it could not be opened. */
  ORMIDEX_NO_CAMERA = 1,
  /** A required pointer is null. */
  ORMIDEX_NULL_POINTER = 2,
  /** There is no camera of that index, or its device could not be closed. */
  ORMIDEX_CAMERA_NOT_FOUND = 3,
  /** The system's device enumeration is not available. */
  ORMIDEX_ENUMERATION_FAILED = 4,
  /** The driver failed a request. */
  ORMIDEX_REQUEST_FAILED = 5,
  /** A file could not be opened for writing. */
  ORMIDEX_FILE_NOT_OPENED = 6,
  /** An argument is out of range, or does not fit the others. */
  ORMIDEX_OUT_OF_RANGE = 7,
  /** The camera's imager is not one the library knows. */
  ORMIDEX_IMAGER_NOT_ACCEPTED = 8,
  /** Memory ran out. */
  ORMIDEX_OUT_OF_MEMORY = 9,
  /** An unexpected driver answer, or a thread, event or window that failed. */
  ORMIDEX_GENERAL_FAILURE = 10,
  /** There is no preview window. */
  ORMIDEX_NO_PREVIEW = 11,
  /** This camera, or its firmware, cannot do that. */
  ORMIDEX_NOT_SUPPORTED = 12,
  /** Not in this state: streaming, triggered or video mode does not fit. */
  ORMIDEX_WRONG_STATE = 13,
  /** A condition that only the driver can explain. */
  ORMIDEX_DRIVER_CONDITION = 14,
  /** The operating system is none of the supported ones. */
  ORMIDEX_UNKNOWN_SYSTEM = 15,
  /** An automatic control did not settle within 20 passes. */
  ORMIDEX_NOT_CONVERGED = 16,
  /** A command transfer took longer than one second. */
  ORMIDEX_COMMAND_TIMEOUT = 17,
  /** Success, but the imager clocking had to be slowed down for it. */
  ORMIDEX_CLOCKING_CHANGED = 18
};

/** How a colour frame becomes an image: the `algorithm` of the conversions. */
enum OrmidexAlgorithm {
  /** 2 x 2 cells repeated; fastest. */
  ORMIDEX_REPLICATION = 0,
  /** Bilinear; the only one that follows the mosaic phase of the camera. */
  ORMIDEX_BILINEAR = 1,
  /** Bilinear, green interpolated along edges. */
  ORMIDEX_EDGE_DIRECTED = 2,
  /** Edge-directed green, then red and blue by colour differences. */
  ORMIDEX_EDGE_DIRECTED_DIFFERENCES = 3,
  /** Green by gradients and Laplacians, then colour differences. */
  ORMIDEX_LAPLACIAN_DIFFERENCES = 4,
  /** Variable number of gradients. */
  ORMIDEX_VARIABLE_GRADIENTS = 5,
  /** Grey from green samples, interpolated along rows. */
  ORMIDEX_GREY_HORIZONTAL = 16,
  /** Grey from the green of ORMIDEX_EDGE_DIRECTED. */
  ORMIDEX_GREY_EDGE_DIRECTED = 17,
  /** Grey from the green of ORMIDEX_LAPLACIAN_DIFFERENCES. */
  ORMIDEX_GREY_LAPLACIAN = 18,
  /** Each sample in its own channel, the other two 0. */
  ORMIDEX_RAW_MOSAIC = 255
};

/** Imager clocking codes. */
enum OrmidexClocking {
  ORMIDEX_CLOCK_16_MHZ = 0,
  ORMIDEX_CLOCK_8_MHZ = 1,
  ORMIDEX_CLOCK_4_MHZ = 2,
  ORMIDEX_CLOCK_24_MHZ = 128,
  ORMIDEX_CLOCK_12_MHZ = 129,
  ORMIDEX_CLOCK_6_MHZ = 130
};

/** Imager types. */
enum OrmidexImagerType {
  ORMIDEX_IMAGER_UNKNOWN = 0,
  ORMIDEX_IMAGER_MONOCHROME = 1,
  ORMIDEX_IMAGER_COLOR = 2
};

/** What an overlay callback is given to draw into. */
enum OrmidexOverlayFormat {
  /** One byte a pixel. */
  ORMIDEX_OVERLAY_8BPP = 1,
  /** One 16-bit word a pixel. */
  ORMIDEX_OVERLAY_16BPP = 2,
  /** A 24-bit image, blue first, rows from bottom to top. */
  ORMIDEX_OVERLAY_24BPP = 3,
  /** A 48-bit image, blue first, rows from bottom to top. */
  ORMIDEX_OVERLAY_48BPP = 4
};

/** Bytes for an imager name, the terminating zero included. */
#define ORMIDEX_IMAGER_NAME_BYTES 81
/** Largest transfer of OrmidexReadCommand and OrmidexWriteCommand, in bytes. */
#define ORMIDEX_COMMAND_BYTES 96
/** Width or height of OrmidexStartPreview: that of the frame. */
#define ORMIDEX_FRAME_SIZE 0xFFFFFFFFu

/** A rectangle of pixels. */
typedef struct OrmidexRect {
  /** The first column. */
  OrmidexInt32 left;
  /** The first row. */
  OrmidexInt32 top;
  /** One past the last column. */
  OrmidexInt32 right;
  /** One past the last row. */
  OrmidexInt32 bottom;
} OrmidexRect;

/**
 * The version numbers of a camera. All texts are zero-terminated. Numbers are in
 * lower-case hexadecimal without leading zeros; a version is its four bytes,
 * highest first, each printed on its own and separated by dots ("3.1.22.0").
 */
typedef struct OrmidexHardwareVersion {
  /** Model number; bit 0 monochrome, bit 1 EC variant, bit 2 clear: with IFE. */
  char model[9];
  /** The serial number of the camera. */
  char serialNumber[9];
  /** Four characters of the model's name, as the camera gives them. */
  char modelText[5];
  /** The version of the controller's firmware. */
  char firmwareVersion[12];
  /** The revision of the controller. */
  char hardwareRevision[12];
  /** Descriptive text, for example "Torvenal 1394 Camera (Color)". */
  char description[64];
  /** 1 or 2: the generation of the imager. */
  OrmidexUInt32 imagerGeneration;
} OrmidexHardwareVersion;

/**
 * Called for each triggered frame, on a thread of the library's own.
 *
 * `buffer` is one of the two buffers given to OrmidexReturnFrameAfterTrigger; it
 * is overwritten by the next frame after the callback returns. The callback must
 * not call OrmidexStopTriggerMode, nor the three functions that run alone. What
 * it returns is ignored.
 */
typedef OrmidexUInt32(ORMIDEX_CALL* OrmidexTriggerCallback)(OrmidexHandle handle, void* buffer);

/**
 * Called to draw into an image before it is shown or saved.
 *
 * `image` may be written until the callback returns; `width` and `height` are in
 * pixels; `format` is one of OrmidexOverlayFormat. For the preview it runs on a
 * thread of the library's own, for files on the thread that saves. It must not
 * call OrmidexSetOverlayCallBack. What it returns is ignored.
 */
typedef OrmidexUInt32(ORMIDEX_CALL* OrmidexOverlayCallback)(OrmidexHandle handle, void* image,
                                                            OrmidexUInt32 width,
                                                            OrmidexUInt32 height,
                                                            OrmidexUInt32 format);

/* ---- Finding, opening and closing cameras ------------------------------- */

/**
 * Counts the cameras.
 *
 * @param deviceTypeName  any text; every name counts the same cameras.
 * @param count           receives the number of cameras. It is set to 0 before
 *                        any check and must not be null.
 * @retval ORMIDEX_OK                  counted; 0 cameras is success too.
 * @retval ORMIDEX_NULL_POINTER        `deviceTypeName` is null.
 * @retval ORMIDEX_ENUMERATION_FAILED  the system's device enumeration failed.
 * @retval ORMIDEX_UNKNOWN_SYSTEM      not a supported operating system.
 * @remark Threads: any; runs alone.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetNumberDevices(const char* deviceTypeName,
                                                               OrmidexUInt32* count);

/**
 * Opens a camera and puts it into its default state: stream stopped, 640 x 480
 * pixels at column 0 and row 0, 8 bits a sample, no flip, video mode 1, clocking
 * 16 MHz (12 MHz where the imager refuses that), gamma 1, driver time-out 4000.
 *
 * A camera whose opening fails after its device was opened keeps the device open
 * until the process ends.
 *
 * @param deviceTypeName  any text; every name opens the same cameras.
 * @param deviceIndex     number of the camera, from 0.
 * @param handle          receives the handle, or 0 on any failure. It must not
 *                        be null. Give it back with OrmidexUninitialize.
 * @retval ORMIDEX_OK                   open.
 * @retval ORMIDEX_NO_CAMERA            no memory for the session, the enumeration
 *                                      failed, or the device could not be opened.
 * @retval ORMIDEX_NULL_POINTER         `deviceTypeName` is null.
 * @retval ORMIDEX_CAMERA_NOT_FOUND     `deviceIndex` is beyond the last camera.
 * @retval ORMIDEX_REQUEST_FAILED       the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE         the camera refused a default setting.
 * @retval ORMIDEX_IMAGER_NOT_ACCEPTED  an imager the library does not know.
 * @retval ORMIDEX_OUT_OF_MEMORY        no memory for a request.
 * @retval ORMIDEX_UNKNOWN_SYSTEM       not a supported operating system.
 * @return Or the driver's answer.
 * @remark Threads: any; runs alone.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexInitialize(const char* deviceTypeName,
                                                         OrmidexUInt32 deviceIndex,
                                                         OrmidexHandle* handle);

/**
 * Closes a camera: ends command transfers, triggered capture, a running preview
 * and the stream, and frees the session, whatever the status.
 *
 * It waits without limit for triggered capture and command transfers to end.
 *
 * @param handle  address of the handle variable, not null; the variable is set
 *                to 0.
 * @retval ORMIDEX_OK                closed.
 * @retval ORMIDEX_NO_CAMERA         the variable holds 0.
 * @retval ORMIDEX_CAMERA_NOT_FOUND  the device could not be closed; the session
 *                                   is gone nevertheless.
 * @remark Threads: any; runs alone. No other thread may use the handle any more.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexUninitialize(OrmidexHandle* handle);

/* ---- Identity ----------------------------------------------------------- */

/**
 * Tells the serial number, as read when the camera was opened.
 *
 * @param handle  the camera.
 * @param serial  receives the serial number.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera, or its serial number is 0.
 * @retval ORMIDEX_NULL_POINTER  `serial` is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetSerialNumber(OrmidexHandle handle,
                                                              OrmidexUInt32* serial);

/**
 * Tells the firmware version word, as read when the camera was opened.
 *
 * @param handle   the camera.
 * @param version  receives the word; 0x03000000 and above is the third
 *                 generation. Bits 16 to 23 of 0x4D or 0x43 mark a variant
 *                 without GPO lines.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera, or its version word is 0.
 * @retval ORMIDEX_NULL_POINTER  `version` is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetSoftwareVersion(OrmidexHandle handle,
                                                                 OrmidexUInt32* version);

/**
 * Reads the camera's version numbers and composes a descriptive text.
 *
 * @param handle  the camera.
 * @param info    receives the record.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `info` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetHardwareVersion(OrmidexHandle handle,
                                                                 OrmidexHardwareVersion* info);

/**
 * Tells whether the imager is monochrome or colour.
 *
 * @param handle  the camera.
 * @param type    receives one of OrmidexImagerType.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  `type` is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetImagerType(OrmidexHandle handle,
                                                            OrmidexUInt32* type);

/**
 * Tells the imager's name: "Imager" and the camera's index, until it is changed.
 *
 * @param handle  the camera.
 * @param name    receives the zero-terminated name; at least
 *                ORMIDEX_IMAGER_NAME_BYTES bytes.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  `name` is null.
 * @remark Threads: any; beside other calls, but not beside OrmidexSetImagerName.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetImagerName(OrmidexHandle handle, char* name);

/**
 * Gives the imager a name that lasts as long as the handle.
 *
 * @param handle  the camera.
 * @param name    zero-terminated; at most 80 characters; copied.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  `name` is null.
 * @retval ORMIDEX_OUT_OF_RANGE  longer than 80 characters.
 * @remark Threads: any; beside other calls, but not beside OrmidexGetImagerName.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetImagerName(OrmidexHandle handle, const char* name);

/**
 * Reads the imager's chip identification.
 *
 * @param handle  the camera.
 * @param id      receives the identification; stored also when the driver's
 *                answer is not ORMIDEX_OK.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `id` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for the request.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetImagerChipId(OrmidexHandle handle,
                                                              OrmidexUInt32* id);

/**
 * Reads the controller's lock value. Firmware 3.0 and later.
 *
 * @param handle  the camera.
 * @param value   receives the value, 0 to 255; set to 0 before the camera is
 *                asked.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `value` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_NOT_SUPPORTED   firmware before 3.0.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetLockValue(OrmidexHandle handle,
                                                           OrmidexUInt32* value);

/**
 * Tells whether the imager runs from an external oscillator. First-generation
 * imager only.
 *
 * @param handle      the camera.
 * @param isExternal  receives 1 for an external oscillator, else 0.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `isExternal` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_NOT_SUPPORTED   a second-generation imager; tested before all
 *                                 other checks but that of a null handle.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexIsExtOscillator(OrmidexHandle handle,
                                                              OrmidexUInt32* isExternal);

/* ---- Registers, serial bus, I/O lines, driver --------------------------- */

/**
 * Reads one imager register.
 *
 * @param handle   the camera.
 * @param address  register address.
 * @param value    receives the byte; stored also when the driver's answer is not
 *                 ORMIDEX_OK.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `value` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for the request.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexReadRegister(OrmidexHandle handle,
                                                           OrmidexUInt32 address,
                                                           OrmidexUInt8* value);

/**
 * Writes one imager register.
 *
 * @param handle        the camera.
 * @param address       register address.
 * @param value         the byte to write.
 * @param asynchronous  0: wait for the driver. Otherwise the write runs on a
 *                      thread of its own, in no order with other writes, its
 *                      result is lost, and the camera must stay open until then.
 * @retval ORMIDEX_OK               written, or handed to the thread.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_REQUEST_FAILED   the driver failed the request.
 * @retval ORMIDEX_OUT_OF_MEMORY    no memory for the request.
 * @retval ORMIDEX_GENERAL_FAILURE  the thread could not be started.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexWriteRegister(OrmidexHandle handle,
                                                            OrmidexUInt32 address,
                                                            OrmidexUInt8 value,
                                                            OrmidexUInt32 asynchronous);

/**
 * Reads successive imager registers in one request.
 *
 * @param handle   the camera.
 * @param address  address of the first register.
 * @param count    number of registers.
 * @param values   receives `count` bytes; stored also when the driver's answer
 *                 is not ORMIDEX_OK.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `values` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for the request.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexReadMultRegister(OrmidexHandle handle,
                                                               OrmidexUInt32 address,
                                                               OrmidexUInt32 count,
                                                               OrmidexUInt8* values);

/**
 * Writes successive imager registers in one request.
 *
 * @param handle        the camera.
 * @param address       address of the first register.
 * @param count         number of registers; at most 255 when asynchronous.
 * @param values        `count` bytes; copied before the call returns.
 * @param asynchronous  as for OrmidexWriteRegister.
 * @retval ORMIDEX_OK               written, or handed to the thread.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_NULL_POINTER     `values` is null.
 * @retval ORMIDEX_REQUEST_FAILED   the driver failed the request.
 * @retval ORMIDEX_OUT_OF_RANGE     asynchronous with more than 255 registers.
 * @retval ORMIDEX_OUT_OF_MEMORY    no memory for the request.
 * @retval ORMIDEX_GENERAL_FAILURE  the thread could not be started.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexWriteMultRegister(OrmidexHandle handle,
                                                                OrmidexUInt32 address,
                                                                OrmidexUInt32 count,
                                                                const OrmidexUInt8* values,
                                                                OrmidexUInt32 asynchronous);

/**
 * Reads one register of a device at an address of the caller's choice on the
 * imager's bus.
 *
 * @param handle      the camera.
 * @param busAddress  bus address of the device.
 * @param address     register address.
 * @param value       receives the byte; stored also when the driver's answer is
 *                    not ORMIDEX_OK.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `value` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for the request.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexReadExtI2CRegister(OrmidexHandle handle,
                                                                 OrmidexUInt32 busAddress,
                                                                 OrmidexUInt32 address,
                                                                 OrmidexUInt8* value);

/**
 * Writes one register of a device at an address of the caller's choice on the
 * imager's bus.
 *
 * @param handle      the camera.
 * @param busAddress  bus address of the device.
 * @param address     register address.
 * @param value       the byte to write.
 * @retval ORMIDEX_OK              written.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for the request.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexWriteExtI2CRegister(OrmidexHandle handle,
                                                                  OrmidexUInt32 busAddress,
                                                                  OrmidexUInt32 address,
                                                                  OrmidexUInt8 value);

/**
 * Writes to a device on the camera's serial bus, then reads from it.
 *
 * @param handle         the camera.
 * @param deviceAddress  8-bit address byte of the device; bit 0 is ignored.
 * @param writeData      the bytes to write.
 * @param writeCount     number of bytes to write; taken modulo 256.
 * @param readData       receives the bytes read.
 * @param readCount      number of bytes to read; taken modulo 256.
 * @retval ORMIDEX_OK              read.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `writeData` or `readData` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL
OrmidexI2cRead(OrmidexHandle handle, OrmidexUInt8 deviceAddress, const OrmidexUInt8* writeData,
               OrmidexInt32 writeCount, OrmidexUInt8* readData, OrmidexInt32 readCount);

/**
 * Writes to a device on the camera's serial bus.
 *
 * @param handle         the camera.
 * @param deviceAddress  8-bit address byte of the device; bit 0 is ignored.
 * @param data           the bytes to write.
 * @param count          number of bytes; taken modulo 256.
 * @retval ORMIDEX_OK              written.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `data` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexI2cWrite(OrmidexHandle handle,
                                                       OrmidexUInt8 deviceAddress,
                                                       const OrmidexUInt8* data,
                                                       OrmidexUInt32 count);

/**
 * Reads the camera's general-purpose input/output word.
 *
 * @param handle  the camera.
 * @param value   receives the word as the driver gives it, in its byte order.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `value` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexReadGpio(OrmidexHandle handle, OrmidexUInt32* value);

/**
 * Writes the camera's general-purpose input/output word.
 *
 * @param handle  the camera.
 * @param value   the word; it is sent most significant byte first.
 * @retval ORMIDEX_OK              written.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexWriteGpio(OrmidexHandle handle, OrmidexUInt32 value);

/**
 * Tells the level of a general-purpose output line as OrmidexSetGpo left it.
 *
 * @param handle  the camera.
 * @param level   receives the level.
 * @param line    1 or 2.
 * @retval ORMIDEX_OK             stored.
 * @retval ORMIDEX_NO_CAMERA      no open camera.
 * @retval ORMIDEX_NULL_POINTER   `level` is null.
 * @retval ORMIDEX_OUT_OF_RANGE   `line` is neither 1 nor 2.
 * @retval ORMIDEX_NOT_SUPPORTED  a camera without such lines.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetGpo(OrmidexHandle handle, OrmidexUInt32* level,
                                                     OrmidexUInt32 line);

/**
 * Drives a general-purpose output line.
 *
 * @param handle    the camera.
 * @param level     the level; 0 is low.
 * @param duration  0 to keep the level, otherwise how long the pulse lasts,
 *                  after which the line has the opposite level. Not negative.
 *                  Milliseconds for firmware 3.0 and later, sent in microseconds.
 * @param line      1 or 2.
 * @retval ORMIDEX_OK              driven.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_OUT_OF_RANGE    `duration` is negative, or `line` neither 1
 *                                 nor 2.
 * @retval ORMIDEX_NOT_SUPPORTED   a camera without such lines.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetGpo(OrmidexHandle handle, OrmidexUInt32 level,
                                                     float duration, OrmidexUInt32 line);

/**
 * Reads the frame counter.
 *
 * @param handle    the camera.
 * @param frame     receives the counter, 0 to 255. Not null.
 * @param counters  receives two further counter words, as the driver gives them.
 *                  Not null.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for the request.
 * @return Otherwise the driver's own status word, untranslated: the values are
 *         stored, 0 and 1 mean success, and words from 0x80000000 an error.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetFrameNumber(OrmidexHandle handle,
                                                             OrmidexUInt8* frame,
                                                             OrmidexUInt32 counters[2]);

/**
 * Tells the driver how long to wait for a frame.
 *
 * @param handle   the camera.
 * @param timeout  in the driver's unit; 4000 after opening.
 * @retval ORMIDEX_OK              set.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetTimeout(OrmidexHandle handle,
                                                         OrmidexUInt32 timeout);

/**
 * Tells the time-out that was set last.
 *
 * @param handle   the camera.
 * @param timeout  receives the time-out, in the driver's unit.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  `timeout` is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetTimeout(OrmidexHandle handle,
                                                         OrmidexUInt32* timeout);

/* ---- Exposure and clocking ---------------------------------------------- */

/**
 * Reads the raw exposure value. First-generation imager only.
 *
 * @param handle    the camera.
 * @param exposure  receives the value, 0 to 2047 in rows; a longer exposure has a
 *                  higher value.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `exposure` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @retval ORMIDEX_NOT_SUPPORTED   a second-generation imager.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetExposure(OrmidexHandle handle,
                                                          OrmidexUInt32* exposure);

/**
 * Sets the raw exposure value. First-generation imager only.
 *
 * @param handle    the camera.
 * @param exposure  the value; bits 0 to 15 are written, their range is not checked.
 * @retval ORMIDEX_OK              set.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for the request.
 * @retval ORMIDEX_NOT_SUPPORTED   a second-generation imager.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetExposure(OrmidexHandle handle,
                                                          OrmidexUInt32 exposure);

/**
 * Reads the exposure time.
 *
 * First-generation imager: a raw exposure value set below that of the shortest
 * exposure gives a huge time.
 *
 * @param handle        the camera.
 * @param milliseconds  receives the time in milliseconds.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `milliseconds` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    the clocking or sub-sampling in use has no
 *                                 exposure times.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetExposureTime(OrmidexHandle handle,
                                                              float* milliseconds);

/**
 * Sets the exposure time.
 *
 * @param handle        the camera.
 * @param milliseconds  the time in milliseconds; not negative.
 * @param adjustClock   not 0: a first-generation imager may be slowed down to the
 *                      fastest clocking, from the present one on, that reaches
 *                      the time. A second-generation imager ignores it: there long
 *                      times lengthen the rows.
 * @retval ORMIDEX_OK              set.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    negative, or longer than the clocking allows.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetExposureTime(OrmidexHandle handle,
                                                              float milliseconds,
                                                              OrmidexUInt32 adjustClock);

/**
 * Tells the longest exposure time that a frame rate allows. Nothing is set.
 *
 * @param handle        the camera.
 * @param subSampling   sub-sampling factor: 1, 2 or 4.
 * @param width         sub-window width in pixels of the array.
 * @param height        sub-window height in rows of the array.
 * @param clocking      one of OrmidexClocking.
 * @param frameRate     frames per second, above 0; read for a second-generation
 *                      imager only.
 * @param milliseconds  receives the time in milliseconds.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `milliseconds` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    `clocking` or `subSampling` is none of those.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetMaxExposureTime(
    OrmidexHandle handle, OrmidexUInt32 subSampling, OrmidexUInt32 width, OrmidexUInt32 height,
    OrmidexUInt32 clocking, float frameRate, float* milliseconds);

/**
 * Reads the analogue exposure gain. Second-generation imager only.
 *
 * @param handle  the camera.
 * @param gain    receives the gain as a factor; -1 when the gain could not be read.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `gain` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @retval ORMIDEX_NOT_SUPPORTED   a first-generation imager; tested before all
 *                                 other checks but that of a null handle.
 * @retval ORMIDEX_WRONG_STATE     the imager controls its gain itself.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetExposureGain(OrmidexHandle handle, float* gain);

/**
 * Sets the analogue exposure gain. Second-generation imager only.
 *
 * @param handle  the camera.
 * @param gain    factor, from 0.483 to 7.488.
 * @retval ORMIDEX_OK              set.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    `gain` is out of its range.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @retval ORMIDEX_NOT_SUPPORTED   a first-generation imager; tested before all
 *                                 other checks but that of a null handle.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetExposureGain(OrmidexHandle handle, float gain);

/**
 * Tells the imager clocking.
 *
 * @param handle    the camera.
 * @param clocking  receives one of OrmidexClocking.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  `clocking` is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetImagerClocking(OrmidexHandle handle,
                                                                OrmidexUInt32* clocking);

/**
 * Sets the imager's pixel clock.
 *
 * A second-generation imager keeps its exposure time, and a running stream is
 * stopped meanwhile. A first-generation imager keeps its raw exposure value, so
 * its exposure time changes.
 *
 * @param handle    the camera.
 * @param clocking  one of OrmidexClocking. 16 and 24 MHz need 8 bits a sample.
 * @retval ORMIDEX_OK              set.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    not such a code, or too fast for 16 bits a
 *                                 sample or for this imager.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @retval ORMIDEX_WRONG_STATE     triggered capture is armed on a streaming
 *                                 second-generation imager.
 * @return Or the driver's answer.
 * @remark Threads: any; waits for other calls that change this camera's stream.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetImagerClocking(OrmidexHandle handle,
                                                                OrmidexUInt32 clocking);

/**
 * Tells the frame rate that the preview showed over its last second.
 *
 * @param handle  the camera.
 * @param rate    receives the rate in whole frames per second.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  `rate` is null.
 * @retval ORMIDEX_NO_PREVIEW    there is no preview window.
 * @retval ORMIDEX_WRONG_STATE   triggered capture is armed.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetCurrentFrameRate(OrmidexHandle handle,
                                                                  OrmidexUInt32* rate);

/* ---- Gains, gamma, saturation, light source, automatic control ---------- */

/**
 * Tells the red gain that was set or read last. Colour imager only.
 *
 * @param handle  the camera.
 * @param gain    receives the gain code, 0 to 63.
 * @retval ORMIDEX_OK             stored.
 * @retval ORMIDEX_NO_CAMERA      no open camera.
 * @retval ORMIDEX_NULL_POINTER   `gain` is null.
 * @retval ORMIDEX_NOT_SUPPORTED  not a colour imager.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetRedGain(OrmidexHandle handle, OrmidexUInt32* gain);

/**
 * Sets the red gain. Colour imager only. A gain equal to the last one is not sent.
 *
 * @param handle  the camera.
 * @param gain    gain code, 0 to 63.
 * @retval ORMIDEX_OK              set.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    `gain` is above 63.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @retval ORMIDEX_NOT_SUPPORTED   not a colour imager.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetRedGain(OrmidexHandle handle, OrmidexUInt32 gain);

/**
 * Tells the green gain that was set or read last. Colour imager only.
 *
 * @param handle  the camera.
 * @param gain    receives the gain code, 0 to 63.
 * @retval ORMIDEX_OK             stored.
 * @retval ORMIDEX_NO_CAMERA      no open camera.
 * @retval ORMIDEX_NULL_POINTER   `gain` is null.
 * @retval ORMIDEX_NOT_SUPPORTED  not a colour imager.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetGreenGain(OrmidexHandle handle,
                                                           OrmidexUInt32* gain);

/**
 * Sets the green gain. Colour imager only. A gain equal to the last one is not
 * sent.
 *
 * @param handle  the camera.
 * @param gain    gain code, 0 to 63.
 * @retval ORMIDEX_OK              set.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    `gain` is above 63.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @retval ORMIDEX_NOT_SUPPORTED   not a colour imager.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetGreenGain(OrmidexHandle handle,
                                                           OrmidexUInt32 gain);

/**
 * Tells the blue gain that was set or read last. Colour imager only.
 *
 * @param handle  the camera.
 * @param gain    receives the gain code, 0 to 63.
 * @retval ORMIDEX_OK             stored.
 * @retval ORMIDEX_NO_CAMERA      no open camera.
 * @retval ORMIDEX_NULL_POINTER   `gain` is null.
 * @retval ORMIDEX_NOT_SUPPORTED  not a colour imager.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetBlueGain(OrmidexHandle handle,
                                                          OrmidexUInt32* gain);

/**
 * Sets the blue gain. Colour imager only. A gain equal to the last one is not
 * sent.
 *
 * @param handle  the camera.
 * @param gain    gain code, 0 to 63.
 * @retval ORMIDEX_OK              set.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    `gain` is above 63.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @retval ORMIDEX_NOT_SUPPORTED   not a colour imager.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetBlueGain(OrmidexHandle handle, OrmidexUInt32 gain);

/**
 * Tells the gain of a monochrome imager that was set last.
 *
 * @param handle  the camera.
 * @param gain    receives the gain code, 0 to 63.
 * @retval ORMIDEX_OK             stored.
 * @retval ORMIDEX_NO_CAMERA      no open camera.
 * @retval ORMIDEX_NULL_POINTER   `gain` is null.
 * @retval ORMIDEX_NOT_SUPPORTED  not a monochrome imager.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetMonoGain(OrmidexHandle handle,
                                                          OrmidexUInt32* gain);

/**
 * Sets the gain of a monochrome imager. A gain equal to the last one is not sent.
 *
 * @param handle  the camera.
 * @param gain    gain code, 0 to 63.
 * @retval ORMIDEX_OK              set.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    `gain` is above 63.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @retval ORMIDEX_NOT_SUPPORTED   not a monochrome imager.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetMonoGain(OrmidexHandle handle, OrmidexUInt32 gain);

/**
 * Tells the gamma that was set last.
 *
 * @param handle  the camera.
 * @param gamma   receives the exponent.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  `gamma` is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetGamma(OrmidexHandle handle, float* gamma);

/**
 * Loads a gamma curve into the camera's lookup table.
 *
 * @param handle  the camera.
 * @param gamma   exponent, not negative; 0 and 1 switch the table off. It is kept
 *                also when the camera refuses the table.
 * @retval ORMIDEX_OK              loaded or switched off.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_OUT_OF_RANGE    `gamma` is negative.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetGamma(OrmidexHandle handle, float gamma);

/**
 * Reads the colour saturation. Firmware 2.2 and later.
 *
 * @param handle      the camera.
 * @param saturation  receives the saturation.
 * @retval ORMIDEX_OK              stored.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `saturation` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_NOT_SUPPORTED   firmware before 2.2.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetSaturation(OrmidexHandle handle,
                                                            OrmidexUInt32* saturation);

/**
 * Sets the colour saturation. Firmware 2.2 and later.
 *
 * @param handle      the camera.
 * @param saturation  the saturation, in the camera's own scale; where the camera
 *                    has a register of 8 bits for it, the upper bits are dropped.
 * @retval ORMIDEX_OK              set.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_NOT_SUPPORTED   firmware before 2.2.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetSaturation(OrmidexHandle handle,
                                                            OrmidexUInt32 saturation);

/**
 * Tells the light source that was set last.
 *
 * @param handle  the camera.
 * @param source  receives the source, 1 to 4.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  `source` is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetLightSource(OrmidexHandle handle,
                                                             OrmidexUInt32* source);

/**
 * Tells the camera by which light the scene is lit. Second-generation imager only.
 *
 * @param handle  the camera.
 * @param source  1 to 4; 1 after opening.
 * @retval ORMIDEX_OK              set.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_OUT_OF_RANGE    `source` is 0 or above 4.
 * @retval ORMIDEX_NOT_SUPPORTED   a first-generation imager; tested before all
 *                                 other checks but that of a null handle.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetLightSource(OrmidexHandle handle,
                                                             OrmidexUInt32 source);

/**
 * Adjusts the exposure until the running stream has a wanted mean brightness.
 *
 * It takes up to 20 passes of two or three frames each, and keeps the preview
 * suspended meanwhile.
 *
 * @param handle         the camera.
 * @param targetPercent  wanted brightness, 0 to 100 % of full scale.
 * @param useRectangle   0: measure the whole frame and ignore the rectangle.
 * @param left           first column of the rectangle, in pixels of the frame.
 * @param top            first row of the rectangle.
 * @param width          width of the rectangle in pixels.
 * @param height         height of the rectangle in rows.
 * @retval ORMIDEX_OK              reached, or as near as the imager's range allows.
 *                                 A second-generation imager always ends so.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    `targetPercent` is above 100, or the rectangle
 *                                 reaches beyond the frame.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a frame.
 * @retval ORMIDEX_WRONG_STATE     not streaming, or the camera controls its
 *                                 exposure itself.
 * @retval ORMIDEX_NOT_CONVERGED   20 passes were not enough; the last exposure
 *                                 tried stays in force.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls, but one automatic control at a time on
 *         one camera.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexAutoExposure(
    OrmidexHandle handle, OrmidexUInt32 targetPercent, OrmidexUInt32 useRectangle,
    OrmidexUInt32 left, OrmidexUInt32 top, OrmidexUInt32 width, OrmidexUInt32 height);

/**
 * Asks a second-generation camera to control its exposure by itself.
 *
 * A camera that refuses, or cannot do it, is not reported.
 *
 * @param handle     the camera.
 * @param mode       not 0 switches it on, 0 off.
 * @param parameter  passed to the camera unchanged.
 * @retval ORMIDEX_OK         asked, whatever came of it.
 * @retval ORMIDEX_NO_CAMERA  `handle` is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexRequestContinuousAutoExposure(
    OrmidexHandle handle, OrmidexUInt32 mode, OrmidexUInt32 parameter);

/**
 * Adjusts the colour gains until the running stream shows a given colour as white.
 *
 * It takes up to 20 passes, keeps the preview suspended meanwhile, and restores
 * saturation, gamma and exposure at its end. When it fails, a first-generation
 * imager gets its old gains back; a second-generation imager keeps the last ones.
 *
 * @param handle        the camera.
 * @param useRectangle  0: measure the whole frame and ignore the rectangle.
 * @param left          first column of the rectangle, in pixels of the frame.
 * @param top           first row of the rectangle.
 * @param width         width of the rectangle in pixels.
 * @param height        height of the rectangle in rows.
 * @param red           relative amount of red that counts as white.
 * @param green         relative amount of green. Three equal amounts are neutral.
 * @param blue          relative amount of blue.
 * @retval ORMIDEX_OK              balanced.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    the rectangle reaches beyond the frame.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a frame or a request.
 * @retval ORMIDEX_WRONG_STATE     not streaming.
 * @retval ORMIDEX_NOT_CONVERGED   20 passes were not enough.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls, but one automatic control at a time on
 *         one camera.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexWhiteBalance(OrmidexHandle handle,
                                                           OrmidexUInt32 useRectangle,
                                                           OrmidexUInt32 left, OrmidexUInt32 top,
                                                           OrmidexUInt32 width,
                                                           OrmidexUInt32 height, OrmidexUInt32 red,
                                                           OrmidexUInt32 green, OrmidexUInt32 blue);

/* ---- Frame geometry, video mode, transfer size -------------------------- */

/**
 * Tells sub-sampling, place and size of the frame.
 *
 * @param handle       the camera.
 * @param subSampling  receives the factor: 1, 2 or 4.
 * @param column       receives the first column, in pixels of the array.
 * @param row          receives the first row, in rows of the array.
 * @param width        receives the frame width in pixels, after sub-sampling.
 * @param height       receives the frame height in rows, after sub-sampling.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  a pointer is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetSubWindow(OrmidexHandle handle,
                                                           OrmidexUInt32* subSampling,
                                                           OrmidexUInt32* column,
                                                           OrmidexUInt32* row, OrmidexUInt32* width,
                                                           OrmidexUInt32* height);

/**
 * Sets sub-sampling, place and size of the sub-window on the imager's array of
 * 1280 x 1024 pixels. A running stream is stopped meanwhile.
 *
 * Place and size are set one after the other; when the second fails, the first
 * stays.
 *
 * @param handle       the camera.
 * @param subSampling  factor: 1, 2 or 4.
 * @param column       first column, in pixels of the array; a second-generation
 *                     imager rounds it down to an even one.
 * @param row          first row of the array; rounded likewise.
 * @param width        width in pixels of the array, at least 32, rounded down to
 *                     a multiple of 8, 16 or 32 for the factors 1, 2 and 4. The
 *                     frame width is this divided by the factor.
 * @param height       height in rows of the array, at least 8, rounded likewise.
 * @retval ORMIDEX_OK              set.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    an unknown factor, too small, or beyond the
 *                                 array.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @retval ORMIDEX_WRONG_STATE     triggered capture is armed.
 * @return Or the driver's answer.
 * @remark Threads: any; waits for other calls that change this camera's stream.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetSubWindow(OrmidexHandle handle,
                                                           OrmidexUInt32 subSampling,
                                                           OrmidexUInt32 column, OrmidexUInt32 row,
                                                           OrmidexUInt32 width,
                                                           OrmidexUInt32 height);

/**
 * Tells the place of the sub-window.
 *
 * @param handle  the camera.
 * @param column  receives the first column, in pixels of the array.
 * @param row     receives the first row, in rows of the array.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  a pointer is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetSubWindowPos(OrmidexHandle handle,
                                                              OrmidexUInt32* column,
                                                              OrmidexUInt32* row);

/**
 * Moves the sub-window, also while streaming: the stream is paused meanwhile.
 *
 * @param handle  the camera.
 * @param column  first column, in pixels of the array; a second-generation imager
 *                rounds it down to an even one.
 * @param row     first row of the array; rounded likewise.
 * @retval ORMIDEX_OK              moved, or there already.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    the sub-window would reach beyond the array.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @return Or the driver's answer.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetSubWindowPos(OrmidexHandle handle,
                                                              OrmidexUInt32 column,
                                                              OrmidexUInt32 row);

/**
 * Tells sub-sampling and size of the frame.
 *
 * @param handle       the camera.
 * @param subSampling  receives the factor: 1, 2 or 4.
 * @param width        receives the frame width in pixels, after sub-sampling.
 * @param height       receives the frame height in rows, after sub-sampling.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  a pointer is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetSubWindowSize(OrmidexHandle handle,
                                                               OrmidexUInt32* subSampling,
                                                               OrmidexUInt32* width,
                                                               OrmidexUInt32* height);

/**
 * Sets sub-sampling and size of the sub-window. A running stream is stopped
 * meanwhile, and stays stopped when the change fails.
 *
 * @param handle       the camera.
 * @param subSampling  factor: 1, 2 or 4.
 * @param width        width in pixels of the array, at least 32, rounded down to
 *                     a multiple of 8, 16 or 32 for the factors 1, 2 and 4.
 * @param height       height in rows of the array, at least 8, rounded likewise.
 * @retval ORMIDEX_OK              set.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    an unknown factor, too small, or beyond the
 *                                 array.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @retval ORMIDEX_WRONG_STATE     triggered capture is armed.
 * @return Or the driver's answer.
 * @remark Threads: any; waits for other calls that change this camera's stream.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetSubWindowSize(OrmidexHandle handle,
                                                               OrmidexUInt32 subSampling,
                                                               OrmidexUInt32 width,
                                                               OrmidexUInt32 height);

/**
 * Tells the video mode.
 *
 * @param handle  the camera.
 * @param mode    receives the mode; 0 is none.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  `mode` is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetVideoMode(OrmidexHandle handle,
                                                           OrmidexUInt32* mode);

/**
 * Sets the video mode. A running stream is stopped meanwhile.
 *
 * @param handle  the camera.
 * @param mode    a mode of the driver; 0 is none, 1 the mode after opening. It is
 *                kept also when the driver fails the request.
 * @retval ORMIDEX_OK              set, or set already.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @retval ORMIDEX_WRONG_STATE     triggered capture is armed.
 * @return Or the driver's answer.
 * @remark Threads: any; waits for other calls that change this camera's stream.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetVideoMode(OrmidexHandle handle,
                                                           OrmidexUInt32 mode);

/**
 * Tells the size of a sample.
 *
 * @param handle  the camera.
 * @param bits    receives 8 or 16.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  `bits` is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetDataTransferSize(OrmidexHandle handle,
                                                                  OrmidexUInt32* bits);

/**
 * Sets the size of a sample. A running stream is stopped meanwhile.
 *
 * @param handle  the camera.
 * @param bits    8 or 16. At 16 the clockings 16 and 24 MHz become 8 and 12 MHz.
 * @retval ORMIDEX_OK                set.
 * @retval ORMIDEX_NO_CAMERA         no open camera.
 * @retval ORMIDEX_REQUEST_FAILED    the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE      `bits` is neither 8 nor 16.
 * @retval ORMIDEX_OUT_OF_MEMORY     no memory for a request.
 * @retval ORMIDEX_WRONG_STATE       triggered capture is armed.
 * @retval ORMIDEX_CLOCKING_CHANGED  set, and the clocking was changed for it.
 * @return Or the driver's answer.
 * @remark Threads: any; waits for other calls that change this camera's stream.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetDataTransferSize(OrmidexHandle handle,
                                                                  OrmidexUInt32 bits);

/**
 * Tells which flips are on.
 *
 * @param handle      the camera.
 * @param horizontal  receives 1 when the frame is mirrored left to right, else 0.
 * @param vertical    receives 1 when it is turned upside down, else 0.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  a pointer is null.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetImageFlip(OrmidexHandle handle,
                                                           OrmidexUInt32* horizontal,
                                                           OrmidexUInt32* vertical);

/**
 * Switches the flips of the imager. A horizontal change stops a running stream
 * meanwhile.
 *
 * @param handle      the camera.
 * @param horizontal  above 0 on, below 0 off, 0 leaves it as it is.
 * @param vertical    above 0 on, below 0 off, 0 leaves it as it is.
 * @retval ORMIDEX_OK              switched.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @retval ORMIDEX_WRONG_STATE     triggered capture is armed on a running stream.
 * @return Or the driver's answer.
 * @remark Threads: any; waits for other calls that change this camera's stream.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexImageFlip(OrmidexHandle handle,
                                                        OrmidexInt32 horizontal,
                                                        OrmidexInt32 vertical);

/* ---- Streaming ---------------------------------------------------------- */

/**
 * Starts the stream of frames.
 *
 * @param handle  the camera.
 * @retval ORMIDEX_OK              streaming.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for the request.
 * @retval ORMIDEX_WRONG_STATE     streaming already, or triggered capture is armed.
 * @remark Threads: any; waits for other calls that change this camera's stream.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexStartVideoStream(OrmidexHandle handle);

/**
 * Stops the stream. A stream that does not run is stopped all the same.
 *
 * @param handle  the camera.
 * @retval ORMIDEX_OK              stopped.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request; still streaming.
 * @retval ORMIDEX_WRONG_STATE     triggered capture is armed.
 * @remark Threads: any; waits for other calls that change this camera's stream.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexStopVideoStream(OrmidexHandle handle);

/**
 * Pauses or resumes the stream. A paused stream counts as running.
 *
 * @param handle  the camera.
 * @param pause   not 0 pauses, 0 resumes.
 * @retval ORMIDEX_OK              done.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_WRONG_STATE     not streaming, or triggered capture is armed.
 * @remark Threads: any; waits for other calls that change this camera's stream.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexPauseVideoStream(OrmidexHandle handle,
                                                               OrmidexUInt32 pause);

/**
 * Waits for a frame of the stream and copies it.
 *
 * @param handle  the camera.
 * @param size    size of the buffer in bytes; exactly frame width * height * bytes
 *                a sample.
 * @param buffer  receives the raw frame.
 * @retval ORMIDEX_OK              a frame is in the buffer.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `buffer` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request, for example after
 *                                 its time-out.
 * @retval ORMIDEX_OUT_OF_RANGE    `size` is not that of a frame.
 * @retval ORMIDEX_WRONG_STATE     not streaming, video mode 0, or triggered capture
 *                                 is armed.
 * @remark Threads: any; beside other calls. Blocks until the driver answers.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexReturnVideoData(OrmidexHandle handle,
                                                              OrmidexUInt32 size, void* buffer);

/**
 * Throws away the frames that the driver holds ready, so that the next one read
 * is new.
 *
 * @param handle  the camera.
 * @retval ORMIDEX_OK              thrown away.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the request.
 * @retval ORMIDEX_WRONG_STATE     not streaming, video mode 0, or triggered capture
 *                                 is armed.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexFlushVideoData(OrmidexHandle handle);

/* ---- Still and triggered capture ---------------------------------------- */

/**
 * Takes a single frame with an exposure time of its own. A stopped stream is
 * started for it and stopped again.
 *
 * Times are in milliseconds for firmware 3.0 and later (sent in microseconds);
 * for earlier firmware they are sent as they are.
 *
 * @param handle            the camera.
 * @param buffer            receives the raw frame; at least frame width * height *
 *                          bytes a sample.
 * @param exposure          exposure time.
 * @param useFirstOutput    not 0 drives the first output.
 * @param firstOutputTime   time of the first output, at most `exposure`.
 * @param useSecondOutput   not 0 drives the second output.
 * @param secondOutputTimeA first time of the second output, at most `exposure`.
 * @param secondOutputTimeB second time of the second output, 0 or negative.
 * @retval ORMIDEX_OK              the frame is in the buffer.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_NULL_POINTER    `buffer` is null.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE    the time of an output in use does not fit.
 * @retval ORMIDEX_OUT_OF_MEMORY   no memory for a request.
 * @retval ORMIDEX_WRONG_STATE     triggered capture is armed.
 * @remark Threads: any; waits for other calls that change this camera's stream.
 *         Blocks until the driver answers.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexReturnStillFrame(
    OrmidexHandle handle, void* buffer, float exposure, OrmidexUInt32 useFirstOutput,
    float firstOutputTime, OrmidexUInt32 useSecondOutput, float secondOutputTimeA,
    float secondOutputTimeB);

/**
 * Arms triggered capture and returns. From then on a thread of the library's own
 * reads each triggered frame and calls back, until OrmidexStopTriggerMode.
 *
 * When arming fails at the driver, OrmidexStopTriggerMode brings the stream, the
 * video mode and the preview back.
 *
 * @param handle            the camera.
 * @param exposure          exposure time, not 0; unit as for
 *                          OrmidexReturnStillFrame.
 * @param useFirstOutput    not 0 drives the first output.
 * @param firstOutputTime   time of the first output, at most `exposure`.
 * @param useSecondOutput   not 0 drives the second output.
 * @param secondOutputTimeA first time of the second output, at most `exposure`.
 * @param secondOutputTimeB second time of the second output, 0 or negative.
 * @param callback          called for each frame. Not null.
 * @param convert           not 0: convert each frame to a 24-bit image in
 *                          `output` and pass that to the callback.
 * @param raw               buffer for the raw frame, frame width * height * bytes a
 *                          sample; in use until triggered capture is stopped.
 * @param output            buffer for the image, 3 * frame width * height bytes, in
 *                          use likewise; may be null when `convert` is 0.
 * @param algorithm         one of OrmidexAlgorithm.
 * @retval ORMIDEX_OK               armed.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_NULL_POINTER     `raw` is null, or `output` though needed.
 * @retval ORMIDEX_REQUEST_FAILED   the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE     `exposure` is 0, the time of an output in use
 *                                  does not fit, or not such an algorithm.
 * @retval ORMIDEX_OUT_OF_MEMORY    no memory for a request.
 * @retval ORMIDEX_GENERAL_FAILURE  the event or the thread could not be made.
 * @retval ORMIDEX_WRONG_STATE      armed already.
 * @remark Threads: any; waits for other calls that change this camera's stream.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexReturnFrameAfterTrigger(
    OrmidexHandle handle, float exposure, OrmidexUInt32 useFirstOutput, float firstOutputTime,
    OrmidexUInt32 useSecondOutput, float secondOutputTimeA, float secondOutputTimeB,
    OrmidexTriggerCallback callback, OrmidexUInt32 convert, void* raw, void* output,
    OrmidexUInt32 algorithm);

/**
 * Ends triggered capture, waits until its thread has ended, and restores the
 * stream, the video mode and the preview.
 *
 * @param handle  the camera.
 * @retval ORMIDEX_OK              ended; also when it was not armed.
 * @retval ORMIDEX_NO_CAMERA       no open camera.
 * @retval ORMIDEX_REQUEST_FAILED  the driver failed the last request.
 * @remark Threads: any but that of the callback; waits for other calls that change
 *         this camera's stream.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexStopTriggerMode(OrmidexHandle handle);

/* ---- Command channel ---------------------------------------------------- */

/**
 * Reads bytes from the camera's controller. Firmware 3.0 and later.
 *
 * @param handle  the camera.
 * @param buffer  receives `count` bytes; after a time-out those that had arrived.
 * @param count   1 to ORMIDEX_COMMAND_BYTES.
 * @retval ORMIDEX_OK               read.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_REQUEST_FAILED   the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE     `count` is out of its range, or `buffer` null.
 * @retval ORMIDEX_OUT_OF_MEMORY    no memory for the transfer.
 * @retval ORMIDEX_GENERAL_FAILURE  no thread, cancelled, or the camera sent too much.
 * @retval ORMIDEX_NOT_SUPPORTED    firmware before 3.0; tested before all other
 *                                  checks but that of a null handle.
 * @retval ORMIDEX_COMMAND_TIMEOUT  not complete within one second.
 * @remark Threads: any; transfers of one camera run one after the other.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexReadCommand(OrmidexHandle handle,
                                                          OrmidexUInt8* buffer,
                                                          OrmidexUInt32 count);

/**
 * Writes bytes to the camera's controller. Firmware 3.0 and later.
 *
 * @param handle  the camera.
 * @param buffer  the bytes.
 * @param count   1 to ORMIDEX_COMMAND_BYTES.
 * @retval ORMIDEX_OK               written.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_REQUEST_FAILED   the driver failed a request.
 * @retval ORMIDEX_OUT_OF_RANGE     `count` is out of its range, or `buffer` null.
 * @retval ORMIDEX_OUT_OF_MEMORY    no memory for the transfer.
 * @retval ORMIDEX_GENERAL_FAILURE  no thread, or cancelled.
 * @retval ORMIDEX_NOT_SUPPORTED    firmware before 3.0; tested before all other
 *                                  checks but that of a null handle.
 * @retval ORMIDEX_COMMAND_TIMEOUT  not accepted within one second.
 * @remark Threads: any; transfers of one camera run one after the other.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexWriteCommand(OrmidexHandle handle,
                                                           const OrmidexUInt8* buffer,
                                                           OrmidexUInt32 count);

/* ---- Conversion --------------------------------------------------------- */

/**
 * Converts an 8-bit colour frame to a 24-bit image.
 *
 * @param handle       the camera; its imager's mosaic phase is used.
 * @param source       the raw frame, width * height bytes.
 * @param width        in pixels, at least 2.
 * @param height       in rows, at least 2.
 * @param destination  receives the image, 3 * width * height bytes. Use a buffer
 *                     again rather than a fresh one: see Speed, above.
 * @param algorithm    one of OrmidexAlgorithm.
 * @retval ORMIDEX_OK             converted.
 * @retval ORMIDEX_NO_CAMERA      no open camera.
 * @retval ORMIDEX_NULL_POINTER   `source` or `destination` is null.
 * @retval ORMIDEX_OUT_OF_RANGE   not such an algorithm.
 * @retval ORMIDEX_OUT_OF_MEMORY  no working memory.
 * @retval ORMIDEX_NOT_SUPPORTED  not a colour imager.
 * @remark Threads: any; beside other calls on other buffers.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL
OrmidexConvertColor8BppTo24Bpp(OrmidexHandle handle, const void* source, OrmidexUInt32 width,
                               OrmidexUInt32 height, void* destination, OrmidexUInt32 algorithm);

/**
 * Converts a 16-bit colour frame to a 24-bit image, from the upper byte of each
 * sample.
 *
 * @param handle       the camera; its imager's mosaic phase is used.
 * @param source       the raw frame, 2 * width * height bytes.
 * @param width        in pixels, at least 2.
 * @param height       in rows, at least 2.
 * @param destination  receives the image, 3 * width * height bytes. Use a buffer
 *                     again rather than a fresh one: see Speed, above.
 * @param algorithm    one of OrmidexAlgorithm.
 * @retval ORMIDEX_OK             converted.
 * @retval ORMIDEX_NO_CAMERA      no open camera.
 * @retval ORMIDEX_NULL_POINTER   `source` or `destination` is null.
 * @retval ORMIDEX_OUT_OF_RANGE   not such an algorithm.
 * @retval ORMIDEX_OUT_OF_MEMORY  no working memory.
 * @retval ORMIDEX_NOT_SUPPORTED  not a colour imager.
 * @remark Threads: any; beside other calls on other buffers.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL
OrmidexConvertColor16BppTo24Bpp(OrmidexHandle handle, const void* source, OrmidexUInt32 width,
                                OrmidexUInt32 height, void* destination, OrmidexUInt32 algorithm);

/**
 * Converts a 16-bit colour frame to a 48-bit image. Any camera will do, also a
 * monochrome one.
 *
 * @param handle       the camera; its imager's mosaic phase is used.
 * @param source       the raw frame, 2 * width * height bytes.
 * @param width        in pixels, at least 2.
 * @param height       in rows, at least 2.
 * @param destination  receives the image, 6 * width * height bytes. Use a buffer
 *                     again rather than a fresh one: see Speed, above.
 * @param algorithm    one of OrmidexAlgorithm.
 * @retval ORMIDEX_OK             converted.
 * @retval ORMIDEX_NO_CAMERA      `handle` is null.
 * @retval ORMIDEX_OUT_OF_RANGE   `source` or `destination` is null, or not such an
 *                                algorithm.
 * @retval ORMIDEX_OUT_OF_MEMORY  no working memory.
 * @remark Threads: any; beside other calls on other buffers.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL
OrmidexConvertColor16BppTo48Bpp(OrmidexHandle handle, const void* source, OrmidexUInt32 width,
                                OrmidexUInt32 height, void* destination, OrmidexUInt32 algorithm);

/**
 * Converts an 8-bit monochrome frame to a grey 24-bit image.
 *
 * @param handle       the camera.
 * @param source       the raw frame, width * height bytes.
 * @param width        in pixels.
 * @param height       in rows; 0 converts nothing.
 * @param destination  receives the image, 3 * width * height bytes. Use a buffer
 *                     again rather than a fresh one: see Speed, above.
 * @retval ORMIDEX_OK             converted.
 * @retval ORMIDEX_NO_CAMERA      no open camera.
 * @retval ORMIDEX_NULL_POINTER   `source` or `destination` is null.
 * @retval ORMIDEX_NOT_SUPPORTED  not a monochrome imager.
 * @remark Threads: any; beside other calls on other buffers.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexConvertMono8BppTo24Bpp(OrmidexHandle handle,
                                                                     const void* source,
                                                                     OrmidexUInt32 width,
                                                                     OrmidexUInt32 height,
                                                                     void* destination);

/**
 * Converts a 16-bit monochrome frame to a grey 24-bit image, from the upper byte
 * of each sample.
 *
 * @param handle       the camera.
 * @param source       the raw frame, 2 * width * height bytes.
 * @param width        in pixels.
 * @param height       in rows; 0 converts nothing.
 * @param destination  receives the image, 3 * width * height bytes. Use a buffer
 *                     again rather than a fresh one: see Speed, above.
 * @retval ORMIDEX_OK             converted.
 * @retval ORMIDEX_NO_CAMERA      no open camera.
 * @retval ORMIDEX_NULL_POINTER   `source` or `destination` is null.
 * @retval ORMIDEX_NOT_SUPPORTED  not a monochrome imager.
 * @remark Threads: any; beside other calls on other buffers.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexConvertMono16BppTo24Bpp(OrmidexHandle handle,
                                                                      const void* source,
                                                                      OrmidexUInt32 width,
                                                                      OrmidexUInt32 height,
                                                                      void* destination);

/**
 * Strengthens or weakens the colours of a 24-bit image in place. The brightness of
 * a pixel stays as it is, unless a channel reaches its limit.
 *
 * @param handle  the camera.
 * @param width   in pixels.
 * @param height  in rows.
 * @param image   the image, 3 * width * height bytes.
 * @param amount  in percent: above 0 strengthens, below 0 weakens, 0 changes
 *                nothing.
 * @retval ORMIDEX_OK             adjusted.
 * @retval ORMIDEX_NO_CAMERA      no open camera.
 * @retval ORMIDEX_NULL_POINTER   `image` is null.
 * @retval ORMIDEX_NOT_SUPPORTED  a monochrome imager.
 * @remark Threads: any; beside other calls on other buffers.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexColorCorrectRgb(OrmidexHandle handle,
                                                              OrmidexUInt32 width,
                                                              OrmidexUInt32 height, void* image,
                                                              OrmidexInt32 amount);

/* ---- Live preview ------------------------------------------------------- */

/**
 * Opens a window that shows the stream live, and starts the stream when it does
 * not run. When there is a preview already, it is resumed and nothing else
 * happens.
 *
 * @param handle        the camera.
 * @param title         window title, zero-terminated.
 * @param style         window style, in the windowing system's own bits.
 * @param x             left of the client area, in pixels of the parent.
 * @param y             top of the client area.
 * @param width         width of the client area in pixels, or ORMIDEX_FRAME_SIZE.
 * @param height        height of the client area, or ORMIDEX_FRAME_SIZE. When either
 *                      is ORMIDEX_FRAME_SIZE, both are those of the frame.
 * @param parent        the parent's window handle, or null.
 * @param childId       the window's menu or child identifier, or 0.
 * @param reserved1     ignored.
 * @param reserved2     ignored.
 * @retval ORMIDEX_OK               the preview runs.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_NULL_POINTER     `title` is null.
 * @retval ORMIDEX_REQUEST_FAILED   the driver did not start the stream.
 * @retval ORMIDEX_OUT_OF_RANGE     the window could not be created.
 * @retval ORMIDEX_OUT_OF_MEMORY    no memory for a request.
 * @retval ORMIDEX_GENERAL_FAILURE  the preview there is did not resume.
 * @retval ORMIDEX_WRONG_STATE      triggered capture is armed, or video mode 0.
 * @remark Threads: one that handles window messages for as long as the window is
 *         open.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL
OrmidexStartPreview(OrmidexHandle handle, const char* title, OrmidexUInt32 style, OrmidexUInt32 x,
                    OrmidexUInt32 y, OrmidexUInt32 width, OrmidexUInt32 height, void* parent,
                    OrmidexUInt32 childId, OrmidexUInt32 reserved1, OrmidexUInt32 reserved2);

/**
 * Closes the preview window. The stream keeps running.
 *
 * @param handle  the camera.
 * @retval ORMIDEX_OK          closed.
 * @retval ORMIDEX_NO_CAMERA   no open camera, or the window could not be closed.
 * @retval ORMIDEX_NO_PREVIEW  there is no preview window.
 * @remark Threads: the one that started the preview.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexStopPreview(OrmidexHandle handle);

/**
 * Suspends the preview, which then keeps showing the last picture, or resumes it.
 *
 * @param handle   the camera.
 * @param suspend  not 0 suspends, 0 resumes.
 * @retval ORMIDEX_OK               done, or so already.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_GENERAL_FAILURE  the window did not follow.
 * @retval ORMIDEX_NO_PREVIEW       there is no preview window.
 * @retval ORMIDEX_WRONG_STATE      resuming while triggered capture is armed.
 * @remark Threads: any; waits until the window's thread has handled a message.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexPausePreview(OrmidexHandle handle,
                                                           OrmidexUInt32 suspend);

/**
 * Chooses how the preview converts colour frames, from its next frame on.
 *
 * @param handle     the camera.
 * @param algorithm  one of OrmidexAlgorithm; ORMIDEX_BILINEAR after opening.
 * @retval ORMIDEX_OK             chosen.
 * @retval ORMIDEX_NO_CAMERA      no open camera.
 * @retval ORMIDEX_OUT_OF_RANGE   not such an algorithm.
 * @retval ORMIDEX_NOT_SUPPORTED  a monochrome imager.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetPreviewColorConversion(OrmidexHandle handle,
                                                                        OrmidexUInt32 algorithm);

/**
 * Tells where the preview window is.
 *
 * @param handle  the camera.
 * @param x       receives the left of the window, in pixels of the parent.
 * @param y       receives the top of the window.
 * @retval ORMIDEX_OK               stored.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_NULL_POINTER     a pointer is null.
 * @retval ORMIDEX_GENERAL_FAILURE  the window does not tell.
 * @retval ORMIDEX_NO_PREVIEW       there is no preview window.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetPreviewWindowPos(OrmidexHandle handle,
                                                                  OrmidexUInt32* x,
                                                                  OrmidexUInt32* y);

/**
 * Tells the size of the preview window's client area.
 *
 * @param handle  the camera.
 * @param width   receives the width in pixels.
 * @param height  receives the height in pixels.
 * @retval ORMIDEX_OK            stored.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  a pointer is null.
 * @retval ORMIDEX_NO_PREVIEW    there is no preview window.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexGetPreviewWindowSize(OrmidexHandle handle,
                                                                   OrmidexUInt32* width,
                                                                   OrmidexUInt32* height);

/**
 * Moves and sizes the preview window so that its client area covers a rectangle.
 *
 * @param handle     the camera.
 * @param rectangle  the client area, in pixels of the parent. Left and top are
 *                   remembered also when there is no preview.
 * @retval ORMIDEX_OK            the window was told.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_NULL_POINTER  `rectangle` is null.
 * @retval ORMIDEX_NO_PREVIEW    there is no preview window.
 * @remark Threads: any; waits until the window's thread has handled a message.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetPreviewWindow(OrmidexHandle handle,
                                                               const OrmidexRect* rectangle);

/**
 * Sizes the preview window so that it shows the frame pixel for pixel, and brings
 * a maximised window back to normal.
 *
 * @param handle  the camera.
 * @retval ORMIDEX_OK               done.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_GENERAL_FAILURE  the window does not tell where it is.
 * @retval ORMIDEX_NO_PREVIEW       there is no preview window.
 * @remark Threads: any; waits until the window's thread has handled a message.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexResetPreviewWindow(OrmidexHandle handle);

/**
 * Installs or removes the callback that draws into images.
 *
 * @param handle      the camera.
 * @param forPreview  not 0: it draws into the preview.
 * @param forSaving   not 0: it draws into frames before they are saved.
 * @param callback    the callback; null removes it. It stays in use until replaced.
 * @retval ORMIDEX_OK            installed or removed.
 * @retval ORMIDEX_NO_CAMERA     no open camera.
 * @retval ORMIDEX_OUT_OF_RANGE  both flags are 0; nothing changes.
 * @remark Threads: any but that of the callback; waits for a callback that runs.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSetOverlayCallBack(OrmidexHandle handle,
                                                                 OrmidexUInt32 forPreview,
                                                                 OrmidexUInt32 forSaving,
                                                                 OrmidexOverlayCallback callback);

/* ---- Files -------------------------------------------------------------- */

/**
 * Writes a 24-bit image as a bitmap file. Rows are not padded.
 *
 * @param handle  the camera; its frame width and height are those of the image.
 * @param image   the image, 3 * frame width * height bytes. A saving overlay
 *                callback draws into it first.
 * @param path    file to create or overwrite, zero-terminated.
 * @retval ORMIDEX_OK               written; a full disk is not noticed.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_NULL_POINTER     `image` or `path` is null.
 * @retval ORMIDEX_FILE_NOT_OPENED  the file could not be opened.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSaveFrameAsBitmap(OrmidexHandle handle, void* image,
                                                                const char* path);

/**
 * Writes an 8-bit raw frame as a grey bitmap file of 256 levels. The rows are
 * written as they are, top row first and without padding.
 *
 * @param handle  the camera; its frame geometry is that of the frame.
 * @param frame   the raw frame. A saving overlay callback draws into it first.
 * @param path    file to create or overwrite, zero-terminated.
 * @retval ORMIDEX_OK               written; a full disk is not noticed. Also when
 *                                  memory ran out: then there is no file.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_NULL_POINTER     `frame` or `path` is null.
 * @retval ORMIDEX_FILE_NOT_OPENED  the file could not be opened.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSaveFrameAsMono8(OrmidexHandle handle, void* frame,
                                                               const char* path);

/**
 * Writes a 16-bit raw frame as a bitmap file of a form of its own: the upper 10
 * bits of each sample as 16-bit words, with a table of 1024 grey levels.
 *
 * @param handle  the camera; its frame geometry is that of the frame.
 * @param frame   the raw frame. The file holds the frame as it was before a saving
 *                overlay callback draws into it.
 * @param path    file to create or overwrite, zero-terminated.
 * @retval ORMIDEX_OK               written; a full disk is not noticed. Also when
 *                                  memory ran out: then there is no file.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_NULL_POINTER     `frame` or `path` is null.
 * @retval ORMIDEX_FILE_NOT_OPENED  the file could not be opened.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSaveFrameAsMono16(OrmidexHandle handle, void* frame,
                                                                const char* path);

/**
 * Converts a raw frame and writes it as an uncompressed TIFF file: colour frames
 * with 8 or 16 bits a channel as they come, monochrome frames as they are.
 *
 * @param handle        the camera; its frame geometry is that of the frame.
 * @param frame         the raw frame; it is not changed. A saving overlay callback
 *                      draws into a copy.
 * @param path          file to create or overwrite, zero-terminated.
 * @param correctColor  not 0: adjust the colours of a colour frame.
 * @param amount        as for OrmidexColorCorrectRgb.
 * @param algorithm     one of OrmidexAlgorithm; checked for monochrome frames too.
 * @retval ORMIDEX_OK               written; a full disk is not noticed.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_NULL_POINTER     `frame` or `path` is null.
 * @retval ORMIDEX_FILE_NOT_OPENED  the file could not be opened.
 * @retval ORMIDEX_OUT_OF_RANGE     not such an algorithm.
 * @retval ORMIDEX_OUT_OF_MEMORY    no working memory.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSaveFrameAsTiff(OrmidexHandle handle,
                                                              const void* frame, const char* path,
                                                              OrmidexUInt32 correctColor,
                                                              OrmidexInt32 amount,
                                                              OrmidexUInt32 algorithm);

/**
 * Writes a 24-bit image as a baseline JPEG file of quality 95. No overlay callback
 * is called.
 *
 * @param handle  the camera; its frame width and height are those of the image.
 * @param image   the image, 3 * frame width * height bytes. Not null.
 * @param path    file to create or overwrite, zero-terminated. Not null.
 * @retval ORMIDEX_OK             compressed; a file that could not be opened is
 *                                reported on the standard output only.
 * @retval ORMIDEX_NO_CAMERA      `handle` is null.
 * @retval ORMIDEX_OUT_OF_MEMORY  no working memory.
 * @remark Threads: any; beside other calls.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexSaveFrameAsJpeg(OrmidexHandle handle,
                                                              const void* image, const char* path);

/**
 * Takes a still frame, converts it and writes it as a 24-bit bitmap file.
 *
 * The three output times are float values like those of OrmidexReturnStillFrame,
 * but their 32 bits are passed in integer arguments.
 *
 * @param handle            the camera.
 * @param exposure          exposure time, as for OrmidexReturnStillFrame.
 * @param useFirstOutput    not 0 drives the first output.
 * @param firstOutputTime   the bits of a float: time of the first output.
 * @param useSecondOutput   not 0 drives the second output.
 * @param secondOutputTimeA the bits of a float: first time of the second output.
 * @param secondOutputTimeB the bits of a float: second time of the second output.
 * @param path              file to create or overwrite, zero-terminated.
 * @param correctColor      not 0: adjust the colours of a colour frame.
 * @param amount            as for OrmidexColorCorrectRgb.
 * @param algorithm         one of OrmidexAlgorithm; not read for monochrome cameras.
 * @retval ORMIDEX_OK               written; a full disk is not noticed.
 * @retval ORMIDEX_NO_CAMERA        no open camera.
 * @retval ORMIDEX_NULL_POINTER     `path` is null.
 * @retval ORMIDEX_REQUEST_FAILED   the driver failed a request.
 * @retval ORMIDEX_FILE_NOT_OPENED  the file could not be opened.
 * @retval ORMIDEX_OUT_OF_RANGE     the time of an output in use does not fit, or not
 *                                  such an algorithm.
 * @retval ORMIDEX_OUT_OF_MEMORY    no working memory.
 * @retval ORMIDEX_NOT_SUPPORTED    the imager's type is not known.
 * @retval ORMIDEX_WRONG_STATE      triggered capture is armed.
 * @remark Threads: any; waits for other calls that change this camera's stream.
 *         Blocks until the driver answers.
 */
ORMIDEX_API OrmidexStatus ORMIDEX_CALL OrmidexCaptureFrameToBitmap(
    OrmidexHandle handle, float exposure, OrmidexUInt32 useFirstOutput,
    OrmidexUInt32 firstOutputTime, OrmidexUInt32 useSecondOutput, OrmidexUInt32 secondOutputTimeA,
    OrmidexUInt32 secondOutputTimeB, const char* path, OrmidexUInt32 correctColor,
    OrmidexInt32 amount, OrmidexUInt32 algorithm);

#ifdef __cplusplus
}
#endif

#endif /* ORMIDEX_H_ */
