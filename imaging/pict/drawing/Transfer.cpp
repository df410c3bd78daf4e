#include "imaging/pict/drawing/Transfer.h"

#include <algorithm>

namespace veltrane::imaging::pict {

namespace {

constexpr int kDither = 64;
constexpr int kGreyText = 49;
constexpr int kHilite = 50;
constexpr Rgba kColourBits = kWhite ^ kBlack;

// Black where the source is black shows `fore`, white shows `back`, a mixture shows bits of both.
constexpr Rgba Colourised(Rgba source, Rgba fore, Rgba back) noexcept
{
    return (source & back) | (~source & fore) | kBlack;
}

template<class Meet>
void ForEach(Rgba* target, const Rgba* source, std::size_t count, Meet meet)
{
    for (std::size_t i = 0; i < count; ++i)
        target[i] = meet(source[i], target[i]);
}

// Components meet one by one; `meet` sees source, target and the component of the weight.
template<class Meet>
void ForComponents(const Transfer& transfer, Rgba* target, const Rgba* source, std::size_t count, Meet meet)
{
    const auto weights = Components(transfer.weight);
    const bool tinted = transfer.twoColours;
    ForEach(target, source, count, [&](Rgba from, Rgba to) {
        const auto s = Components(tinted ? Colourised(from, transfer.fore, transfer.back) : from);
        const auto t = Components(to);
        std::array<std::uint8_t, 3> mixed {};
        for (std::size_t i = 0; i < 3; ++i)
            mixed[i] = static_cast<std::uint8_t>(meet(int { s[i] }, int { t[i] }, int { weights[i] }));
        return MakeRgba(mixed[0], mixed[1], mixed[2]);
    });
}

void Boolean(const Transfer& transfer, Rgba* target, const Rgba* source, std::size_t count)
{
    const Rgba fore = transfer.fore;
    const Rgba back = transfer.back;
    const Rgba flip = (transfer.mode & 4) != 0 ? kColourBits : 0; // the "not" modes turn the source over
    switch (transfer.mode & 3) {
    case 0:
        ForEach(target, source, count, [=](Rgba s, Rgba) { return Colourised(s ^ flip, fore, back); });
        break;
    case 1:
        ForEach(target, source, count, [=](Rgba s, Rgba t) { return Colourised(s ^ flip, fore, t); });
        break;
    case 2:
        ForEach(target, source, count, [=](Rgba s, Rgba t) { return t ^ (~(s ^ flip) & kColourBits); });
        break;
    default:
        ForEach(target, source, count, [=](Rgba s, Rgba t) { return Colourised(s ^ flip, back, t); });
        break;
    }
}

void Transparent(const Transfer& transfer, Rgba* target, const Rgba* source, std::size_t count)
{
    const bool tinted = transfer.twoColours;
    ForEach(target, source, count, [&](Rgba s, Rgba t) {
        const Rgba shown = tinted ? Colourised(s, transfer.fore, transfer.back) : s;
        return shown == transfer.back ? t : shown;
    });
}

// The marker pen: where the source is not white, background and highlight change places.
void Hilite(const Transfer& transfer, Rgba* target, const Rgba* source, std::size_t count)
{
    ForEach(target, source, count, [&](Rgba s, Rgba t) {
        if (s == kWhite)
            return t;
        if (t == transfer.back)
            return transfer.hilite;
        return t == transfer.hilite ? transfer.back : t;
    });
}

// Halfway between the two colours, as dimmed menu items are.
void GreyText(const Transfer& transfer, Rgba* target, const Rgba* source, std::size_t count)
{
    const auto fore = Components(transfer.fore);
    const auto back = Components(transfer.back);
    const auto middle = [&](std::size_t i) { return static_cast<std::uint8_t>((fore[i] + back[i]) / 2); };
    Transfer softer = transfer;
    softer.mode = 1;
    softer.fore = MakeRgba(middle(0), middle(1), middle(2));
    Boolean(softer, target, source, count);
}

void Arithmetic(const Transfer& transfer, Rgba* target, const Rgba* source, std::size_t count)
{
    const auto each = [&](auto meet) { ForComponents(transfer, target, source, count, meet); };
    switch (transfer.mode) {
    case 32: each([](int s, int t, int w) { return (s * w + t * (255 - w) + 127) / 255; }); break;
    case 33: each([](int s, int t, int w) { return std::min(s + t, w); }); break;
    case 34: each([](int s, int t, int) { return s + t; }); break;
    case 35: each([](int s, int t, int w) { return std::max(t - s, w); }); break;
    case 36: Transparent(transfer, target, source, count); break;
    case 37: each([](int s, int t, int) { return std::max(s, t); }); break;
    case 38: each([](int s, int t, int) { return t - s; }); break;
    default: each([](int s, int t, int) { return std::min(s, t); }); break;
    }
}

} // namespace

void Apply(const Transfer& transfer, Rgba* target, const Rgba* source, std::size_t count)
{
    Transfer plain = transfer;
    plain.mode = transfer.mode & ~kDither;
    if (plain.mode >= 32 && plain.mode <= 39)
        Arithmetic(plain, target, source, count);
    else if (plain.mode == kHilite)
        Hilite(plain, target, source, count);
    else if (plain.mode == kGreyText)
        GreyText(plain, target, source, count);
    else {
        plain.mode = plain.mode < 16 ? plain.mode & 7 : 0;
        Boolean(plain, target, source, count);
    }
}

bool Replaces(const Transfer& transfer, Rgba source, Rgba& result) noexcept
{
    const int mode = transfer.mode & ~kDither;
    if (mode < 0 || mode >= 16 || (mode & 3) != 0)
        return false;
    result = Colourised((mode & 4) != 0 ? source ^ kColourBits : source, transfer.fore, transfer.back);
    return true;
}

} // namespace veltrane::imaging::pict
