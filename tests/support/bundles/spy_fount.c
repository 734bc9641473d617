/* SPDX-License-Identifier: MIT */
/* A legacy font service that writes down what it is told: what a test looks at is what was really called.
 */
#include <vellum/fount.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define EXPORT __attribute__((visibility("default")))

EXPORT char SpyLog[1 << 20];
EXPORT uint32_t SpyNextContainer = 100;
EXPORT uint32_t SpyFontCount = 1;

/* Code may ask for fonts while it is loaded. */
__attribute__((constructor)) static void AskWhileLoaded(void) {
    if (getenv("SPY_FOUNT_ASKS")) ValRelease(VLCopyAvailableFontNames(kVLScopeAll));
}

static void Note(const char *text) {
    strncat(SpyLog, text, sizeof SpyLog - strlen(SpyLog) - 1);
}

static void NoteURL(const ValURL *url) {
    Note(" ");
    Note(ValStringGetUTF8(ValURLGetString(url), NULL));
}

static void NoteFonts(const void *fonts, uint8_t is_array) {
    if (!is_array) {
        NoteURL(fonts);
        return;
    }
    for (size_t i = 0; i < ValArrayGetCount(fonts); ++i) NoteURL(ValArrayGetValue(fonts, i));
}

EXPORT FountRegisterURLsFunction FountRegisterURLs;
EXPORT FountEnableURLsFunction FountEnableURLs;
EXPORT FountRegisterDataFunction FountRegisterData;
EXPORT FountFontNotifyFunction FountFontNotify;
EXPORT FountFontFindFromContainerFunction FountFontFindFromContainer;
EXPORT FountFontGetContainerFunction FountFontGetContainer;

void FountRegisterURLs(const void *fonts, uint8_t is_array, uint8_t registers, uint32_t reserved,
                       VLFontFlags flags, VLScope scope) {
    char text[100];
    snprintf(text, sizeof text, "%s array=%d reserved=%u flags=%x scope=%x",
             registers ? "register" : "withdraw", is_array, reserved, flags, scope);
    Note(text);
    NoteFonts(fonts, is_array);
    Note("\n");
}

void FountEnableURLs(const void *fonts, uint8_t is_array, uint8_t enables, VLFontFlags flags,
                     VLScope scope) {
    char text[100];
    snprintf(text, sizeof text, "%s array=%d flags=%x scope=%x", enables ? "enable" : "disable", is_array,
             flags, scope);
    Note(text);
    NoteFonts(fonts, is_array);
    Note("\n");
}

uint32_t FountRegisterData(const ValData *data, uint32_t container, VLFontFlags flags, VLScope scope) {
    char text[100];
    const uint32_t result = container ? container : SpyNextContainer++;
    snprintf(text, sizeof text, "data size=%zu container=%u flags=%x scope=%x is %u\n",
             ValDataGetLength(data), container, flags, scope, result);
    Note(text);
    return result;
}

void FountFontNotify(uint32_t event, uint32_t reserved) {
    char text[100];
    snprintf(text, sizeof text, "notify %u %u\n", event, reserved);
    Note(text);
}

uint32_t FountFontFindFromContainer(uint32_t container, uint32_t room, uint32_t *fonts) {
    char text[100];
    snprintf(text, sizeof text, "find container=%u room=%u\n", container, room);
    Note(text);
    for (uint32_t i = 0; i < room && i < SpyFontCount; ++i) fonts[i] = 10 * container + i + 1;
    return SpyFontCount;
}

uint32_t FountFontGetContainer(uint32_t font) {
    return font / 10;
}
