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
#include <cmath>

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

QString DamageText(double partShown) {
    constexpr double kPercent = 100;
    if (partShown >= 1) {
        return {};
    }
    if (partShown == PixelArray::kUnknownPart) {
        return QStringLiteral("damaged: shown in part");
    }
    const int percent = std::clamp(static_cast<int>(std::floor(partShown * kPercent)), 1, 99);
    return QStringLiteral("damaged: %1 % shown").arg(percent);
}

QString PixelSizeText(int width, int height) {
    return QStringLiteral("%1 x %2 pixels").arg(width).arg(height);
}

PictureFiles::PictureFiles(Image_Mods& document, EditorObserver*& observer, Messages& messages)
    : document_(document), observer_(observer), messages_(messages) {}

void PictureFiles::ShowError(const QString& text) {
    messages_.Show(text, QStringLiteral("Error"), MessageIcon::Critical);
}

// What a person can do something about stands below the text for all that cannot be opened.
void PictureFiles::ShowRefusal(const std::string& reason) {
    QString text = QStringLiteral("Unsupported file format!");
    if (!reason.empty()) {
        text += QStringLiteral("\n\n") + QString::fromStdString(reason);
    }
    ShowError(text);
}

bool PictureFiles::LoadImageFile(PictureSlot slot, const QString& fileName) {
    try {
        PixelArray pixels;
        const bool isPicture = document_.ImageCodec->Read(fileName.toStdString(), pixels);
        if (!isPicture || pixels.Width() < kSmallestSide || pixels.Height() < kSmallestSide) {
            ShowRefusal({});
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
    } catch (const ImagingError& error) {
        error.Kind() == ImagingFailure::TooLarge ? ShowRefusal(error.what())
                                                 : ShowError(QString::fromUtf8(error.what()));
        return false;
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
        const bool isDamaged = document_.WorkingPicture(slot).PartShown() < 1;
        document_.DamagedOriginal = isDamaged ? fileName : QString();
    }
    return loaded;
}

// Whatever is still in a damaged file, other programs may get more out of it.
bool PictureFiles::MayReplace(const QString& fileName) {
    const QString& damaged = document_.DamagedOriginal;
    const bool isDamaged =
        !damaged.isEmpty() && QFileInfo::exists(damaged) && QFileInfo(damaged) == QFileInfo(fileName);
    return !isDamaged ||
           messages_.AskYesNoCancel(
               QFileInfo(fileName).fileName() +
                   QStringLiteral(" is damaged, and only a part of it could be opened. Saving replaces what "
                                  "other programs may still get out of it.\n\nReplace it?"),
               QStringLiteral("Save")) == MessageAnswer::Yes;
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
    if (!MayReplace(fileName)) {
        document_.SaveDialogFolder = fileName;
        return false;
    }
    const QString extension = document_.FileSystem.ExtensionOf(fileName);
    const std::string_view format = SaveFormatFor(extension.toStdString());
    const bool saved = SaveImageFile(slot, fileName, format.empty() ? extension : FromView(format));
    document_.SaveDialogFolder = fileName;
    if (saved) {
        if (QFileInfo(document_.DamagedOriginal) == QFileInfo(fileName)) {
            document_.DamagedOriginal.clear();
        }
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
