/* SPDX-License-Identifier: MIT */
/*
 * Hearing of changes in a program with a loop of its own: wait on one descriptor, call one function.
 *
 *     cc own_loop.c $(pkg-config --cflags --libs vellum)
 *     ./a.out FONT...
 *
 * Registers the font files for itself, says what it hears, takes them out again, and ends when it has heard
 * of that, too.
 */
#include <vellum/vellum.h>

#include <poll.h>
#include <stdio.h>

static const ValArray *files;
static bool done;

static size_t Show(const char *change, const ValArray *fonts) {
    for (size_t i = 0; i < ValArrayGetCount(fonts); ++i)
        printf("%s %s\n", change, ValStringGetUTF8(ValArrayGetValue(fonts, i), NULL));
    return ValArrayGetCount(fonts);
}

static void FontsChanged(void *center, void *observer, const ValString *name, const void *object,
                         const ValDictionary *user_info) {
    (void)center, (void)observer, (void)name, (void)object;
    if (Show("added", ValDictionaryGetValue(user_info, kAvailableFontURLsAddedKey)) > 0)
        VLUnregisterFonts(files, 0, kVLScopeProcess, NULL);
    if (Show("removed", ValDictionaryGetValue(user_info, kAvailableFontURLsRemovedKey)) > 0) done = true;
}

static const ValArray *FilesOf(int count, char **paths) {
    ValArray *array = ValArrayCreateMutable(0, &kValValueCallbacks);
    for (int i = 0; i < count; ++i) {
        const ValString *path = ValStringCreateWithCString(paths[i]);
        const ValURL *url = ValURLCreateWithFileSystemPath(path, false, NULL);
        ValArrayAppend(array, url);
        ValRelease(url);
        ValRelease(path);
    }
    return array;
}

/* A real program waits here for its windows and sockets, too. */
static void RunLoop(void) {
    struct pollfd fonts = {VLGetNotificationDescriptor(), POLLIN, 0};
    while (!done && poll(&fonts, 1, -1) > 0)
        if (fonts.revents & POLLIN) VLDeliverNotifications();
}

int main(int count, char **arguments) {
    files = FilesOf(count - 1, arguments + 1);
    VLAddFontsChangedObserver(&files, FontsChanged);
    const bool registered = VLRegisterFonts(files, 0, kVLScopeProcess, NULL);
    puts(registered ? "registered" : "not all could be registered");
    if (registered) RunLoop();
    VLRemoveFontsChangedObserver(&files);
    ValRelease(files);
    return registered ? 0 : 1;
}
