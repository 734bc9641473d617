// SPDX-License-Identifier: MIT
// A user's program in C++: the same as consumer.c, through the owning references.
#include <vellum/values.hpp>
#include <vellum/vellum.h>

#include <cstdio>

int main(int argc, char **argv) {
    auto path = vellum::Adopt(argc > 1 ? ValStringCreateWithCString(argv[1]) : nullptr);
    auto url = vellum::Adopt(ValURLCreateWithFileSystemPath(path.Get(), false, nullptr));
    auto type = vellum::Adopt(VLCopyTypeIdentifier(url.Get()));
    const char *text = ValStringGetUTF8(type.Get(), nullptr);
    std::printf("%s %s\n", ValStringGetUTF8(kVLFontURLScheme, nullptr), text ? text : "none");
    return text ? 0 : 1;
}
