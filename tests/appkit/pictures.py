"""Makes the pictures of the tests and reads back what the codec wrote, by means that the codec knows nothing of.

  pictures.py make FOLDER NAME...   writes each picture to the file NAME in FOLDER, and what it shows to NAME.raw
  pictures.py read FILE...          writes what each file shows, as Pillow reads it, to FILE.raw

A .raw file is one line, "FORMAT WIDTH HEIGHT MODE BITS", and the samples behind it: rows from the top, the samples of a
pixel next to each other, 16-bit samples with the high byte first. MODE is L (grey), LA (grey and alpha), RGB or RGBA.
"""

import io
import random
import struct
import sys
import zlib

from PIL import Image, ImageDraw

Image.MAX_IMAGE_PIXELS = None


def photo(width, height, mode="RGB"):
    """Soft gradients and a few sharp edges, different in every corner and every channel."""
    across = Image.linear_gradient("L").rotate(90).resize((width, height))
    down = Image.linear_gradient("L").resize((width, height))
    disc = Image.radial_gradient("L").resize((width, height))
    image = Image.merge("RGB", (across, down, disc))
    draw = ImageDraw.Draw(image)
    draw.rectangle((0, 0, width // 4, height // 4), fill=(200, 30, 60))
    draw.line((0, height, width, 0), fill=(20, 220, 240), width=max(1, width // 40))
    if mode == "RGBA":
        image.putalpha(across.transpose(Image.Transpose.ROTATE_180))
    return image if mode == "RGBA" else image.convert(mode)


def encoded(image, format, **options):
    out = io.BytesIO()
    image.save(out, format, **options)
    return out.getvalue()


def raw(image, format, mode=None):
    if mode is None:
        mode = {"P": "RGB", "1": "L", "CMYK": "RGB"}.get(image.mode, image.mode)
        if "transparency" in image.info:
            mode = "RGBA"
    if mode.startswith("I"):
        head = f"{format} {image.width} {image.height} L 16\n"
        return head.encode() + b"".join(sample.to_bytes(2, "big") for sample in image.getdata())
    image = image.convert(mode)
    head = f"{format} {image.width} {image.height} {mode} 8\n"
    return head.encode() + image.tobytes()


def lossless(image, format, mode=None, **options):
    """A file and what it shows, for a format that keeps every sample."""
    return encoded(image, format, **options), raw(image, format, mode)


def jpeg(image, **options):
    """A JPEG shows what an independent decoder makes of it."""
    options.setdefault("quality", 90)
    data = encoded(image, "JPEG", **options)
    return data, raw(Image.open(io.BytesIO(data)), "JPEG")


def lying(image, orientation):
    """A JPEG that is stored turned and mirrored, and says so as cameras do, with one of the eight numbers of EXIF."""
    stored = {
        1: [], 2: [Image.Transpose.FLIP_LEFT_RIGHT], 3: [Image.Transpose.ROTATE_180], 4: [Image.Transpose.FLIP_TOP_BOTTOM],
        5: [Image.Transpose.TRANSPOSE], 6: [Image.Transpose.ROTATE_90], 7: [Image.Transpose.TRANSVERSE],
        8: [Image.Transpose.ROTATE_270],
    }[orientation]
    for step in stored:
        image = image.transpose(step)
    exif = Image.Exif()
    exif[0x0112] = orientation
    data, _ = jpeg(image, exif=exif, subsampling=0, quality=95)
    shown = Image.open(io.BytesIO(data))
    undone = {Image.Transpose.ROTATE_90: Image.Transpose.ROTATE_270, Image.Transpose.ROTATE_270: Image.Transpose.ROTATE_90}
    for step in stored:
        shown = shown.transpose(undone.get(step, step))
    return data, raw(shown, "JPEG")


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(width, height, depth, colour, rows, *others):
    head = struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + b"".join(others)
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def deep(mode, samples, colour, width=37, height=23):
    """A PNG of 16 bits a sample, all of them used, written without any library's help."""
    chance = random.Random(16)
    row = lambda: struct.pack(f">{width * samples}H", *(chance.randrange(65536) for _ in range(width * samples)))
    rows = [row() for _ in range(height)]
    data = png(width, height, 16, colour, b"".join(b"\0" + row for row in rows))
    return data, f"PNG {width} {height} {mode} 16\n".encode() + b"".join(rows)


def animation():
    """Three frames, of which the first has a transparent hole."""
    frames = [Image.new("RGBA", (40, 30), colour) for colour in ("red", "green", "blue")]
    ImageDraw.Draw(frames[0]).rectangle((5, 5, 20, 20), fill=(0, 0, 0, 0))
    data = encoded(frames[0], "GIF", save_all=True, append_images=frames[1:], duration=100, disposal=2)
    first = Image.open(io.BytesIO(data))
    first.seek(0)
    return data, raw(first.convert("RGBA"), "GIF")


def corner_gif():
    """A frame of 4 by 3 that stands at 5, 2 on a screen of 20 by 10."""
    frame = encoded(Image.new("P", (4, 3), 0), "GIF")
    colours = b"\x0a\x14\x1e" + b"\xff" * 3
    head = b"GIF89a" + struct.pack("<HHBBB", 20, 10, 0x80, 0, 0) + colours
    colours_size = lambda flags: 3 * (2 << (flags & 7)) if flags & 0x80 else 0
    start = 13 + colours_size(frame[10])
    pixels = start + 10 + colours_size(frame[start + 9])
    data = head + b"," + struct.pack("<HHHHB", 5, 2, 4, 3, 0) + frame[pixels:]
    shown = Image.new("RGBA", (20, 10), (0, 0, 0, 0))
    shown.paste((10, 20, 30, 255), (5, 2, 9, 5))
    return data, raw(shown, "GIF")


def bmp(head, rows):
    """A BMP file of the header and the rows given."""
    start = 14 + len(head)
    return b"BM" + struct.pack("<IHHI", start + len(rows), 0, 0, start) + head + rows


def masked_bmp(mode, height):
    """32 bits a pixel, described by a header of version 5; rows from the top when the height is negative."""
    image = photo(33, 21, mode)
    red, green, blue, alpha = image.convert("RGBA").split()
    if height > 0:
        red, green, blue, alpha = (band.transpose(Image.Transpose.FLIP_TOP_BOTTOM) for band in (red, green, blue, alpha))
    masks = struct.pack("<IIII", 0xFF0000, 0xFF00, 0xFF, 0xFF000000 if mode == "RGBA" else 0)
    head = struct.pack("<IiiHHIIiiII", 124, 33, height, 1, 32, 3, 0, 2835, 2835, 0, 0) + masks + b"BGRs" + bytes(64)
    return bmp(head, Image.merge("RGBA", (blue, green, red, alpha)).tobytes()), raw(image, "BMP")


def downward_bmp():
    """24 bits a pixel without masks, rows from the top."""
    image = photo(32, 21)
    head = struct.pack("<IiiHHIIiiII", 40, 32, -21, 1, 24, 0, 0, 0, 0, 0, 0)
    red, green, blue = image.split()
    return bmp(head, Image.merge("RGB", (blue, green, red)).tobytes()), raw(image, "BMP")


def transparent(image):
    """A palette with one transparent colour."""
    small = image.convert("RGB").quantize(16)
    data = encoded(small, "PNG", transparency=3)
    return data, raw(Image.open(io.BytesIO(data)), "PNG", "RGBA")


def resized(name, at, format, *numbers):
    """A picture that claims another size."""
    data, shown = pictures[name]()
    size = struct.pack(format, *numbers)
    return data[:at] + size + data[at + len(size) :], shown


def plain_png(width, height):
    """A whole picture, all black, of one bit a pixel: a few bytes whatever its size."""
    row = bytes(1 + (width + 7) // 8)
    return png(width, height, 1, 0, row * height), f"PNG {width} {height} L 8\n".encode() + bytes(width * height)


def huge_png():
    """An honest header, and next to nothing behind it."""
    return png(0x7FFFFFFF, 0x7FFFFFFF, 8, 6, b"\0" * 1000), b"PNG 0 0 RGB 8\n"


def huge_jpeg():
    data, shown = pictures["jpeg_grey"]()
    at = data.index(b"\xff\xc0") + 5
    return data[:at] + struct.pack(">HH", 65500, 65500) + data[at + 4 :], shown


def text_png():
    """One pixel, and a comment of 1 GiB."""
    packer = zlib.compressobj(9)
    packed = b"".join(packer.compress(bytes(1 << 20)) for _ in range(1024)) + packer.flush()
    return png(1, 1, 8, 2, bytes(4), chunk(b"zTXt", b"Comment\0\0" + packed)), b"PNG 0 0 RGB 8\n"


pictures = {
    "png": lambda: lossless(photo(301, 203), "PNG"),
    "png_dot": lambda: lossless(Image.new("RGB", (1, 1), (1, 2, 3)), "PNG"),
    "png_alpha": lambda: lossless(photo(64, 48, "RGBA"), "PNG"),
    "png_opaque": lambda: lossless(photo(64, 48).convert("RGBA"), "PNG"),
    "png_grey": lambda: lossless(photo(64, 48, "L"), "PNG"),
    "png_grey_alpha": lambda: lossless(photo(64, 48, "RGBA").convert("LA"), "PNG"),
    "png_bits": lambda: lossless(photo(65, 33).convert("1"), "PNG"),
    "png_palette": lambda: lossless(photo(64, 48).quantize(200), "PNG"),
    "png_palette_alpha": lambda: transparent(photo(64, 48)),
    "png_deep": lambda: deep("RGB", 3, 2),
    "png_deep_alpha": lambda: deep("RGBA", 4, 6),
    "png_deep_grey": lambda: deep("L", 1, 0),
    "png_large": lambda: lossless(photo(4000, 3000), "PNG", compress_level=1),
    "jpeg": lambda: jpeg(photo(301, 203)),
    "jpeg_dot": lambda: jpeg(Image.new("RGB", (1, 1), (90, 120, 200))),
    "jpeg_grey": lambda: jpeg(photo(64, 48, "L")),
    "jpeg_cmyk": lambda: jpeg(photo(64, 48, "CMYK")),
    "jpeg_progressive": lambda: jpeg(photo(301, 203), progressive=True),
    "jpeg_large": lambda: jpeg(photo(4000, 3000)),
    "gif": lambda: lossless(photo(301, 203).quantize(256), "GIF"),
    "gif_dot": lambda: lossless(Image.new("P", (1, 1), 0), "GIF"),
    "gif_animated": animation,
    "gif_corner": corner_gif,
    "bmp": lambda: lossless(photo(301, 203), "BMP"),
    "bmp_dot": lambda: lossless(Image.new("RGB", (1, 1), (9, 8, 7)), "BMP"),
    "bmp_grey": lambda: lossless(photo(33, 21, "L"), "BMP"),
    "bmp_palette": lambda: lossless(photo(33, 21).quantize(100), "BMP"),
    "bmp_bits": lambda: lossless(photo(65, 33).convert("1"), "BMP"),
    "bmp_alpha": lambda: masked_bmp("RGBA", 21),
    "bmp_alpha_downward": lambda: masked_bmp("RGBA", -21),
    "bmp_no_alpha": lambda: masked_bmp("RGB", 21),
    "bmp_downward": downward_bmp,
}
pictures |= {
    "png_widest": lambda: plain_png(32767, 1),
    "png_highest": lambda: plain_png(1, 32767),
    "bomb_png_wide": lambda: plain_png(32768, 1),
    "bomb_png_high": lambda: plain_png(1, 32768),
    "bomb_png_most": lambda: plain_png(8192, 8193),
    "bomb_png_both": huge_png,
    "bomb_png_text": text_png,
    "bomb_jpeg": huge_jpeg,
    "bomb_gif_screen": lambda: resized("gif_corner", 6, "<HH", 65535, 65535),
    "bomb_gif_area": lambda: resized("gif_corner", 6, "<HH", 20000, 20000),
    "bomb_gif_place": lambda: resized("gif_corner", 20, "<HH", 20000, 20000),
    "bomb_gif_frame": lambda: resized("gif_corner", 24, "<HH", 65535, 65535),
    "bomb_bmp": lambda: resized("bmp", 18, "<ii", 0x7FFFFFFF, 0x7FFFFFFF),
    "bomb_bmp_most": lambda: resized("bmp", 18, "<ii", 32767, 32767),
    "bomb_bmp_negative": lambda: resized("bmp", 18, "<ii", 8192, -0x80000000),
    "bomb_bmp_masks": lambda: resized("bmp_alpha", 18, "<ii", 32767, -0x80000000),
}
pictures |= {f"jpeg_orientation_{n}": lambda n=n: lying(photo(60, 40), n) for n in range(1, 9)}


def make(folder, *names):
    for name in names:
        data, shown = pictures[name]()
        with open(f"{folder}/{name}", "wb") as file:
            file.write(data)
        with open(f"{folder}/{name}.raw", "wb") as file:
            file.write(shown)


def read(*paths):
    for path in paths:
        image = Image.open(path)
        format = image.format
        image.load()
        with open(path + ".raw", "wb") as file:
            file.write(raw(image, format))


{"make": make, "read": read}[sys.argv[1]](*sys.argv[2:])
