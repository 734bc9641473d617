// SPDX-License-Identifier: MIT
// Another program, which knows fontconfig alone: prints the PostScript name of each font that it finds;
// of a font without any, such as stands for all instances of a variable font, the family name and a star.
#include <fontconfig/fontconfig.h>

#include <cstdio>

int main() {
    FcPattern *all = FcPatternCreate();
    FcObjectSet *wanted = FcObjectSetBuild(FC_FILE, FC_INDEX, FC_POSTSCRIPT_NAME, FC_FAMILY, nullptr);
    FcFontSet *found = FcFontList(nullptr, all, wanted);
    for (int i = 0; found && i < found->nfont; ++i) {
        FcChar8 *name = nullptr;
        if (FcPatternGetString(found->fonts[i], FC_POSTSCRIPT_NAME, 0, &name) == FcResultMatch)
            std::printf("%s\n", reinterpret_cast<const char *>(name));
        else if (FcPatternGetString(found->fonts[i], FC_FAMILY, 0, &name) == FcResultMatch)
            std::printf("%s*\n", reinterpret_cast<const char *>(name));
    }
    if (found) FcFontSetDestroy(found);
    FcObjectSetDestroy(wanted);
    FcPatternDestroy(all);
    FcFini();
    return found ? 0 : 1;
}
