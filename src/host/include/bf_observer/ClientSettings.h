#pragma once

#include "wavedeck/Visibility.h"

namespace bf_observer {

/// Base of a client's settings, as the host's own slots see them.
class WAVEDECK_API ClientSettings {
public:
    virtual ~ClientSettings();
};

}  // namespace bf_observer
