#pragma once

// What the library shows of itself: plain functions, found by their own names. Each name also stands in
// exported_names.txt, from which the linker's version script is made; a name that is missing there stays hidden.

#define DSPWAVEDECKS_EXPORT extern "C" __attribute__((visibility("default")))

// Factories: each constructs and does nothing else; the host owns what it gets.

#define DSPWAVEDECKS_EXPORT_FILTER(name, Filter)                  \
    DSPWAVEDECKS_EXPORT wavedeck::WaveDeckTransformImpl* name();  \
    DSPWAVEDECKS_EXPORT wavedeck::WaveDeckTransformImpl* name() { \
        return new dspwavedecks::Filter;                          \
    }

#define DSPWAVEDECKS_EXPORT_STRATEGY(name, Strategy)                 \
    DSPWAVEDECKS_EXPORT wavedeck::WaveDeckDataProcStrategy* name();  \
    DSPWAVEDECKS_EXPORT wavedeck::WaveDeckDataProcStrategy* name() { \
        return new dspwavedecks::Strategy;                           \
    }

// Query functions, in the form of the numeric host's extension functions: the argument is a function that is given
// plhs and prhs.

#define DSPWAVEDECKS_EXPORT_QUERY(name, answer)                                                       \
    DSPWAVEDECKS_EXPORT void name(int nlhs, nbArray** plhs, int nrhs, const nbArray** prhs);          \
    DSPWAVEDECKS_EXPORT void name(int /*nlhs*/, nbArray** plhs, int /*nrhs*/, const nbArray** prhs) { \
        answer(plhs, prhs);                                                                           \
    }
