/* Frames of a block-diagram simulation, through the C header alone. */

#include <math.h>
#include <stdio.h>
#include <wavedeck.h>

static int refuse(const char* what) {
    fprintf(stderr, "%s: %s\n", what, wavedeck_error());
    return 1;
}

int main(void) {
    const double times[] = {2.0, 3.0};
    const double samples[] = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 20.0};
    const double* frames = samples;
    const wavedeck_signal signal = {1, 0, 0.25, 4, 0};
    wavedeck_library* library = wavedeck_open_library("libdspwavedecksimpl.so");
    wavedeck_client* client;
    const char* message;
    if (wavedeck_new_simulation_client(library, "s", "dsp_wavedeck_frame_data_strategy", &signal, 1, 2.0, INFINITY)) {
        return refuse("a strategy that takes no simulation was taken");
    }
    client = wavedeck_new_simulation_client(library, "s", "dsp_wavedeck_time_data_strategy", &signal, 1, 2.0, INFINITY);
    if (!client || !wavedeck_add_stage(client, "bf_simulation_meta_data_filter", NULL) ||
        !wavedeck_add_stage(client, "bf_simulation_pacer_filter", NULL) ||
        !wavedeck_add_stage(client, "magnitude_phase_filter", NULL) || !wavedeck_setup(client)) {
        return refuse("client");
    }
    if (wavedeck_simulation_frames(client, times, &frames, 2, 2, 0) || wavedeck_frame(client, samples, 8)) {
        return refuse("frames that don't fit were taken");
    }
    if (!wavedeck_simulation_may_go_on(client) || !wavedeck_simulation_frames(client, times, &frames, 1, 2, 1)) {
        return refuse("frames");
    }
    message = wavedeck_update(client);
    if (!message) {
        return refuse("update");
    }
    puts(message);
    wavedeck_free_client(client);
    wavedeck_close_library(library);
    return 0;
}
