/* The peaks of a frame, through the C header alone; the library is found by its name. */

#include <math.h>
#include <stdio.h>
#include <wavedeck.h>

static int refuse(const char* what) {
    fprintf(stderr, "%s: %s\n", what, wavedeck_error());
    return 1;
}

int main(void) {
    const double frame[] = {0.0, 1.0, 0.0, 3.0, 0.0, 0.5};
    const double* frames = frame;
    const size_t points = 6;
    const int on = 1;
    const wavedeck_signal signal = {1, 0, 0.25, 6, 0};
    wavedeck_library* library = wavedeck_open_library("libdspwavedecksimpl.so");
    wavedeck_client* client = wavedeck_new_client(library, "c", "dsp_wavedeck_frame_data_strategy", &signal, 1);
    wavedeck_options* options = wavedeck_new_options();
    nbArray* peaks;
    size_t i;
    if (!client || !wavedeck_add_logicals(options, "peakFinderEnabled", &on, 1) ||
        !wavedeck_add_stage(client, "magnitude_phase_filter", NULL) ||
        !wavedeck_add_stage(client, "peak_finder_filter", options)) {
        return refuse("client");
    }
    /* A chain that was not set up takes no frame, and says so. */
    if (wavedeck_frame(client, frame, 6) || wavedeck_error()[0] == '\0') {
        return refuse("a frame before the setup was taken");
    }
    if (!wavedeck_setup(client) || !wavedeck_frame(client, frame, 6)) {
        return refuse("frame");
    }
    /* Nor is a count that no array has, or nothing in the place of something. */
    if (wavedeck_frame(client, frame, (size_t)-1) || wavedeck_frame(client, NULL, 6) ||
        wavedeck_frames(client, &frames, &points, (size_t)-1) ||
        wavedeck_add_numbers(options, "n", frame, (size_t)-1) ||
        wavedeck_new_client(library, "d", "dsp_wavedeck_frame_data_strategy", NULL, 1)) {
        return refuse("an array that is none was taken");
    }
    if (wavedeck_add_stage(client, "no_such_filter", NULL) || wavedeck_query(client, "no_such_query")) {
        return refuse("a name that is not there was taken");
    }
    peaks = wavedeck_query(client, "getPeakFinderDataImpl");
    if (wavedeck_kind_of(peaks) != WAVEDECK_STRUCTURE || wavedeck_field(peaks, 1, "Value") ||
        wavedeck_field(peaks, 0, "None") || !isnan(wavedeck_scalar(peaks))) {
        return refuse("query");
    }
    for (i = 0; i < wavedeck_rows(wavedeck_field(peaks, 0, "Value")); ++i) {
        printf("%g %g\n", wavedeck_doubles(wavedeck_field(peaks, 0, "Frequency"))[i],
               wavedeck_doubles(wavedeck_field(peaks, 0, "Value"))[i]);
    }
    wavedeck_free_array(peaks);
    wavedeck_free_options(options);
    wavedeck_free_client(client);
    wavedeck_close_library(library);
    return 0;
}
