# SPDX-License-Identifier: MIT
# The fonts that properties are compared on beside those that are installed, by what they are about.
import character_fonts
import name_fonts
import trait_fonts

GROUPS = {"names": name_fonts.name_fonts, "named": trait_fonts.named_fonts, "words": trait_fonts.words_fonts,
          "os2": trait_fonts.os2_fonts, "tables": trait_fonts.other_table_fonts,
          "instances": trait_fonts.instance_fonts, "characters": character_fonts.character_fonts,
          "bits": character_fonts.bit_fonts, "formats": character_fonts.format_fonts}


def write_all(folder):
    """Writes every font of the groups into folders (of a pathlib.Path) with their names."""
    for group, fonts in GROUPS.items():
        (folder / group).mkdir()
        for name, font in fonts().items():
            font.save(folder / group / f"{name}.ttf")
