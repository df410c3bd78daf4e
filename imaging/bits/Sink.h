#pragma once

#include "imaging/bits/Bytes.h"

namespace veltrane::imaging {

/// Where an encoder's bytes go, in order.
class Sink {
public:
    virtual ~Sink() = default;

    /// Takes all of `bytes`, or raises what it likes: that passes through the encoder unchanged.
    virtual void Write(Bytes bytes) = 0;
};

} // namespace veltrane::imaging
