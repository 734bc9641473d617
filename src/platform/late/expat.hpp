// SPDX-License-Identifier: MIT
// Expat, opened late: what reads property lists.
#pragma once

#include "platform/late/late_library.hpp"

#include <expat.h>

// clang-format off
#define VELLUM_EXPAT_FUNCTIONS(FUNCTION) \
    FUNCTION(XML_GetErrorCode) \
    FUNCTION(XML_Parse) \
    FUNCTION(XML_ParserCreate) \
    FUNCTION(XML_ParserFree) \
    FUNCTION(XML_SetCharacterDataHandler) \
    FUNCTION(XML_SetElementHandler) \
    FUNCTION(XML_SetStartDoctypeDeclHandler) \
    FUNCTION(XML_SetUserData) \
    FUNCTION(XML_StopParser)
// clang-format on

namespace vellum {

VELLUM_LATE_LIBRARY(sExpat, "libexpat.so.1", VELLUM_EXPAT_FUNCTIONS);

} // namespace vellum
