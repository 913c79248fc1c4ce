// The part of QNX Screen that the program uses, for systems that do not have it: same names, same
// signatures, same values. Every function returns 0, or -1 with errno set.
#pragma once

extern "C" {

struct _screen_context;
struct _screen_window;
using screen_context_t = struct _screen_context*;
/// The value of the handle is what EGL takes as a native window.
using screen_window_t = struct _screen_window*;

enum {
    SCREEN_PROPERTY_ID_STRING = 20,
    SCREEN_PROPERTY_SIZE = 40,
    SCREEN_PROPERTY_USAGE = 48,
};

/// Connects to the window system. `flags` is not used.
int screen_create_context(screen_context_t* context, int flags);
/// Makes a window that is not shown yet, as large as the screen until a size is set.
int screen_create_window(screen_window_t* window, screen_context_t context);
/// Shows the window and waits until it can be drawn on. EGL makes the buffers themselves.
int screen_create_window_buffers(screen_window_t window, int count);
/// SCREEN_PROPERTY_SIZE: width and height in pixels. SCREEN_PROPERTY_USAGE has no meaning here.
int screen_set_window_property_iv(screen_window_t window, int property, const int* values);
/// SCREEN_PROPERTY_ID_STRING: the window's title, of `length` bytes.
int screen_set_window_property_cv(screen_window_t window, int property, int length,
                                  const char* text);
int screen_destroy_window(screen_window_t window);

}  // extern "C"
