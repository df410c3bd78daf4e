#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "imaging/jpeg/baseline/EntropyCodedSegment.h"
#include "imaging/jpeg/baseline/EntryPairTable.h"
#include "imaging/jpeg/baseline/Frame.h"
#include "imaging/jpeg/baseline/HuffmanTable.h"
#include "imaging/jpeg/baseline/IdctPair.h"

namespace veltrane::imaging::jpeg::baseline {

/// Where the samples of a component's next row of blocks go.
struct PlaneRows {
    std::uint8_t* samples; ///< room for whole blocks
    std::size_t stride; ///< bytes
};

/// Decodes the one scan of a sequential picture, MCU by MCU from left to right and top to bottom.
/// Source: T.81, F.2.
class Scan {
public:
    /// `frame` must outlive this object. Raises std::bad_alloc.
    explicit Scan(const Frame& frame);

    /// Whether the Huffman tables are valid.
    [[nodiscard]] bool Valid() const noexcept { return valid; }

    /// Decodes a row of MCUs into one target for each component. Returns false, with anything written, when
    /// the data is damaged or holds coefficients that no encoder writes.
    [[nodiscard]] bool DecodeRow(const std::vector<PlaneRows>& targets);

    /// MCUs in a row.
    [[nodiscard]] static std::size_t McusPerRow(const Frame& frame) noexcept;

private:
    struct Tables {
        explicit Tables(const Component& component);

        HuffmanTable dc, ac;
        EntryPairTable pairs;
    };
    struct Plane {
        Plane(const Component& component, std::shared_ptr<const Tables> tables);

        std::size_t across, down;
        std::shared_ptr<const Tables> tables; // Cb and Cr mostly share theirs
        QuantisationTable quantisation;
        IdctPair pair;
        int dcPredictor = 0; // the DC coefficient of the block before: T.81, F.1.1.5.1
    };

    [[nodiscard]] std::shared_ptr<const Tables> TablesFor(const Frame& frame, std::size_t component) const;
    [[nodiscard]] bool DecodeMcu(BitBuffer& now, const std::vector<PlaneRows>& targets, std::size_t mcu);
    [[nodiscard]] bool DecodeBlock(BitBuffer& now, Plane& plane, std::uint8_t* target, std::size_t stride);
    [[nodiscard]] bool DecodeMcus(const std::vector<PlaneRows>& targets);
    [[nodiscard]] bool Restart(const BitBuffer& now);

    std::vector<Plane> planes;
    std::size_t mcusPerRow;
    unsigned restartInterval;
    unsigned untilRestart, restarts = 0;
    EntropyCodedSegment bytes;
    BitBuffer bits;
    bool valid = true;
};

} // namespace veltrane::imaging::jpeg::baseline
