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

#include <errno.h>
#include <poll.h>
#include <stdio.h>
#include <string.h>

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

/* Names of files are bytes, and need not be text. Null when memory is exhausted. */
static const ValURL *FileURL(const char *path) {
    const ValString *bytes = ValStringCreateWithFileSystemRepresentation(path, strlen(path));
    const ValURL *url = ValURLCreateWithFileSystemPath(bytes, false, NULL);
    ValRelease(bytes);
    return url;
}

static const ValArray *FilesOf(int count, char **paths) {
    ValArray *array = ValArrayCreateMutable(0, &kValValueCallbacks);
    for (int i = 0; i < count; ++i) {
        const ValURL *url = FileURL(paths[i]);
        if (url) ValArrayAppend(array, url);
        ValRelease(url);
    }
    return array;
}

/* True when all of them were: of anything less the program would wait for what never comes. */
static bool Register(int count) {
    const bool all = ValArrayGetCount(files) == (size_t)count;
    return all && VLRegisterFonts(files, 0, kVLScopeProcess, NULL);
}

/* A real program waits here for its windows and sockets, too. */
static void RunLoop(int descriptor) {
    struct pollfd fonts = {descriptor, POLLIN, 0};
    while (!done) {
        if (poll(&fonts, 1, -1) < 0 && errno != EINTR) break;
        if (fonts.revents & POLLIN) VLDeliverNotifications();
    }
}

static bool HearOfFiles(int count, int descriptor) {
    if (!VLAddFontsChangedObserver(&files, FontsChanged)) return false;
    const bool registered = Register(count);
    puts(registered ? "registered" : "not all could be registered");
    if (registered) RunLoop(descriptor);
    VLRemoveFontsChangedObserver(&files);
    return done;
}

int main(int count, char **arguments) {
    if (count < 2) {
        fprintf(stderr, "usage: %s FONT...\n", count > 0 ? arguments[0] : "own_loop");
        return 2;
    }
    const int descriptor = VLGetNotificationDescriptor(); /* poll would pass over -1, and wait for ever */
    if (descriptor < 0) {
        fputs("there is no descriptor to wait on: too many files are open\n", stderr);
        return 1;
    }
    files = FilesOf(count - 1, arguments + 1);
    const bool heard = HearOfFiles(count - 1, descriptor);
    ValRelease(files);
    return heard ? 0 : 1;
}
