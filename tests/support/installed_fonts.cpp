// SPDX-License-Identifier: MIT
#include "support/installed_fonts.hpp"

#include "platform/font/type_identifier.hpp"
#include "support/temp_dir.hpp"

#include <filesystem>

namespace vellum::test {

std::vector<Ref<const ValURL>> InstalledFonts() {
    std::vector<Ref<const ValURL>> urls;
    for (const char *root : {"/usr/share/fonts", "/usr/share/texmf/fonts"}) {
        if (!std::filesystem::is_directory(root)) continue;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(root)) {
            if (!entry.is_regular_file()) continue;
            auto url = FileURL(entry.path().native());
            if (CopyTypeIdentifier(url.Get())) urls.push_back(std::move(url));
        }
    }
    return urls;
}

} // namespace vellum::test
