"""Opens the first camera, reads a frame and writes it as a bitmap.

    ORMIDEX_SIMULATOR=1 python3 first_picture.py picture.bmp
"""

import sys

import ormidex


def main() -> int:
    path = sys.argv[1] if len(sys.argv) > 1 else "picture.bmp"
    try:
        with ormidex.Camera() as camera:
            camera.start_stream()
            image = camera.convert(camera.read_frame())
            camera.save_bitmap(image, path)
    except ormidex.Error as error:
        print(error, file=sys.stderr)
        return 1
    print("wrote", path, "of", image.shape[1], "x", image.shape[0], "pixels")
    return 0


if __name__ == "__main__":
    sys.exit(main())
