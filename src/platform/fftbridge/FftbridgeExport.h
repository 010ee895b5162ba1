#pragma once

/// Marks what libfftbridge.so offers to others; all else stays hidden.
#define FFTBRIDGE_EXPORT __attribute__((visibility("default")))
