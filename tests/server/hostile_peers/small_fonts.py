# SPDX-License-Identifier: MIT
# Small fonts, and files that look like one until somebody reads them.
import struct

HEAD = struct.pack(">HHIIIHHQQhhhhHHhhh", 1, 0, 0, 0, 0x5F0F3CF5, 0, 1000, 0, 0, 0, 0, 100, 100, 0, 8, 2, 1, 0)
HHEA = struct.pack(">HHhhhHhhhhhhhhhhhH", 1, 0, 800, -200, 0, 600, 0, 0, 600, 1, 0, 0, 0, 0, 0, 0, 0, 1)


def sfnt(tables, offset=0):
    """A font file of these tables, for a place in a larger file."""
    at, directory, content = offset + 12 + 16 * len(tables), b"", b""
    for tag in sorted(tables):
        data = tables[tag]
        directory += struct.pack(">4sIII", tag.encode(), 0, at + len(content), len(data))
        content += data + b"\0" * (-len(data) % 4)
    return struct.pack(">IHHHH", 0x00010000, len(tables), 0, 0, 0) + directory + content


def name_table(family):
    postscript = family.replace(" ", "") + "-Regular"
    records, storage = b"", b""
    for number, text in ((1, family), (2, "Regular"), (4, family), (6, postscript)):
        data = text.encode("utf-16-be")
        records += struct.pack(">6H", 3, 1, 0x409, number, len(data), len(storage))
        storage += data
    return struct.pack(">3H", 0, 4, 6 + len(records)) + records + storage


def cmap_table(groups, form=12):
    content = b"".join(struct.pack(">III", *group) for group in groups)
    subtable = struct.pack(">HHIII", form, 0, 16 + len(content), 0, len(groups)) + content
    return struct.pack(">HHHHI", 0, 1, 3, 10, 12) + subtable


def tables_of(family, glyphs=27):
    return {"head": HEAD, "hhea": HHEA, "hmtx": struct.pack(">Hh", 600, 0) + bytes(2 * (glyphs - 1)),
            "maxp": struct.pack(">IH", 0x5000, glyphs), "loca": bytes(2 * glyphs + 2), "glyf": bytes(2),
            "name": name_table(family), "cmap": cmap_table([(0x41, 0x5A, 1)]),
            "post": struct.pack(">IIhhIIIII", 0x30000, 0, 0, 0, 0, 0, 0, 0, 0)}


def font(family):
    return sfnt(tables_of(family))


def collection(count):
    """So many faces, of which all are the same."""
    start = 12 + 4 * count
    return b"ttcf" + struct.pack(">II", 0x10000, count) + struct.pack(">I", start) * count + \
        sfnt(tables_of("Many"), start)


def same_groups(count):
    """Every character again and again."""
    tables = tables_of("Groups", 65535)
    return sfnt({**tables, "cmap": cmap_table([(0, 65533, 1)] * count)})


def same_names(count):
    """Every name is the longest there can be."""
    records = b"".join(struct.pack(">6H", 3, 1, 0x409, i % 32767, 65534, 0) for i in range(count))
    table = struct.pack(">3H", 0, count, 6) + records + b"\0A" * 32767
    return sfnt({**tables_of("Names"), "name": table})


def many_axes(count):
    axes = struct.pack(">4siiiHH", b"wght", 0, 0, 65536, 0, 256) * count
    return sfnt({**tables_of("Axes"), "fvar": struct.pack(">8H", 1, 0, 16, 2, count, 20, 0, 4) + axes})


def hostile_files():
    """Files by name."""
    return {"nothing.ttf": b"", "no-font.ttf": b"no font at all" * 100, "cut.ttf": font("Cut")[:300],
            "directory.ttf": struct.pack(">IHHHH", 0x10000, 65535, 0, 0, 0) + b"aaaa" * 1000,
            "faces.ttc": collection(50000), "groups.ttf": same_groups(100000),
            "names.ttf": same_names(5000), "axes.ttf": many_axes(60000)}
