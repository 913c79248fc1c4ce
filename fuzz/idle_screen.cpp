// A window system that grants everything and shows nothing: stands in for the X11 one.
#include <cstdint>

#include "host/screen/screen.h"

namespace {

std::uintptr_t lastWindow = 0x1000;

}  // namespace

extern "C" {

int screen_create_context(screen_context_t* context, int /*flags*/) {
    *context = reinterpret_cast<screen_context_t>(std::uintptr_t{0x100});
    return 0;
}

int screen_create_window(screen_window_t* window, screen_context_t /*context*/) {
    *window = reinterpret_cast<screen_window_t>(++lastWindow);
    return 0;
}

int screen_create_window_buffers(screen_window_t /*window*/, int /*count*/) {
    return 0;
}

int screen_set_window_property_iv(screen_window_t /*window*/, int /*property*/,
                                  const int* /*values*/) {
    return 0;
}

int screen_set_window_property_cv(screen_window_t /*window*/, int /*property*/, int /*length*/,
                                  const char* /*text*/) {
    return 0;
}

int screen_destroy_window(screen_window_t /*window*/) {
    return 0;
}

}  // extern "C"
