/* Clients, their chains and the results of query functions, for callers in C and in every language that can call C.
 *
 *     wavedeck_library* library = wavedeck_open_library("libdspwavedecksimpl.so");
 *     wavedeck_signal signal = {1, 0, 1e-3, 1024, 0};
 *     wavedeck_client* client =
 *         wavedeck_new_client(library, "c1", "dsp_wavedeck_frequency_data_strategy", &signal, 1);
 *     wavedeck_add_stage(client, "spectrum_estimator_filter", NULL);
 *     wavedeck_setup(client);
 *     wavedeck_frame(client, samples, 1024);
 *     nbArray* spectrum = wavedeck_query(client, "getSpectrumDataImpl");
 *     ... wavedeck_field(spectrum, 0, "...") ...
 *     wavedeck_free_array(spectrum);
 *
 * A function that can fail returns a null pointer or 0 and leaves a sentence that wavedeck_error() gives; no C++
 * exception passes. A client may be used from any thread; its calls run one after another.
 */
#ifndef WAVEDECK_H
#define WAVEDECK_H

#include <stddef.h>

#if defined(__GNUC__)
#define WAVEDECK_C_API __attribute__((visibility("default")))
#else
#define WAVEDECK_C_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef struct wavedeck_library wavedeck_library;
typedef struct wavedeck_options wavedeck_options;
typedef struct wavedeck_client wavedeck_client;
/* Result of a query function: doubles, a logical, a text or a structure of such. */
typedef struct nbArray nbArray;

typedef struct wavedeck_signal {
    int num_channels; /* raw channels: a complex channel counts twice */
    int is_complex;
    double sample_time; /* seconds */
    int frame_size;     /* samples a channel */
    int is_input_port;  /* of a simulation: a parameter of its spectrum, not data; such signals stand last */
} wavedeck_signal;

typedef enum wavedeck_kind {
    WAVEDECK_NOTHING = 0, /* a null pointer, such as an absent field */
    WAVEDECK_DOUBLES,
    WAVEDECK_LOGICAL,
    WAVEDECK_TEXT,
    WAVEDECK_STRUCTURE
} wavedeck_kind;

/* What was wrong with this thread's last call of those that can fail; empty if it succeeded. */
WAVEDECK_C_API const char* wavedeck_error(void);

/* The measurement library, by path or by a name that the dynamic loader finds. Its code stays loaded. */
WAVEDECK_C_API wavedeck_library* wavedeck_open_library(const char* name);
WAVEDECK_C_API const char* wavedeck_library_version(const wavedeck_library* library);
WAVEDECK_C_API void wavedeck_close_library(wavedeck_library* library);

/* A list of options. Each is read by its stage in one kind only, which the catalogue of options tells. */
WAVEDECK_C_API wavedeck_options* wavedeck_new_options(void);
WAVEDECK_C_API int wavedeck_add_numbers(wavedeck_options* options, const char* name, const double* values,
                                        size_t count);
WAVEDECK_C_API int wavedeck_add_whole_numbers(wavedeck_options* options, const char* name, const int* values,
                                              size_t count);
WAVEDECK_C_API int wavedeck_add_logicals(wavedeck_options* options, const char* name, const int* values, size_t count);
WAVEDECK_C_API int wavedeck_add_text(wavedeck_options* options, const char* name, const char* value);
WAVEDECK_C_API void wavedeck_free_options(wavedeck_options* options);

/* A client: name (at most 15 characters), the stage that makes its messages, its signals. The library
 * must outlive it. */
WAVEDECK_C_API wavedeck_client* wavedeck_new_client(const wavedeck_library* library, const char* name,
                                                    const char* strategy, const wavedeck_signal* signals,
                                                    size_t num_signals);
/* Appends a stage with the options that it is set up with; NULL: none. */
WAVEDECK_C_API int wavedeck_add_stage(wavedeck_client* client, const char* stage, const wavedeck_options* options);
WAVEDECK_C_API int wavedeck_setup(wavedeck_client* client);
/* Changes options of a stage while data flows. */
WAVEDECK_C_API int wavedeck_tune(wavedeck_client* client, const char* stage, const wavedeck_options* options);
/* Hands over a frame of a client of one signal: [num_channels][points], channel after channel. */
WAVEDECK_C_API int wavedeck_frame(wavedeck_client* client, const double* samples, size_t points);
/* The same for several signals: of each its samples and its points. */
WAVEDECK_C_API int wavedeck_frames(wavedeck_client* client, const double* const* samples, const size_t* points,
                                   size_t num_signals);

/* A client of a block-diagram simulation, whose frames come with their times. The frame period is that of signal 0:
 * frame_size times sample_time. stop_time may be INFINITY. */
WAVEDECK_C_API wavedeck_client* wavedeck_new_simulation_client(const wavedeck_library* library, const char* name,
                                                               const char* strategy, const wavedeck_signal* signals,
                                                               size_t num_signals, double start_time, double stop_time);
/* Hands over simulation frames of all signals: of each frame the time of its first sample, and of each signal
 * [num_channels][num_frames * frame_size] samples, channel after channel; NULL of an input port that delivers nothing.
 * is_last tells that the simulation ends with them. */
WAVEDECK_C_API int wavedeck_simulation_frames(wavedeck_client* client, const double* times,
                                              const double* const* samples, size_t num_signals, size_t num_frames,
                                              int is_last);
/* 0 while the pacer wants the simulation to wait until the display has shown what there is; 0 with a wavedeck_error()
 * for a call that failed. */
WAVEDECK_C_API int wavedeck_simulation_may_go_on(wavedeck_client* client);

/* The message of an update as JSON text, valid until the client's next; empty if nothing new came, NULL for a call that
 * failed. */
WAVEDECK_C_API const char* wavedeck_update(wavedeck_client* client);
/* Calls a query function of the library for this client, such as "getPeakFinderDataImpl". The result is the caller's,
 * who frees it with wavedeck_free_array; NULL for a function without a result, wavedeck_error() then is empty. */
WAVEDECK_C_API nbArray* wavedeck_query(wavedeck_client* client, const char* function);
WAVEDECK_C_API void wavedeck_free_client(wavedeck_client* client);

/* Reading results. Nothing here fails: what an array does not have reads as NULL, 0 or NaN. */
WAVEDECK_C_API wavedeck_kind wavedeck_kind_of(const nbArray* array);
WAVEDECK_C_API size_t wavedeck_rows(const nbArray* array);
WAVEDECK_C_API size_t wavedeck_columns(const nbArray* array);
/* [columns][rows] numbers, column after column. */
WAVEDECK_C_API const double* wavedeck_doubles(const nbArray* array);
/* The first number, or a logical as 0 or 1. */
WAVEDECK_C_API double wavedeck_scalar(const nbArray* array);
WAVEDECK_C_API const char* wavedeck_text(const nbArray* array);
WAVEDECK_C_API int wavedeck_num_fields(const nbArray* structure);
WAVEDECK_C_API const char* wavedeck_field_name(const nbArray* structure, int field);
/* A field of element `index` (0 for a structure of one element); it lives as long as the structure. */
WAVEDECK_C_API const nbArray* wavedeck_field(const nbArray* structure, size_t index, const char* name);
WAVEDECK_C_API void wavedeck_free_array(nbArray* array);

#ifdef __cplusplus
}
#endif

#endif
