/*
 * Opens the first camera, reads a frame and writes it as a bitmap.
 *
 *     cc first_picture.c $(pkg-config --cflags --libs ormidex) -o first_picture
 *     ORMIDEX_SIMULATOR=1 ./first_picture picture.bmp
 */
#include <ormidex.h>
#include <stdio.h>
#include <stdlib.h>

/* Reports a failure; returns whether all is well. */
static int succeeded(OrmidexStatus status, const char* what) {
  if (status != ORMIDEX_OK) fprintf(stderr, "%s: status %u\n", what, status);
  return status == ORMIDEX_OK;
}

static int take_picture(OrmidexHandle camera, const char* path) {
  const unsigned width = 640, height = 480; /* as every camera is opened */
  unsigned char* frame = malloc(width * height);
  unsigned char* image = malloc(width * height * 3);
  int ok = frame != NULL && image != NULL &&
           succeeded(OrmidexStartVideoStream(camera), "starting the stream") &&
           succeeded(OrmidexReturnVideoData(camera, width * height, frame), "reading a frame") &&
           succeeded(OrmidexConvertColor8BppTo24Bpp(camera, frame, width, height, image,
                                                    ORMIDEX_BILINEAR),
                     "converting the frame") &&
           succeeded(OrmidexSaveFrameAsBitmap(camera, image, path), "writing the bitmap");
  free(frame);
  free(image);
  return ok;
}

int main(int argc, char** argv) {
  const char* path = argc > 1 ? argv[1] : "picture.bmp";
  OrmidexHandle camera = NULL;
  int ok;
  if (!succeeded(OrmidexInitialize("", 0, &camera), "opening the camera")) return 1;
  ok = take_picture(camera, path);
  OrmidexUninitialize(&camera);
  if (ok) printf("wrote %s\n", path);
  return ok ? 0 : 1;
}
