#include "imaging/jpeg/Trap.h"

#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

#include <jerror.h> // after jpeglib.h, which defines what the library was built with

#include "imaging/Fault.h"

namespace veltrane::imaging::jpeg {

struct Trap::Manager : jpeg_error_mgr {
    explicit Manager(Trap& trap) : jpeg_error_mgr {}, trap(trap)
    {
        jpeg_std_error(this);
        error_exit = [](j_common_ptr library) {
            Trap& owner = static_cast<Manager*>(library->err)->trap;
            owner.code = library->err->msg_code;
            std::longjmp(owner.back, 1);
        };
        emit_message = [](j_common_ptr library, int level) {
            constexpr int kWarning = -1;
            if (level == kWarning)
                static_cast<Manager*>(library->err)
                    ->trap.Warned(library->err->msg_code, library->err->msg_parm.i[1]);
        };
        output_message = [](j_common_ptr) {};
    }

    Trap& trap;
};

Trap::Trap() : manager(std::make_unique<Manager>(*this)) { }

Trap::~Trap() = default;

jpeg_error_mgr* Trap::Errors() noexcept
{
    return manager.get();
}

void Trap::Leave() noexcept
{
    std::longjmp(back, 1);
}

void Trap::LeaveDamaged() noexcept
{
    code = JWRN_HIT_MARKER;
    std::longjmp(back, 1);
}

// The library repairs what it can and warns. A warning that means invented pixels ends the decoding; every
// other warning is ignored.
void Trap::Warned(int warning, int marker) noexcept
{
    switch (warning) {
    case JWRN_JPEG_EOF:
        sawEnd = true;
        if (endIsDamage)
            LeaveDamaged();
        break;
    case JWRN_EXTRANEOUS_DATA:
        // Extra bytes before a restart marker: the decoder is out of step in that interval. Extra bytes
        // before any other marker are the padding that cameras and editors leave between segments.
        if (marker >= JPEG_RST0 && marker <= JPEG_RST0 + 7)
            LeaveDamaged();
        break;
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_ARITH_BAD_CODE:
    case JWRN_MUST_RESYNC:
    case JWRN_BOGUS_PROGRESSION: LeaveDamaged();
    default: break; // unknown Adobe transform or JFIF version, odd but harmless scan parameters
    }
}

void Trap::RaiseDamaged() const
{
    throw Fault(sawEnd ? Fault::JpegIncomplete : Fault::JpegDamaged);
}

void Trap::Raise() const
{
    if (thrown)
        std::rethrow_exception(thrown);
    switch (code) {
    case JERR_OUT_OF_MEMORY: throw Fault(Fault::NoMemory);
    case JERR_IMAGE_TOO_BIG: throw Fault(Fault::SideOutOfRange);
    case JERR_EMPTY_IMAGE: throw Fault(Fault::NoPixels);
    case JERR_BAD_PRECISION: throw Fault(Fault::JpegPrecisionNotSupported);
    case JERR_SOF_UNSUPPORTED: throw Fault(Fault::JpegProcessNotSupported);
    case JERR_COMPONENT_COUNT:
    case JERR_CONVERSION_NOTIMPL: throw Fault(Fault::JpegComponentsNotSupported);
    default: break;
    }
    RaiseDamaged();
}

} // namespace veltrane::imaging::jpeg
