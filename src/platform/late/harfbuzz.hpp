// SPDX-License-Identifier: MIT
// HarfBuzz, opened late: what reads the characters and variations of sfnt fonts.
#pragma once

#include "platform/late/late_library.hpp"

#include <hb-ot.h>
#include <hb.h>

// clang-format off
#define VELLUM_HARFBUZZ_FUNCTIONS(FUNCTION) \
    FUNCTION(hb_blob_create) \
    FUNCTION(hb_blob_get_empty) \
    FUNCTION(hb_face_collect_unicodes) \
    FUNCTION(hb_face_create_for_tables) \
    FUNCTION(hb_face_destroy) \
    FUNCTION(hb_face_get_empty) \
    FUNCTION(hb_face_set_glyph_count) \
    FUNCTION(hb_ot_var_get_axis_count) \
    FUNCTION(hb_ot_var_get_axis_infos) \
    FUNCTION(hb_ot_var_get_named_instance_count) \
    FUNCTION(hb_ot_var_named_instance_get_design_coords) \
    FUNCTION(hb_ot_var_named_instance_get_postscript_name_id) \
    FUNCTION(hb_ot_var_named_instance_get_subfamily_name_id) \
    FUNCTION(hb_set_allocation_successful) \
    FUNCTION(hb_set_create) \
    FUNCTION(hb_set_destroy) \
    FUNCTION(hb_set_next_many)
// clang-format on

namespace vellum {

VELLUM_LATE_LIBRARY(sHarfBuzz, "libharfbuzz.so.0", VELLUM_HARFBUZZ_FUNCTIONS);

} // namespace vellum
