"""Times Pillow on the files of a folder: formats_pillow.py FOLDER RUNS FORMAT... reads FOLDER/decode.FORMAT and
FOLDER/picture.ppm, and prints a line a format: name, milliseconds to decode, to encode, bytes; 0 where it cannot."""
import io
import sys
import time

from PIL import Image

Image.MAX_IMAGE_PIXELS = None
NAMES = {"JPG": "JPEG", "TIF": "TIFF", "J2K": "JPEG2000", "RAS": "SUN"}
OPTIONS = {
    "JPG": {"quality": 100, "subsampling": 0},
    "TIF": {"compression": "tiff_adobe_deflate"},
    "TGA": {"compression": "tga_rle"},
}


def shortest(runs, work):
    best = float("inf")
    for _ in range(runs):
        start = time.perf_counter()
        try:
            work()
        except Exception:  # whatever it cannot read or write
            return 0.0
        best = min(best, time.perf_counter() - start)
    return best * 1000


def main():
    folder, runs = sys.argv[1], int(sys.argv[2])
    picture = Image.open(folder + "/picture.ppm").convert("RGB")
    for name in sys.argv[3:]:
        with open(folder + "/decode." + name, "rb") as file:
            data = file.read()
        out = [b""]

        def encode():
            buffer = io.BytesIO()
            picture.save(buffer, NAMES.get(name, name), **OPTIONS.get(name, {}))
            out[0] = buffer.getbuffer()

        decoding = shortest(runs, lambda: Image.open(io.BytesIO(data)).load())
        print(name, decoding, shortest(runs, encode), len(out[0]), flush=True)


main()
