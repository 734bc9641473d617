// SPDX-License-Identifier: MIT
// Expat, opened late: what reads property lists.
#pragma once

#include "platform/late/late_library.hpp"

#include <expat.h>

namespace vellum {

inline constinit LateLibrary sExpat{"libexpat.so.1"};

VELLUM_LATE_FUNCTION(sExpat, XML_GetErrorCode);
VELLUM_LATE_FUNCTION(sExpat, XML_Parse);
VELLUM_LATE_FUNCTION(sExpat, XML_ParserCreate);
VELLUM_LATE_FUNCTION(sExpat, XML_ParserFree);
VELLUM_LATE_FUNCTION(sExpat, XML_SetCharacterDataHandler);
VELLUM_LATE_FUNCTION(sExpat, XML_SetElementHandler);
VELLUM_LATE_FUNCTION(sExpat, XML_SetStartDoctypeDeclHandler);
VELLUM_LATE_FUNCTION(sExpat, XML_SetUserData);
VELLUM_LATE_FUNCTION(sExpat, XML_StopParser);

} // namespace vellum
