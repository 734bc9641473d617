# SPDX-License-Identifier: MIT
# What fontTools says of a font file's faces, in the fields and the order of `vellum inspect --json`.
# The rule by which a name is chosen among its records is written here a second time, on purpose.
import io
import struct

from fontTools.ttLib import TTCollection, TTFont

FAMILY, SUBFAMILY, FULL, POSTSCRIPT, PREFERRED_FAMILY, PREFERRED_SUBFAMILY, VARIATION_PREFIX = 1, 2, 4, 6, 16, 17, 25
NO_NAME = 0xFFFF


def rank(record):
    """How good a record is for people who read English; less is better, None is no English."""
    if record.platformID == 3 and record.langID == 0x409:
        return 0
    if record.platformID == 3 and record.langID & 0x3FF == 0x09:
        return 1
    if (record.platformID, record.platEncID, record.langID) == (1, 0, 0):
        return 2
    return 3 if record.platformID == 0 else None


def decoded(record):
    try:
        return record.toUnicode()
    except (UnicodeDecodeError, LookupError):
        return None


def name(font, name_id):
    """A name: the best English record, else the first that decodes; None without any."""
    readable = [(rank(r), decoded(r)) for r in font["name"].names if r.nameID == name_id]
    readable = [(place, text) for place, text in readable if text is not None]
    english = [pair for pair in readable if pair[0] is not None]
    if english:
        return min(english, key=lambda pair: pair[0])[1]
    return readable[0][1] if readable else None


def first_name(font, *name_ids):
    return next((text for text in (name(font, name_id) for name_id in name_ids) if text is not None), None)


def axis_name(font, axis):
    return name(font, axis.axisNameID) or axis.axisTag


def axes(font):
    if "fvar" not in font:
        return []
    return [{"tag": axis.axisTag, "name": axis_name(font, axis), "minimum": axis.minValue,
             "default": axis.defaultValue, "maximum": axis.maxValue} for axis in font["fvar"].axes]


def face_facts(font, tags):
    return {
        "instance": False,
        "postscriptName": name(font, POSTSCRIPT),
        "familyName": first_name(font, PREFERRED_FAMILY, FAMILY),
        "fullName": name(font, FULL),
        "subfamilyName": first_name(font, PREFERRED_SUBFAMILY, SUBFAMILY),
        "tableTags": tags,
        "axes": axes(font),
        "variations": {a["name"]: a["default"] for a in axes(font)} or None,
    }


class Prefix(str):
    """A PostScript name of which only the beginning is known: the rest is the reader's to construct."""


def instance_postscript_name(font, instance, family):
    given = name(font, instance.postscriptNameID) if instance.postscriptNameID != NO_NAME else None
    if given is not None:
        return given
    prefix = first_name(font, VARIATION_PREFIX) or family
    return Prefix("".join(c for c in prefix if c.isascii() and c.isalnum()) + "-")


def named_instances(font):
    """The named instances that are not the default of every axis."""
    fvar = font["fvar"]
    return [instance for instance in fvar.instances
            if any(instance.coordinates[axis.axisTag] != axis.defaultValue for axis in fvar.axes)]


def instance_facts(font, face):
    """The facts of each face that a named instance is."""
    fvar = font["fvar"]
    for instance in named_instances(font):
        style = name(font, instance.subfamilyNameID)
        yield dict(
            face, instance=True, subfamilyName=style,
            fullName=f"{face['familyName']} {style}",
            postscriptName=instance_postscript_name(font, instance, face["familyName"]),
            variations={axis_name(font, axis): instance.coordinates[axis.axisTag] for axis in fvar.axes})


def directory_tags(data, start):
    """The table tags in the order of the file's directory; fontTools sorts them by offset."""
    count = struct.unpack_from(">H", data, start + 4)[0]
    places = range(start + 12, start + 12 + 16 * count, 16)
    return [data[place:place + 4].decode("latin-1") for place in places]


def fonts_of_file(path):
    """(font, its table tags) of a file, or of each member of a collection."""
    with open(path, "rb") as file:
        data = file.read()
    if data[:4] == b"ttcf":
        fonts = TTCollection(io.BytesIO(data), lazy=True).fonts
        count = struct.unpack_from(">L", data, 8)[0]
        starts = struct.unpack_from(f">{count}L", data, 12)
    else:
        fonts, starts = [TTFont(io.BytesIO(data), lazy=True)], [0]
    return [(font, directory_tags(data, start)) for font, start in zip(fonts, starts)]


def faces_of_file(path):
    """The facts of a file's faces: those of its collection, then the instances of each."""
    fonts = fonts_of_file(path)
    faces = [face_facts(font, tags) for font, tags in fonts]
    return faces + [facts for (font, _), face in zip(fonts, faces) if face["axes"]
                    for facts in instance_facts(font, face)]
