// Points at a spot of a headless compositor's output and clicks there, as a user's mouse would:
// the compositor has no input devices, so the click comes from a virtual pointer.
//   virtual_pointer_click X Y WIDTH HEIGHT
// X and Y are in the output's pixels, WIDTH and HEIGHT its size.

#include "wlr-virtual-pointer-client-protocol.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <initializer_list>
#include <unistd.h>
#include <wayland-client.h>

namespace {

// The left button's code in the kernel's input event codes.
constexpr uint32_t kLeftButton = 0x110;

struct State
{
    wl_seat *seat = nullptr;
    zwlr_virtual_pointer_manager_v1 *manager = nullptr;
};

void Global(void *data, wl_registry *registry, uint32_t name, const char *interface, uint32_t)
{
    auto *state = static_cast<State *>(data);
    if (std::strcmp(interface, wl_seat_interface.name) == 0 && !state->seat)
        state->seat =
            static_cast<wl_seat *>(wl_registry_bind(registry, name, &wl_seat_interface, 1));
    else if (std::strcmp(interface, zwlr_virtual_pointer_manager_v1_interface.name) == 0)
        state->manager = static_cast<zwlr_virtual_pointer_manager_v1 *>(
            wl_registry_bind(registry, name, &zwlr_virtual_pointer_manager_v1_interface, 1));
}

void GlobalRemove(void *, wl_registry *, uint32_t) {}

const wl_registry_listener g_registryListener{Global, GlobalRemove};

uint32_t Milliseconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint32_t>(now.tv_sec * 1000 + now.tv_nsec / 1000000);
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 5) {
        std::fprintf(stderr, "usage: virtual_pointer_click X Y WIDTH HEIGHT\n");
        return 2;
    }
    const auto x = static_cast<uint32_t>(std::atoi(argv[1]));
    const auto y = static_cast<uint32_t>(std::atoi(argv[2]));
    const auto width = static_cast<uint32_t>(std::atoi(argv[3]));
    const auto height = static_cast<uint32_t>(std::atoi(argv[4]));
    wl_display *display = wl_display_connect(nullptr);
    if (!display) {
        std::fprintf(stderr, "virtual_pointer_click: no compositor\n");
        return 1;
    }
    State state;
    wl_registry *registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &g_registryListener, &state);
    wl_display_roundtrip(display);
    if (!state.seat || !state.manager) {
        std::fprintf(stderr, "virtual_pointer_click: no seat or no virtual pointers\n");
        return 1;
    }
    zwlr_virtual_pointer_v1 *pointer =
        zwlr_virtual_pointer_manager_v1_create_virtual_pointer(state.manager, state.seat);
    // The new device gives the seat a pointer; the clients must bind theirs, and see the
    // pointer enter their surface, before a click reaches them. Nothing tells us when they have.
    wl_display_roundtrip(display);
    usleep(300 * 1000);
    zwlr_virtual_pointer_v1_motion_absolute(pointer, Milliseconds(), x, y, width, height);
    zwlr_virtual_pointer_v1_frame(pointer);
    wl_display_roundtrip(display);
    usleep(300 * 1000);
    for (const uint32_t pressed : {1u, 0u}) {
        zwlr_virtual_pointer_v1_button(pointer, Milliseconds(), kLeftButton, pressed);
        zwlr_virtual_pointer_v1_frame(pointer);
        wl_display_roundtrip(display);
    }
    zwlr_virtual_pointer_v1_destroy(pointer);
    zwlr_virtual_pointer_manager_v1_destroy(state.manager);
    wl_display_roundtrip(display);
    wl_display_disconnect(display);
    return 0;
}
