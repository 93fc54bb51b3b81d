// Opens the first camera, reads a frame and writes it as a bitmap.
//
//     c++ -std=c++20 first_picture.cpp $(pkg-config --cflags --libs ormidex) -o first_picture
//     ORMIDEX_SIMULATOR=1 ./first_picture picture.bmp
#include <cstdio>
#include <ormidex.hpp>

int main(int argc, char** argv) {
  const char* path = argc > 1 ? argv[1] : "picture.bmp";
  try {
    ormidex::Camera camera;
    camera.StartStream();
    const ormidex::Frame frame = camera.ReadFrame();
    camera.SaveBitmap(camera.Convert(frame), path);
    std::printf("wrote %s\n", path);
  } catch (const ormidex::Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
