// The formats that pictures are saved in, and the filters of the Open and Save dialogs.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace pictorel {

struct SaveFormat {
    std::string_view extension; // upper case
    bool hasQuality;            // written at quality 100
};

// In the order in which an extension is looked up.
inline constexpr std::array<SaveFormat, 11> kSaveFormats{{
    {"J2K", true},
    {"JPG", true},
    {"BMP", false},
    {"GIF", false},
    {"PNG", false},
    {"TIF", false},
    {"TGA", false},
    {"RAS", false},
    {"PCX", false},
    {"WMF", false},
    {"EMF", false},
}};

inline constexpr int kSaveQuality = 100;

// Longer spellings that mean the same where a person names a file.
struct SaveSpelling {
    std::string_view spelling; // upper case
    std::string_view extension;
};
inline constexpr std::array<SaveSpelling, 3> kSaveSpellings{
    {{"JPEG", "JPG"}, {"JPE", "JPG"}, {"TIFF", "TIF"}}};

// The extension of kSaveFormats that a file with this one, in any letter case, is written as; empty for none.
constexpr std::string_view SaveFormatFor(std::string_view extension) {
    const auto isSame = [&](std::string_view other) {
        return std::equal(extension.begin(), extension.end(), other.begin(), other.end(), [](char a, char b) {
            return (a >= 'a' && a <= 'z' ? static_cast<char>(a - 'a' + 'A') : a) == b;
        });
    };
    for (const SaveFormat& format : kSaveFormats) {
        if (isSame(format.extension)) {
            return format.extension;
        }
    }
    for (const SaveSpelling& row : kSaveSpellings) {
        if (isSame(row.spelling)) {
            return row.extension;
        }
    }
    return {};
}

inline constexpr std::string_view kOpenFilter =
    "All Supported Picture "
    "Files|*.bmp;*.dib;*.rle;*.gif;*.png;*.jpg;*.jpe;*.jpeg;*.tif;*.tiff;*.cpt;*.jp2;*.jpc;*.j2k;*.tga;*.pcx;"
    "*.ras;*."
    "wmf;*.emf|"
    "BMP Windows Bitmap (*.BMP;*.DIB;*.RLE)|*.bmp;*.dib;*.rle|"
    "GIF Graphics Interchange Format (*.GIF)|*.gif|"
    "PNG Portable Network Graphics (*.PNG)|*.png|"
    "JPEG Joint Photographic Expert Group (*.JPG;*.JPE;*.JPEG)|*.jpg;*.jpe;*.jpeg|"
    "JP2 Jpeg 2000 File Format (*.JP2;*.JPC;*.J2K)|*.jp2;*.jpc;*.j2k|"
    "TGA Targa (*.TGA)|*.tga|"
    "PCX ZSoft Paintbrush File (*.PCX)|*.pcx|"
    "TIFF Tagged-Image File Format (*.TIF,*.TIFF,*.CPT)|*.tif;*.tiff;*.cpt|"
    "RAS Sun Raster File (*.RAS)|*.ras|"
    "WMF Standard Windows Metafile (*.WMF)|*.wmf|"
    "EMF Enhanced Windows Metafile (*.EMF)|*.emf|";

// The formats that are read and not written: an entry of the Open dialog behind those of kOpenFilter, whose
// patterns are found by its first entry, for all pictures, as well.
inline constexpr std::string_view kModernPatterns = "*.webp;*.heic;*.heif;*.avif;*.jxl";
inline constexpr std::string_view kModernFilter =
    "WebP, HEIF, AVIF, JPEG XL (*.WEBP;*.HEIC;*.HEIF;*.AVIF;*.JXL)|*.webp;*.heic;*.heif;*.avif;*.jxl|";

inline constexpr std::string_view kSaveFilter =
    "JPG - JPEG |*.jpg|"
    "PNG - Portable Network Graphics |*.png|"
    "GIF - CompuServe GIF |*.gif|"
    "BMP - Windows Bitmap |*.bmp|"
    "TIFF - Tag Image File Format |*.tif|"
    "J2K - JPEG 2000 |*.j2k|"
    "TGA - Targa |*.tga|"
    "RAS - Sun Raster File Image |*.ras|"
    "PCX - ZSoft Paintbrush File |*.pcx|"
    "WMF - Standard Windows Metafile |*.wmf|"
    "EMF - Enhanced Windows Metafile |*.emf|";

} // namespace pictorel
