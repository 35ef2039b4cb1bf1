// Loading and saving the open picture, see PictureFiles.h.
#include "editor/PictureFiles.h"

#include "editor/ImageCodec.h"
#include "editor/SaveFormats.h"
#include "picture/ImagingError.h"
#include "platform/CarryOn.h"
#include "platform/Numbers.h"
#include "platform/Texts.h"

#include <QFileInfo>

#include <algorithm>

namespace pictorel {
namespace {

constexpr int kSmallestSide = 2; // pixels

const SaveFormat& FormatOf(const QString& formatText) {
    const std::string wanted = formatText.toUpper().toStdString();
    const auto found = std::find_if(kSaveFormats.begin(), kSaveFormats.end(),
                                    [&](const SaveFormat& format) { return format.extension == wanted; });
    if (found == kSaveFormats.end()) {
        const std::string named =
            formatText.isEmpty() ? "A name without an extension" : "\"." + formatText.toStdString() + "\"";
        throw ImagingError(ImagingFailure::UnsupportedFormat,
                           named +
                               " does not say in which format to save. Use one of: "
                               "jpg, png, gif, bmp, tif, j2k, tga, ras, pcx, wmf, emf.");
    }
    return *found;
}

} // namespace

QString ImageInfoText(int width, int height) {
    return QStringLiteral("(W x H) : %1 x %2").arg(width).arg(height);
}

QString PixelSizeText(int width, int height) {
    return QStringLiteral("%1 x %2 pixels").arg(width).arg(height);
}

PictureFiles::PictureFiles(Image_Mods& document, EditorObserver*& observer, Messages& messages)
    : document_(document), observer_(observer), messages_(messages) {}

void PictureFiles::ShowError(const QString& text) {
    messages_.Show(text, QStringLiteral("Error"), MessageIcon::Critical);
}

bool PictureFiles::LoadImageFile(PictureSlot slot, const QString& fileName) {
    try {
        PixelArray pixels;
        const bool isPicture = document_.ImageCodec->Read(fileName.toStdString(), pixels);
        if (!isPicture || pixels.Width() < kSmallestSide || pixels.Height() < kSmallestSide) {
            ShowError(QStringLiteral("Unsupported file format!"));
            return false;
        }
        const std::int16_t width = ToInt16(static_cast<std::int64_t>(pixels.Width()));
        const std::int16_t height = ToInt16(static_cast<std::int64_t>(pixels.Height()));
        const bool otherSize = document_.ImageWidth(slot) != width || document_.ImageHeight(slot) != height;
        document_.ImageWidth(slot) = width;
        document_.ImageHeight(slot) = height;
        document_.WorkingPicture(slot) = pixels;
        document_.PreviewOutdated = true;
        observer_->PictureLoaded(slot);
        if (otherSize) {
            observer_->SizeChanged(slot);
        }
        document_.ImagePixels = pixels;
        return true;
    } catch (const std::exception& error) {
        ShowError(QString::fromUtf8(error.what()));
        return false;
    }
}

bool PictureFiles::OpenImageFile(PictureSlot slot, const QString& fileName) {
    const bool loaded = LoadImageFile(slot, fileName);
    document_.OpenDialogFolder = fileName;
    if (loaded) {
        document_.PictureName = QFileInfo(fileName).fileName();
        document_.PictureFolder = QFileInfo(fileName).absolutePath();
    }
    return loaded;
}

bool PictureFiles::SaveImageFile(PictureSlot slot, const QString& fileName, const QString& formatText) {
    try {
        const SaveFormat& format = FormatOf(formatText);
        if (format.hasQuality) {
            document_.ImageCodec->SetQuality(kSaveQuality);
        }
        document_.ImageCodec->Write(document_.WorkingPicture(slot), fileName.toStdString(), format.extension);
        return true;
    } catch (const std::exception& error) {
        ShowError(QString::fromUtf8(error.what()));
        return false;
    }
}

bool PictureFiles::SaveImageFileAs(PictureSlot slot, const QString& fileName) {
    const QString extension = document_.FileSystem.ExtensionOf(fileName);
    const std::string_view format = SaveFormatFor(extension.toStdString());
    const bool saved = SaveImageFile(slot, fileName, format.empty() ? extension : FromView(format));
    document_.SaveDialogFolder = fileName;
    if (saved) {
        document_.PictureName = QFileInfo(fileName).fileName();
        document_.PictureFolder = QFileInfo(fileName).absolutePath();
    }
    return saved;
}

void PictureFiles::ReadImageWidth(PictureSlot slot) {
    CarryOn([&] {
        if (const PixelArray& picture = document_.WorkingPicture(slot); !picture.IsEmpty()) {
            document_.ImageWidth(slot) = ToInt16(static_cast<std::int64_t>(picture.Width()));
        }
    });
}

void PictureFiles::ReadImageHeight(PictureSlot slot) {
    CarryOn([&] {
        if (const PixelArray& picture = document_.WorkingPicture(slot); !picture.IsEmpty()) {
            document_.ImageHeight(slot) = ToInt16(static_cast<std::int64_t>(picture.Height()));
        }
    });
}

} // namespace pictorel
