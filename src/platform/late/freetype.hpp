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

// clang-format off
#define VELLUM_FREETYPE_FUNCTIONS(FUNCTION) \
    FUNCTION(FT_Add_Default_Modules) \
    FUNCTION(FT_Done_Face) \
    FUNCTION(FT_Done_Library) \
    FUNCTION(FT_Get_BDF_Property) \
    FUNCTION(FT_Get_First_Char) \
    FUNCTION(FT_Get_Module) \
    FUNCTION(FT_Get_Next_Char) \
    FUNCTION(FT_Get_PS_Font_Info) \
    FUNCTION(FT_Get_Postscript_Name) \
    FUNCTION(FT_Load_Sfnt_Table) \
    FUNCTION(FT_New_Library) \
    FUNCTION(FT_Open_Face) \
    FUNCTION(FT_Select_Charmap) \
    FUNCTION(FT_Stream_OpenBzip2) \
    FUNCTION(FT_Stream_OpenGzip) \
    FUNCTION(FT_Stream_OpenLZW)
// clang-format on

namespace vellum {

VELLUM_LATE_LIBRARY(sFreeType, "libfreetype.so.6", VELLUM_FREETYPE_FUNCTIONS);

} // namespace vellum
