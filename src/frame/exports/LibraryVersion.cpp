// Version and build date for the records of the host's loader; the library does not read them.
#include "BuildDate.h"
#include "Export.h"

DSPWAVEDECKS_EXPORT const char* const libdspwavedecksimpl_version;
DSPWAVEDECKS_EXPORT const char* const libdspwavedecksimpl_build_date;
const char* const libdspwavedecksimpl_version = DSPWAVEDECKS_VERSION;
const char* const libdspwavedecksimpl_build_date = DSPWAVEDECKS_BUILD_DATE;
