#pragma once

namespace veltrane::imaging::png {

/// The Paeth predictor for vectors of bytes, as the compiler knows them on every processor. By reference,
/// because how vectors wider than the processor's are passed is not settled.
///
/// Where a and b lie on the same side of c, a + b - c lies beyond both and c is never the nearest; where
/// they lie on different sides, its distance from c is the difference of the other two distances. So bytes
/// suffice for all steps.
template<class Vector>
[[gnu::always_inline]] inline void PaethOf(
    const Vector& a, const Vector& b, const Vector& c, Vector& prediction)
{
    const Vector low = a < b ? a : b, high = a < b ? b : a;
    const Vector beyond = reinterpret_cast<Vector>(c <= low) | reinterpret_cast<Vector>(c >= high);
    const Vector towardsA = (b < c ? c : b) - (b < c ? b : c), towardsB = (a < c ? c : a) - (a < c ? a : c);
    const Vector shorter = towardsA < towardsB ? towardsA : towardsB;
    const Vector longer = towardsA < towardsB ? towardsB : towardsA;
    const Vector towardsC = (longer - shorter) | beyond;
    const Vector least = shorter < towardsC ? shorter : towardsC;
    const Vector rest = towardsB == least ? b : c;
    prediction = towardsA == least ? a : rest;
}

} // namespace veltrane::imaging::png
