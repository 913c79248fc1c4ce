// The Screen functions over X11. A window's handle is its X identifier, so everything else about a
// window is asked of the server.
#include <poll.h>
#include <xcb/xcb.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "host/screen/screen.h"

struct _screen_context {
    xcb_connection_t* connection;
    const xcb_screen_t* screen;
};

namespace {

// Windows do not carry their context, so there is one for the process. It is never closed: the
// server destroys a client's windows together with its connection.
_screen_context g_context{};

template <typename T>
struct SFree {
    void operator()(T* reply) const { std::free(reply); }
};
template <typename T>
using Reply = std::unique_ptr<T, SFree<T>>;

int Fail(int error) {
    errno = error;
    return -1;
}

xcb_window_t IdOf(screen_window_t window) {
    return static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(window));
}

bool Connected() {
    return g_context.connection != nullptr && xcb_connection_has_error(g_context.connection) == 0;
}

/// Waits for the server's verdict on a request.
int Check(xcb_void_cookie_t cookie) {
    const Reply<xcb_generic_error_t> error(xcb_request_check(g_context.connection, cookie));
    if (!Connected()) return Fail(EIO);
    if (error == nullptr) return 0;
    return Fail(error->error_code == XCB_ALLOC ? ENOMEM : EINVAL);
}

/// Drivers take several bytes for a pixel of every buffer, and some do not survive running out of
/// memory.
int CheckArea(xcb_window_t id) {
    constexpr std::uint32_t kLargestArea = 8192 * 8192;
    const Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(
        g_context.connection, xcb_get_geometry(g_context.connection, id), nullptr));
    if (geometry == nullptr) return Fail(Connected() ? EINVAL : EIO);
    const std::uint32_t area = std::uint32_t{geometry->width} * geometry->height;
    return area <= kLargestArea ? 0 : Fail(ENOMEM);
}

bool IsViewable(xcb_window_t id) {
    const Reply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        g_context.connection, xcb_get_window_attributes(g_context.connection, id), nullptr));
    return attributes != nullptr && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

void DropEvents() {
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(g_context.connection)}) {
    }
}

/// A window manager shows a window in its own time, or not at all; after a second the window counts
/// as shown.
void AwaitViewable(xcb_window_t id) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + std::chrono::seconds(1);
    while (!IsViewable(id) && Connected()) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0) break;
        // The answer itself may have brought the event into the client's queue, where no poll would
        // see it: the wait is kept short.
        pollfd connection{xcb_get_file_descriptor(g_context.connection), POLLIN, 0};
        poll(&connection, 1, left < 10 ? static_cast<int>(left) : 10);
        DropEvents();
    }
}

/// Whether requests about the window go to a window manager.
void Redirect(xcb_window_t id, bool toManager) {
    const std::uint32_t override = toManager ? 0 : 1;
    xcb_change_window_attributes(g_context.connection, id, XCB_CW_OVERRIDE_REDIRECT, &override);
}

/// The size as minimum and maximum, so that a window manager keeps it.
void FixSize(xcb_window_t id, std::uint32_t width, std::uint32_t height) {
    // The layout of WM_SIZE_HINTS: flags, four unused words, minimum, maximum, nine further words.
    constexpr std::uint32_t kMinimumAndMaximum = (1U << 4) | (1U << 5);
    const std::uint32_t hints[18] = {kMinimumAndMaximum, 0, 0, 0, 0, width, height, width, height};
    xcb_change_property(g_context.connection, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, 18, hints);
}

}  // namespace

int screen_create_context(screen_context_t* context, int) {
    if (!Connected()) {
        int number = 0;
        xcb_connection_t* connection = xcb_connect(nullptr, &number);
        const xcb_screen_t* screen = nullptr;
        if (xcb_connection_has_error(connection) == 0) {
            xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
            for (; screens.rem > 0 && number > 0; --number) xcb_screen_next(&screens);
            if (screens.rem > 0) screen = screens.data;
        }
        if (screen == nullptr) {
            xcb_disconnect(connection);
            return Fail(ENXIO);
        }
        g_context = {connection, screen};
    }
    *context = &g_context;
    return 0;
}

int screen_create_window(screen_window_t* window, screen_context_t context) {
    if (context == nullptr) return Fail(EINVAL);
    if (!Connected()) return Fail(EIO);
    const xcb_screen_t& screen = *context->screen;
    const xcb_window_t id = xcb_generate_id(context->connection);
    // Black where nothing was drawn; the only event is the one that tells that the window is shown.
    const std::uint32_t values[] = {screen.black_pixel, XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    const int result = Check(xcb_create_window_checked(
        context->connection, XCB_COPY_FROM_PARENT, id, screen.root, 0, 0, screen.width_in_pixels,
        screen.height_in_pixels, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual,
        XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values));
    if (result == 0) *window = reinterpret_cast<screen_window_t>(std::uintptr_t{id});
    return result;
}

int screen_create_window_buffers(screen_window_t window, int count) {
    if (count < 1) return Fail(EINVAL);
    if (!Connected()) return Fail(EIO);
    const xcb_window_t id = IdOf(window);
    if (CheckArea(id) != 0) return -1;
    if (Check(xcb_map_window_checked(g_context.connection, id)) != 0) return -1;
    AwaitViewable(id);
    // Nobody reads events from here on, so none may gather.
    const std::uint32_t none = XCB_EVENT_MASK_NO_EVENT;
    const int result = Check(
        xcb_change_window_attributes_checked(g_context.connection, id, XCB_CW_EVENT_MASK, &none));
    DropEvents();
    return result;
}

int screen_set_window_property_iv(screen_window_t window, int property, const int* values) {
    if (!Connected()) return Fail(EIO);
    if (property == SCREEN_PROPERTY_USAGE) return 0;
    if (property != SCREEN_PROPERTY_SIZE) return Fail(EINVAL);
    constexpr int kLargest = 32767;
    for (int i = 0; i < 2; ++i) {
        if (values[i] < 1 || values[i] > kLargest) return Fail(EINVAL);
    }
    const std::uint32_t size[] = {static_cast<std::uint32_t>(values[0]),
                                  static_cast<std::uint32_t>(values[1])};
    const xcb_window_t id = IdOf(window);
    FixSize(id, size[0], size[1]);
    // A window manager has no say, and no delay, in the size of a window that is not shown yet.
    Redirect(id, false);
    const int result = Check(xcb_configure_window_checked(
        g_context.connection, id, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size));
    Redirect(id, true);
    return result;
}

int screen_set_window_property_cv(screen_window_t window, int property, int length,
                                  const char* text) {
    if (!Connected()) return Fail(EIO);
    if (property != SCREEN_PROPERTY_ID_STRING || length < 0) return Fail(EINVAL);
    return Check(xcb_change_property_checked(g_context.connection, XCB_PROP_MODE_REPLACE,
                                             IdOf(window), XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                                             static_cast<std::uint32_t>(length), text));
}

int screen_destroy_window(screen_window_t window) {
    if (!Connected()) return Fail(EIO);
    return Check(xcb_destroy_window_checked(g_context.connection, IdOf(window)));
}
