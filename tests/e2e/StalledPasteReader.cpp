// A paste that never reads: asks the clipboard owner for the current selection through a pipe
// that is already full, then holds the pipe without reading for a while. The owner must not
// wait for it.
//   stalled_paste_reader SECONDS
// Prints "stalled" once the request is out; exits 2 when there is no selection to ask for.

#include "wlr-data-control-client-protocol.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <wayland-client.h>

namespace {

struct State
{
    wl_seat *seat = nullptr;
    zwlr_data_control_manager_v1 *manager = nullptr;
    zwlr_data_control_offer_v1 *selection = nullptr;
};

void Global(void *data, wl_registry *registry, uint32_t name, const char *interface, uint32_t)
{
    auto *state = static_cast<State *>(data);
    if (std::strcmp(interface, wl_seat_interface.name) == 0 && !state->seat)
        state->seat =
            static_cast<wl_seat *>(wl_registry_bind(registry, name, &wl_seat_interface, 1));
    else if (std::strcmp(interface, zwlr_data_control_manager_v1_interface.name) == 0)
        state->manager = static_cast<zwlr_data_control_manager_v1 *>(
            wl_registry_bind(registry, name, &zwlr_data_control_manager_v1_interface, 1));
}

void GlobalRemove(void *, wl_registry *, uint32_t) {}

const wl_registry_listener g_registryListener{Global, GlobalRemove};

void DataOffer(void *, zwlr_data_control_device_v1 *, zwlr_data_control_offer_v1 *) {}

void Selection(void *data, zwlr_data_control_device_v1 *, zwlr_data_control_offer_v1 *offer)
{
    static_cast<State *>(data)->selection = offer;
}

void Finished(void *, zwlr_data_control_device_v1 *) {}

const zwlr_data_control_device_v1_listener g_deviceListener{DataOffer, Selection, Finished};

} // namespace

int main(int argc, char *argv[])
{
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 10;
    wl_display *display = wl_display_connect(nullptr);
    if (!display) {
        std::fprintf(stderr, "stalled_paste_reader: no compositor\n");
        return 1;
    }
    State state;
    wl_registry *registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &g_registryListener, &state);
    wl_display_roundtrip(display);
    if (!state.seat || !state.manager) {
        std::fprintf(stderr, "stalled_paste_reader: no seat or no data-control\n");
        return 1;
    }
    zwlr_data_control_device_v1 *device =
        zwlr_data_control_manager_v1_get_data_device(state.manager, state.seat);
    zwlr_data_control_device_v1_add_listener(device, &g_deviceListener, &state);
    wl_display_roundtrip(display);
    wl_display_roundtrip(display);
    if (!state.selection) {
        std::fprintf(stderr, "stalled_paste_reader: no selection\n");
        return 2;
    }

    int fds[2];
    if (pipe2(fds, O_CLOEXEC | O_NONBLOCK) != 0)
        return 1;
    // Fill the pipe to the brim, so the owner's first write finds no room.
    char filler[4096];
    std::memset(filler, '.', sizeof filler);
    while (write(fds[1], filler, sizeof filler) > 0 || errno == EINTR) {
    }
    zwlr_data_control_offer_v1_receive(state.selection, "text/plain;charset=utf-8", fds[1]);
    close(fds[1]);
    wl_display_roundtrip(display);
    std::printf("stalled\n");
    std::fflush(stdout);
    sleep(static_cast<unsigned>(seconds));
    close(fds[0]);
    wl_display_disconnect(display);
    return 0;
}
