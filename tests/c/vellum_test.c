/* SPDX-License-Identifier: MIT */
/* The register from C: what README shows, and every exported function once with nothing to say. */
#include "check.h"

#include <vellum/vellum.h>

#include <string.h>

#define FONT_PATH "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"

static const ValURL *FontURL(void) {
    const ValString *path = ValStringCreateWithCString(FONT_PATH);
    const ValURL *url = ValURLCreateWithFileSystemPath(path, false, NULL);
    ValRelease(path);
    return url;
}

static const ValSet *OneKey(const ValString *key) {
    const void *item = key;
    return ValSetCreate(&item, 1);
}

static void RegistersAndFindsAFont(void) {
    const ValURL *url = FontURL();
    const ValSet *keys = OneKey(kVLFontPropertyFamilyName);

    CHECK(VLCopyPropertiesForFont(url, keys, kVLScopeProcess) == NULL);
    CHECK(VLRegisterFont(url, 0, kVLScopeProcess));
    CHECK(!VLRegisterFont(url, 0, kVLScopeProcess));

    const ValDictionary *properties = VLCopyPropertiesForFont(url, keys, kVLScopeProcess);
    const ValString *family = ValDictionaryGetValue(properties, kVLFontPropertyFamilyName);
    CHECK(family && strcmp(ValStringGetUTF8(family, NULL), "DejaVu Sans") == 0);
    ValRelease(properties);

    const ValArray *names = VLCopyAvailableFontNames(kVLScopeProcess);
    CHECK(ValArrayGetCount(names) == 1);
    ValRelease(names);

    CHECK(VLUnregisterFont(url, 0, kVLScopeProcess));
    CHECK(VLCopyPropertiesForFont(url, keys, kVLScopeProcess) == NULL);
    ValRelease(keys);
    ValRelease(url);
}

static void HandsOutTheFilesThatFailed(void) {
    const ValURL *font = FontURL();
    const ValString *path = ValStringCreateWithCString("/nowhere/missing.ttf");
    const ValURL *missing = ValURLCreateWithFileSystemPath(path, false, NULL);
    const void *items[] = {missing, font};
    const ValArray *urls = ValArrayCreate(items, 2);

    const ValArray *errors = urls; /* any value: it must be overwritten */
    CHECK(!VLRegisterFonts(urls, 0, kVLScopeProcess, &errors));
    CHECK(ValArrayGetCount(errors) == 1 && ValEqual(ValArrayGetValue(errors, 0), missing));
    ValRelease(errors);
    CHECK(VLGetScopeForFont(font) & kVLScopeProcess);

    CHECK(VLUnregisterFonts(urls, 0, kVLScopeProcess, &errors));
    CHECK(errors == NULL);
    ValRelease(urls);
    ValRelease(missing);
    ValRelease(path);
    ValRelease(font);
}

static void BadArgumentsAnswerNothing(void) {
    const ValArray *errors = (const ValArray *)&errors;
    CHECK(!VLRegisterFonts(NULL, 0, kVLScopeProcess, &errors) && errors == NULL);
    errors = (const ValArray *)&errors;
    CHECK(!VLUnregisterFonts(NULL, 0, kVLScopeProcess, &errors) && errors == NULL);
    CHECK(!VLRegisterFont(NULL, 0, kVLScopeProcess) && !VLUnregisterFont(NULL, 0, kVLScopeProcess));
    CHECK(!VLRegisterDataFont(NULL, 0, 0, kVLScopeProcess) &&
          !VLUnregisterDataFont(NULL, 0, kVLScopeProcess));
    CHECK(!VLRegisterFontDirectory(NULL, 0, 0, kVLScopeUser) &&
          !VLUnregisterFontDirectory(NULL, 0, kVLScopeUser));
    VLEnableFonts(NULL, 0, kVLScopeAll);
    VLDisableFonts(NULL, 0, kVLScopeAll);
    VLSetPropertiesForFonts(NULL, NULL, kVLScopeAll);
    VLRemovePropertiesForFonts(NULL, NULL, kVLScopeAll);
    CHECK(VLCopyFontWithName(NULL, kVLScopeAll, 0) == NULL);
    CHECK(VLCopyFontWithProperties(NULL, kVLScopeAll, 0) == NULL);
    CHECK(VLCopyFontsWithProperties(NULL, kVLScopeAll, 0) == NULL);
    CHECK(VLCopyFamilyNamesForLanguage(NULL, kVLScopeAll, 0) == NULL);
    CHECK(VLCopyPropertiesForFont(NULL, NULL, kVLScopeAll) == NULL);
    CHECK(VLCopyPropertiesForFonts(NULL, NULL, kVLScopeAll) == NULL);
    CHECK(VLCopyPropertiesForAllFonts(NULL, kVLScopeAll) == NULL);
    CHECK(VLCopyPropertyForFonts(NULL, NULL, kVLScopeAll) == NULL);
    CHECK(VLCopyRegistrationInfoForFont(NULL, false) == NULL);
    CHECK(VLGetScopeForFont(NULL) == 0);
    CHECK(VLCopyFontURLForDataFont(NULL, 0) == NULL && VLGetDataFontFountFont(NULL) == 0);
    CHECK(VLGetDirectoryFlags(NULL) == 0);
    CHECK(VLCopyTypeIdentifier(NULL) == NULL && VLCopyTableTagsForFont(NULL) == NULL);
}

int main(void) {
    RegistersAndFindsAFont();
    HandsOutTheFilesThatFailed();
    BadArgumentsAnswerNothing();
    return EXIT_SUCCESS;
}
