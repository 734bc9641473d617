// SPDX-License-Identifier: MIT
#include "platform/late/every_library.hpp"

#include "platform/late/expat.hpp"
#include "platform/late/freetype.hpp"
#include "platform/late/glib.hpp"
#include "platform/late/harfbuzz.hpp"

namespace vellum {

void OpenEveryLibrary() noexcept {
    for (LateLibrary *library : {&sExpat, &sFreeType, &sGLib, &sHarfBuzz}) library->Open();
}

} // namespace vellum
