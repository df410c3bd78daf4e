#include "platform/pictures/Faults.h"

#include <string_view>

namespace veltrane {

namespace {

using imaging::Fault;

/// A detail goes between `before` and `after`.
struct Words {
    const char* before;
    const char* after = "";
};

// A switch, so that the compiler misses the code that has no words.
Words WordsFor(Fault::Code code)
{
    switch (code) {
    case Fault::FormatUnknown: return { "format non reconnu" };
    case Fault::Damaged: return { "fichier endommagé ou incomplet" };
    case Fault::Incomplete: return { "fichier incomplet" };
    case Fault::NoPixels: return { "image sans aucun pixel" };
    case Fault::SideOutOfRange: return { "Width/Height needs to be in the range 1-32767" };
    case Fault::PixelsOverLimit: return { "mémoire insuffisante pour une image de ", " pixels" };
    case Fault::NoMemory: return { "mémoire insuffisante pour cette image" };
    case Fault::BmpVariantUnknown: return { "variante de BMP inconnue" };
    case Fault::CinepakDamaged: return { "image Cinepak endommagée" };
    case Fault::CinepakIncomplete: return { "image Cinepak incomplète" };
    case Fault::GifDamaged: return { "fichier GIF endommagé" };
    case Fault::GifFrameOutOfProportion: return { "image GIF démesurée par rapport à son écran" };
    case Fault::GifImageMissing: return { "fichier GIF sans image" };
    case Fault::GifIncomplete: return { "fichier GIF incomplet" };
    case Fault::JpegComponentsNotSupported:
        return { "fichier JPEG dont le nombre de composantes n'est pas pris en charge" };
    case Fault::JpegDamaged: return { "fichier JPEG endommagé" };
    case Fault::JpegIncomplete: return { "fichier JPEG incomplet" };
    case Fault::JpegPrecisionNotSupported: return { "fichier JPEG dont les échantillons n'ont pas 8 bits" };
    case Fault::JpegProcessNotSupported:
        return { "variante de JPEG non prise en charge (sans perte ou hiérarchique)" };
    case Fault::PictBoundsInconsistent: return { "dimensions d'image PICT contradictoires" };
    case Fault::PictColorTableDamaged: return { "palette PICT endommagée" };
    case Fault::PictDirectPixelsIndexed: return { "image PICT directe sans couleurs directes" };
    case Fault::PictDrawingOutOfProportion: return { "dessin PICT démesuré" };
    case Fault::PictFrameOutOfProportion: return { "image PICT démesurée par rapport à son fichier" };
    case Fault::PictPackTypeUnknown: return { "compression PICT inconnue" };
    case Fault::PictPatternDamaged: return { "motif PICT endommagé" };
    case Fault::PictPixelDataDamaged: return { "données d'image PICT endommagées" };
    case Fault::PictPixelSizeUnknown: return { "profondeur de pixel PICT inconnue" };
    case Fault::PictRegionDamaged: return { "région PICT endommagée" };
    case Fault::PictRegionOutOfProportion: return { "région PICT démesurée" };
    case Fault::PngChecksumWrong: return { "fichier PNG endommagé : somme de contrôle" };
    case Fault::PngChunkUnknown: return { "fichier PNG endommagé : bloc inconnu" };
    case Fault::PngColourTypeOrDepthUnknown:
        return { "fichier PNG endommagé : type de couleur ou profondeur inconnus" };
    case Fault::PngDataChecksumWrong: return { "fichier PNG endommagé : somme de contrôle des pixels" };
    case Fault::PngDataDamaged: return { "fichier PNG endommagé : pixels illisibles" };
    case Fault::PngDataMissing: return { "fichier PNG endommagé : aucun pixel" };
    case Fault::PngDataTooShort: return { "fichier PNG endommagé : trop peu de pixels" };
    case Fault::PngFilterTypeUnknown: return { "fichier PNG endommagé : filtre inconnu" };
    case Fault::PngHeaderDamaged: return { "fichier PNG endommagé : en-tête" };
    case Fault::PngIncomplete: return { "fichier PNG incomplet" };
    case Fault::PngMethodUnknown: return { "fichier PNG endommagé : méthode de codage inconnue" };
    case Fault::PngPaletteDamaged: return { "fichier PNG endommagé : palette" };
    case Fault::PngPaletteMissing: return { "fichier PNG endommagé : palette absente" };
    case Fault::PngStructureDamaged: return { "fichier PNG endommagé : structure" };
    case Fault::QuickTimeColorTableMissing: return { "image QuickTime sans palette" };
    case Fault::QuickTimeCompressionUnknown: return { "compression QuickTime « ", " » inconnue" };
    case Fault::QuickTimeDamaged: return { "image QuickTime endommagée" };
    case Fault::QuickTimeDepthUnknown: return { "profondeur d'image QuickTime inconnue" };
    case Fault::QuickTimeDescriptionDamaged: return { "description QuickTime endommagée" };
    case Fault::QuickTimeIncomplete: return { "image QuickTime incomplète" };
    case Fault::QuickTimeMatrixNotSupported: return { "image QuickTime tournée ou retournée" };
    case Fault::TiffCompressionNotSupported: return { "compression TIFF non prise en charge" };
    case Fault::TiffDamaged: return { "fichier TIFF endommagé" };
    case Fault::TiffIncomplete: return { "fichier TIFF incomplet" };
    case Fault::TiffInkSetNotSupported: return { "encres TIFF non prises en charge" };
    case Fault::TiffPhotometricNotSupported: return { "couleurs TIFF non prises en charge" };
    case Fault::TiffSampleFormatNotSupported: return { "nombres TIFF non pris en charge" };
    case Fault::TiffSamplesNotSupported: return { "pixels TIFF non pris en charge" };
    }
    return { "" };
}

} // namespace

void RaiseFault(const Fault& fault)
{
    const auto [before, after] = WordsFor(fault.code);
    const String message = before + String(fault.Detail()) + after;
    switch (fault.kind) {
    case Fault::Kind::Damaged:
    case Fault::Kind::NotSupported: break;
    case Fault::Kind::OverLimits: throw OutOfBoundsException(message);
    case Fault::Kind::NoMemory: throw OutOfMemoryException(message);
    }
    throw UnsupportedFormatException(message);
}

} // namespace veltrane
