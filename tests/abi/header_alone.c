/* The header is all an application needs, in old C and old C++ too. */
#include "ormidex.h"
#include "ormidex.h"

static OrmidexUInt32 ORMIDEX_CALL DrawNothing(OrmidexHandle handle, void *image,
                                              OrmidexUInt32 width, OrmidexUInt32 height,
                                              OrmidexUInt32 format) {
  (void)handle;
  (void)image;
  (void)width;
  (void)height;
  (void)format;
  return 0;
}

/* Sizes that applications were compiled with. */
struct SizesOfRecords {
  char rect_is_16[sizeof(OrmidexRect) == 16 ? 1 : -1];
  char version_is_116[sizeof(OrmidexHardwareVersion) == 116 ? 1 : -1];
  char integers_are_4[sizeof(OrmidexUInt32) == 4 && sizeof(OrmidexInt32) == 4 ? 1 : -1];
};

int main(void) {
  OrmidexHandle camera = 0;
  OrmidexHardwareVersion version;
  OrmidexRect rectangle = {0, 0, 640, 480};
  OrmidexOverlayCallback draw = DrawNothing;
  OrmidexStatus status = OrmidexInitialize("", 0, &camera);
  if (status != ORMIDEX_OK) return (int)status;
  version.imagerGeneration = 0;
  (void)OrmidexGetHardwareVersion(camera, &version);
  (void)OrmidexSetPreviewWindow(camera, &rectangle);
  (void)OrmidexSetOverlayCallBack(camera, 1, 1, draw);
  (void)OrmidexSetExposureTime(camera, 12.5f, 0);
  return (int)OrmidexUninitialize(&camera);
}
