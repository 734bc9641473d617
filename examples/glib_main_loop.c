/* SPDX-License-Identifier: MIT */
/*
 * Hearing of changes in a program that runs GLib's main loop, as every GTK program does: add an observer,
 * and that is all.
 *
 *     cc glib_main_loop.c $(pkg-config --cflags --libs vellum glib-2.0)
 *     ./a.out FONT...
 *
 * Registers the font files for itself, says what it hears, takes them out again, and ends when it has heard
 * of that, too.
 */
#include <vellum/vellum.h>

#include <glib.h>
#include <stdio.h>
#include <string.h>

typedef struct {
    GMainLoop *loop;
    const ValArray *files;
} Program;

static size_t Show(const char *change, const ValArray *fonts) {
    for (size_t i = 0; i < ValArrayGetCount(fonts); ++i)
        printf("%s %s\n", change, ValStringGetUTF8(ValArrayGetValue(fonts, i), NULL));
    return ValArrayGetCount(fonts);
}

static void FontsChanged(void *center, void *observer, const ValString *name, const void *object,
                         const ValDictionary *user_info) {
    (void)center, (void)name, (void)object;
    Program *program = observer;
    if (Show("added", ValDictionaryGetValue(user_info, kAvailableFontURLsAddedKey)) > 0)
        VLUnregisterFonts(program->files, 0, kVLScopeProcess, NULL);
    if (Show("removed", ValDictionaryGetValue(user_info, kAvailableFontURLsRemovedKey)) > 0)
        g_main_loop_quit(program->loop);
}

/* Names of files are bytes, and need not be text. Null when memory is exhausted. */
static const ValURL *FileURL(const char *path) {
    const ValString *bytes = ValStringCreateWithFileSystemRepresentation(path, strlen(path));
    const ValURL *url = ValURLCreateWithFileSystemPath(bytes, false, NULL);
    ValRelease(bytes);
    return url;
}

static const ValArray *FilesOf(int count, char **paths) {
    ValArray *files = ValArrayCreateMutable(0, &kValValueCallbacks);
    for (int i = 0; i < count; ++i) {
        const ValURL *url = FileURL(paths[i]);
        if (url) ValArrayAppend(files, url);
        ValRelease(url);
    }
    return files;
}

/* True when all of them were: of anything less the program would wait for what never comes. */
static bool Register(const ValArray *files, int count) {
    const bool all = ValArrayGetCount(files) == (size_t)count;
    return all && VLRegisterFonts(files, 0, kVLScopeProcess, NULL);
}

static bool HearOfFiles(Program *program, int count) {
    if (!VLAddFontsChangedObserver(program, FontsChanged)) return false;
    const bool registered = Register(program->files, count);
    puts(registered ? "registered" : "not all could be registered");
    if (registered) g_main_loop_run(program->loop);
    VLRemoveFontsChangedObserver(program);
    return registered;
}

int main(int count, char **arguments) {
    if (count < 2) {
        fprintf(stderr, "usage: %s FONT...\n", count > 0 ? arguments[0] : "glib_main_loop");
        return 2;
    }
    Program program = {g_main_loop_new(NULL, FALSE), FilesOf(count - 1, arguments + 1)};
    const bool heard = HearOfFiles(&program, count - 1);
    ValRelease(program.files);
    g_main_loop_unref(program.loop);
    return heard ? 0 : 1;
}
