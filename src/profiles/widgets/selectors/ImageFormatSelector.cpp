#include "ImageFormatSelector.h"

#include "SelectorValues.h"

namespace widgets {

namespace {

const QList<const char*>& readFormats()
{
    static const QList<const char*> names{
        "GL_RGBA",
        "GL_RGB",
        "GL_BGRA_EXT",
        "GL_RG",
        "GL_RED",
        "GL_ALPHA",
        "GL_LUMINANCE",
        "GL_LUMINANCE_ALPHA",
        "GL_RGBA_INTEGER",
        "GL_RGB_INTEGER",
        "GL_RG_INTEGER",
        "GL_RED_INTEGER",
    };
    return names;
}

const QList<const char*>& readTypes()
{
    static const QList<const char*> names{
        "GL_UNSIGNED_BYTE",
        "GL_BYTE",
        "GL_UNSIGNED_SHORT",
        "GL_SHORT",
        "GL_UNSIGNED_INT",
        "GL_INT",
        "GL_HALF_FLOAT",
        "GL_HALF_FLOAT_OES",
        "GL_FLOAT",
        "GL_UNSIGNED_SHORT_5_6_5",
        "GL_UNSIGNED_SHORT_4_4_4_4",
        "GL_UNSIGNED_SHORT_5_5_5_1",
        "GL_UNSIGNED_SHORT_4_4_4_4_REV_EXT",
        "GL_UNSIGNED_SHORT_1_5_5_5_REV_EXT",
        "GL_UNSIGNED_INT_2_10_10_10_REV",
        "GL_UNSIGNED_INT_10F_11F_11F_REV",
        "GL_UNSIGNED_INT_5_9_9_9_REV",
    };
    return names;
}

const QList<const char*>& compressedTextures()
{
    static const QList<const char*> names{
        "GL_ETC1_RGB8_OES",
        "GL_COMPRESSED_RGB8_ETC2",
        "GL_COMPRESSED_SRGB8_ETC2",
        "GL_COMPRESSED_RGB8_PUNCHTHROUGH_ALPHA1_ETC2",
        "GL_COMPRESSED_SRGB8_PUNCHTHROUGH_ALPHA1_ETC2",
        "GL_COMPRESSED_RGBA8_ETC2_EAC",
        "GL_COMPRESSED_SRGB8_ALPHA8_ETC2_EAC",
        "GL_COMPRESSED_R11_EAC",
        "GL_COMPRESSED_SIGNED_R11_EAC",
        "GL_COMPRESSED_RG11_EAC",
        "GL_COMPRESSED_SIGNED_RG11_EAC",
        "GL_COMPRESSED_RGB_TSRTC_4BPPV1_BWD",
        "GL_COMPRESSED_RGB_TSRTC_2BPPV1_BWD",
        "GL_COMPRESSED_RGBA_TSRTC_4BPPV1_BWD",
        "GL_COMPRESSED_RGBA_TSRTC_2BPPV1_BWD",
        "GL_COMPRESSED_RGBA_TSRTC_4BPPV2_BWD",
        "GL_COMPRESSED_RGBA_TSRTC_2BPPV2_BWD",
        "GL_COMPRESSED_SRGB_TSRTC_4BPPV1_EXT",
        "GL_COMPRESSED_SRGB_TSRTC_2BPPV1_EXT",
        "GL_COMPRESSED_SRGB_ALPHA_TSRTC_4BPPV1_EXT",
        "GL_COMPRESSED_SRGB_ALPHA_TSRTC_2BPPV1_EXT",
        "GL_COMPRESSED_SRGB_ALPHA_TSRTC_4BPPV2_BWD",
        "GL_COMPRESSED_SRGB_ALPHA_TSRTC_2BPPV2_BWD",
        "GL_COMPRESSED_RGB_S3TC_DXT1_EXT",
        "GL_COMPRESSED_RGBA_S3TC_DXT1_EXT",
        "GL_COMPRESSED_RGBA_S3TC_DXT3_EXT",
        "GL_COMPRESSED_RGBA_S3TC_DXT5_EXT",
        "GL_COMPRESSED_SRGB_S3TC_DXT1_EXT",
        "GL_COMPRESSED_SRGB_ALPHA_S3TC_DXT1_EXT",
        "GL_COMPRESSED_SRGB_ALPHA_S3TC_DXT3_EXT",
        "GL_COMPRESSED_SRGB_ALPHA_S3TC_DXT5_EXT",
        "GL_COMPRESSED_RGBA_ASTC_4x4_KHR",
        "GL_COMPRESSED_RGBA_ASTC_5x4_KHR",
        "GL_COMPRESSED_RGBA_ASTC_5x5_KHR",
        "GL_COMPRESSED_RGBA_ASTC_6x5_KHR",
        "GL_COMPRESSED_RGBA_ASTC_6x6_KHR",
        "GL_COMPRESSED_RGBA_ASTC_8x5_KHR",
        "GL_COMPRESSED_RGBA_ASTC_8x6_KHR",
        "GL_COMPRESSED_RGBA_ASTC_8x8_KHR",
        "GL_COMPRESSED_RGBA_ASTC_10x5_KHR",
        "GL_COMPRESSED_RGBA_ASTC_10x6_KHR",
        "GL_COMPRESSED_RGBA_ASTC_10x8_KHR",
        "GL_COMPRESSED_RGBA_ASTC_10x10_KHR",
        "GL_COMPRESSED_RGBA_ASTC_12x10_KHR",
        "GL_COMPRESSED_RGBA_ASTC_12x12_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_4x4_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_5x4_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_5x5_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_6x5_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_6x6_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_8x5_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_8x6_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_8x8_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_10x5_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_10x6_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_10x8_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_10x10_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_12x10_KHR",
        "GL_COMPRESSED_SRGB8_ALPHA8_ASTC_12x12_KHR",
        "GL_PALETTE4_RGB8_OES",
        "GL_PALETTE4_RGBA8_OES",
        "GL_PALETTE4_R5_G6_B5_OES",
        "GL_PALETTE4_RGBA4_OES",
        "GL_PALETTE4_RGB5_A1_OES",
        "GL_PALETTE8_RGB8_OES",
        "GL_PALETTE8_RGBA8_OES",
        "GL_PALETTE8_R5_G6_B5_OES",
        "GL_PALETTE8_RGBA4_OES",
        "GL_PALETTE8_RGB5_A1_OES",
    };
    return names;
}

} // namespace

ImageFormatSelector::ImageFormatSelector(QWidget* parent, Use use, const QString& current)
    : NamedValueSelector(parent, glDecimals(candidateNames(use)), current)
{
}

QList<const char*> ImageFormatSelector::candidateNames(Use use)
{
    switch (use) {
    case Use::ReadFormat:
        return readFormats();
    case Use::ReadType:
        return readTypes();
    case Use::CompressedTexture:
        break;
    }
    return compressedTextures();
}

} // namespace widgets
