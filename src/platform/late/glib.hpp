// SPDX-License-Identifier: MIT
// GLib, opened late: main loops, and a few formats.
#pragma once

#include "platform/late/late_library.hpp"

#include <glib-unix.h>
#include <glib.h>

// clang-format off
#define VELLUM_GLIB_FUNCTIONS(FUNCTION) \
    FUNCTION(g_base64_decode_step) \
    FUNCTION(g_base64_encode_close) \
    FUNCTION(g_base64_encode_step) \
    FUNCTION(g_free) \
    FUNCTION(g_key_file_free) \
    FUNCTION(g_key_file_get_string) \
    FUNCTION(g_key_file_load_from_data) \
    FUNCTION(g_key_file_new) \
    FUNCTION(g_main_context_get_thread_default) \
    FUNCTION(g_main_context_iteration) \
    FUNCTION(g_main_context_new) \
    FUNCTION(g_main_context_set_poll_func) \
    FUNCTION(g_main_context_unref) \
    FUNCTION(g_main_context_wakeup) \
    FUNCTION(g_main_loop_new) \
    FUNCTION(g_main_loop_quit) \
    FUNCTION(g_main_loop_run) \
    FUNCTION(g_main_loop_unref) \
    FUNCTION(g_poll) \
    FUNCTION(g_source_attach) \
    FUNCTION(g_source_destroy) \
    FUNCTION(g_source_new) \
    FUNCTION(g_source_set_callback) \
    FUNCTION(g_source_set_can_recurse) \
    FUNCTION(g_source_set_name) \
    FUNCTION(g_source_unref) \
    FUNCTION(g_timeout_source_new) \
    FUNCTION(g_unix_fd_source_new)
// clang-format on

namespace vellum {

VELLUM_LATE_LIBRARY(sGLib, "libglib-2.0.so.0", VELLUM_GLIB_FUNCTIONS);

} // namespace vellum
