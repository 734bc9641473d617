/* SPDX-License-Identifier: MIT */
/* A user's program in C: it is built against the installed package, and uses a little of each header. */
#include <vellum/values.h>
#include <vellum/vellum.h>

#include <stdio.h>

int main(int argc, char **argv) {
    const ValString *path = argc > 1 ? ValStringCreateWithCString(argv[1]) : NULL;
    const ValURL *url = ValURLCreateWithFileSystemPath(path, false, NULL);
    const ValString *type = VLCopyTypeIdentifier(url);
    const char *text = ValStringGetUTF8(type, NULL);
    printf("%s %s\n", ValStringGetUTF8(kVLFontURLScheme, NULL), text ? text : "none");
    ValRelease(type);
    ValRelease(url);
    ValRelease(path);
    return text ? 0 : 1;
}
