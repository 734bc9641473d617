# SPDX-License-Identifier: MIT
# A program that has fonts to give: it answers every request with null, and says so by a line when it is ready.
# Environment: VELLUM_LIBRARY.
import ctypes
import os


def main():
    library, glib = ctypes.CDLL(os.environ["VELLUM_LIBRARY"]), ctypes.CDLL("libglib-2.0.so.0")
    callback = ctypes.CFUNCTYPE(ctypes.c_void_p, ctypes.c_void_p, ctypes.c_void_p, ctypes.c_int32)
    answer = callback(lambda context, attributes, process: None)
    create = library.VLCreateFontProviderLocalPort
    create.restype, create.argtypes = ctypes.c_void_p, [callback, ctypes.c_void_p, ctypes.c_void_p]
    port = create(answer, None, None)
    glib.g_main_loop_new.restype, glib.g_main_loop_run.argtypes = ctypes.c_void_p, [ctypes.c_void_p]
    loop = glib.g_main_loop_new(None, 0)
    print("ready" if port else "no port", flush=True)
    glib.g_main_loop_run(loop)


if __name__ == "__main__":
    main()
