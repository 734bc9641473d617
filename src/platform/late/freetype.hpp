// SPDX-License-Identifier: MIT
// FreeType, opened late: what reads Type 1, bitmap and packed fonts.
#pragma once

#include "platform/late/late_library.hpp"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_BDF_H
#include FT_BZIP2_H
#include FT_GZIP_H
#include FT_LZW_H
#include FT_MODULE_H
#include FT_TRUETYPE_TABLES_H
#include FT_TYPE1_TABLES_H

namespace vellum {

inline constinit LateLibrary sFreeType{"libfreetype.so.6"};

VELLUM_LATE_FUNCTION(sFreeType, FT_Add_Default_Modules);
VELLUM_LATE_FUNCTION(sFreeType, FT_Done_Face);
VELLUM_LATE_FUNCTION(sFreeType, FT_Get_BDF_Property);
VELLUM_LATE_FUNCTION(sFreeType, FT_Get_First_Char);
VELLUM_LATE_FUNCTION(sFreeType, FT_Get_Module);
VELLUM_LATE_FUNCTION(sFreeType, FT_Get_Next_Char);
VELLUM_LATE_FUNCTION(sFreeType, FT_Get_PS_Font_Info);
VELLUM_LATE_FUNCTION(sFreeType, FT_Get_Postscript_Name);
VELLUM_LATE_FUNCTION(sFreeType, FT_Load_Sfnt_Table);
VELLUM_LATE_FUNCTION(sFreeType, FT_New_Library);
VELLUM_LATE_FUNCTION(sFreeType, FT_Open_Face);
VELLUM_LATE_FUNCTION(sFreeType, FT_Select_Charmap);
VELLUM_LATE_FUNCTION(sFreeType, FT_Stream_OpenBzip2);
VELLUM_LATE_FUNCTION(sFreeType, FT_Stream_OpenGzip);
VELLUM_LATE_FUNCTION(sFreeType, FT_Stream_OpenLZW);

} // namespace vellum
