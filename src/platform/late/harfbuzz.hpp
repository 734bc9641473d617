// SPDX-License-Identifier: MIT
// HarfBuzz, opened late: what reads the characters and variations of sfnt fonts.
#pragma once

#include "platform/late/late_library.hpp"

#include <hb-ot.h>
#include <hb.h>

namespace vellum {

inline constinit LateLibrary sHarfBuzz{"libharfbuzz.so.0"};

VELLUM_LATE_FUNCTION(sHarfBuzz, hb_blob_create);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_blob_get_empty);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_face_collect_unicodes);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_face_create_for_tables);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_face_destroy);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_face_get_empty);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_face_set_glyph_count);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_ot_var_get_axis_count);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_ot_var_get_axis_infos);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_ot_var_get_named_instance_count);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_ot_var_named_instance_get_design_coords);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_ot_var_named_instance_get_postscript_name_id);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_ot_var_named_instance_get_subfamily_name_id);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_set_allocation_successful);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_set_create);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_set_destroy);
VELLUM_LATE_FUNCTION(sHarfBuzz, hb_set_next_many);

} // namespace vellum
