#pragma once

#include "numbench/nbArray.h"

/// The queries about the spectrum, which may come from any thread: each holds the record's mutex for the whole of its
/// read. S is the length of a spectrum, B = number of spectrogram lines in an update times S.
namespace dspwavedecks {

/// plhs[0] time of the data, s; [1] frequencies, S by 1; [2] spectra, S by channels, if shown; [3] spectrogram of the
/// selected channel, B by 1, if shown; [4] minimum and [5] maximum hold, B by channels, if on; [6] whether an update
/// has been computed; [7] S; [8] segments in the update; [9] lines that the spectrogram's span holds; [10] whether
/// segments have their full length. What is not shown or on is empty. The flag of [6] is left as it is.
void answerSpectrumData(nbArray** plhs, const nbArray** prhs);

/// plhs[0] whether an update has been computed; [1] samples processed.
void answerIsNewSpectrumReady(nbArray** plhs, const nbArray** prhs);

/// plhs[0] whether there is a record at all.
void answerIsSpectrumAvailable(nbArray** plhs, const nbArray** prhs);

/// plhs[0] samples processed.
void answerNumSamplesProcessed(nbArray** plhs, const nbArray** prhs);

/// plhs[0] whether the sample counter began again since the last such query.
void answerResetCachedNumSamplesProcessed(nbArray** plhs, const nbArray** prhs);

/// plhs[0] updates processed.
void answerNumUpdatesProcessed(nbArray** plhs, const nbArray** prhs);

}  // namespace dspwavedecks
