#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "imaging/jpeg/baseline/BlockPair.h"
#include "imaging/jpeg/baseline/CodeTable.h"
#include "imaging/jpeg/baseline/EntropyBytes.h"
#include "imaging/jpeg/baseline/Frame.h"
#include "imaging/jpeg/baseline/StepPairs.h"

namespace veltrane::imaging::jpeg::baseline {

/// Where the samples of a plane's next row of blocks go.
struct PlaneRows {
    std::uint8_t* samples; ///< room for whole blocks
    std::size_t stride; ///< bytes
};

/// Decodes the one scan of a sequential picture, units of blocks from left to right and top to bottom.
/// Source: T.81, F.2.
class Scan {
public:
    /// `frame` must outlive this object. Raises std::bad_alloc.
    explicit Scan(const Frame& frame);

    /// Whether the tables can be used at all.
    [[nodiscard]] bool Valid() const noexcept { return valid; }

    /// Decodes a row of units into one target for each component. False, with anything written, when the
    /// data is damaged, or tells what no encoder writes.
    [[nodiscard]] bool DecodeRow(const std::vector<PlaneRows>& targets);

    /// Units in a row.
    [[nodiscard]] static std::size_t UnitsAcross(const Frame& frame) noexcept;

private:
    struct Codes {
        explicit Codes(const Component& component);

        CodeTable differences, coefficients;
        StepPairs pairs;
    };
    struct Plane {
        Plane(const Component& component, std::shared_ptr<const Codes> codes);

        std::size_t across, down;
        std::shared_ptr<const Codes> codes; // those of both chroma planes are mostly the same
        Quantisers quantisers;
        BlockPair pair;
        int first = 0; // the last block's first coefficient
    };

    [[nodiscard]] std::shared_ptr<const Codes> CodesFor(const Frame& frame, std::size_t component) const;
    [[nodiscard]] bool DecodeUnit(Bits& now, const std::vector<PlaneRows>& targets, std::size_t unit);
    [[nodiscard]] bool DecodeBlock(Bits& now, Plane& plane, std::uint8_t* target, std::size_t stride);
    [[nodiscard]] bool DecodeUnits(const std::vector<PlaneRows>& targets);
    [[nodiscard]] bool Restart(const Bits& behind);

    std::vector<Plane> planes;
    std::size_t unitsAcross;
    unsigned restartInterval;
    unsigned untilRestart, restarts = 0;
    EntropyBytes bytes;
    Bits bits;
    bool valid = true;
};

} // namespace veltrane::imaging::jpeg::baseline
