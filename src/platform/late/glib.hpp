// SPDX-License-Identifier: MIT
// GLib, opened late: main loops, and a few formats.
#pragma once

#include "platform/late/late_library.hpp"

#include <glib-unix.h>
#include <glib.h>

namespace vellum {

inline constinit LateLibrary sGLib{"libglib-2.0.so.0"};

VELLUM_LATE_FUNCTION(sGLib, g_base64_decode_step);
VELLUM_LATE_FUNCTION(sGLib, g_base64_encode_close);
VELLUM_LATE_FUNCTION(sGLib, g_base64_encode_step);
VELLUM_LATE_FUNCTION(sGLib, g_free);
VELLUM_LATE_FUNCTION(sGLib, g_key_file_free);
VELLUM_LATE_FUNCTION(sGLib, g_key_file_get_string);
VELLUM_LATE_FUNCTION(sGLib, g_key_file_load_from_data);
VELLUM_LATE_FUNCTION(sGLib, g_key_file_new);
VELLUM_LATE_FUNCTION(sGLib, g_main_context_get_thread_default);
VELLUM_LATE_FUNCTION(sGLib, g_main_context_iteration);
VELLUM_LATE_FUNCTION(sGLib, g_main_context_new);
VELLUM_LATE_FUNCTION(sGLib, g_main_context_set_poll_func);
VELLUM_LATE_FUNCTION(sGLib, g_main_context_unref);
VELLUM_LATE_FUNCTION(sGLib, g_main_context_wakeup);
VELLUM_LATE_FUNCTION(sGLib, g_main_loop_new);
VELLUM_LATE_FUNCTION(sGLib, g_main_loop_quit);
VELLUM_LATE_FUNCTION(sGLib, g_main_loop_run);
VELLUM_LATE_FUNCTION(sGLib, g_main_loop_unref);
VELLUM_LATE_FUNCTION(sGLib, g_poll);
VELLUM_LATE_FUNCTION(sGLib, g_source_attach);
VELLUM_LATE_FUNCTION(sGLib, g_source_destroy);
VELLUM_LATE_FUNCTION(sGLib, g_source_new);
VELLUM_LATE_FUNCTION(sGLib, g_source_set_callback);
VELLUM_LATE_FUNCTION(sGLib, g_source_set_can_recurse);
VELLUM_LATE_FUNCTION(sGLib, g_source_set_name);
VELLUM_LATE_FUNCTION(sGLib, g_source_set_static_name);
VELLUM_LATE_FUNCTION(sGLib, g_source_unref);
VELLUM_LATE_FUNCTION(sGLib, g_timeout_source_new);
VELLUM_LATE_FUNCTION(sGLib, g_unix_fd_source_new);

} // namespace vellum
