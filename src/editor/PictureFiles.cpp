// Loading and saving the open picture, see PictureFiles.h.
#include "editor/PictureFiles.h"

#include "editor/SaveFormats.h"
#include "picture/ImagingError.h"
#include "platform/CarryOn.h"
#include "platform/Numbers.h"
#include "platform/PumpEvents.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace pictorel {
namespace {

constexpr unsigned kOpenFlags = 0x1204; // file must exist, several may be selected, no read-only box
constexpr unsigned kSaveFlags = 0x802;  // path must exist, ask before overwriting
constexpr int kMaximumNameLength = 32000;
constexpr int kSmallestSide = 2; // pixels

QString FromView(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

void PrepareDialog(CommonDialog& dialog, std::string_view filter, unsigned flags, const QString& folder) {
    dialog.FilterIndex = 1;
    dialog.Filter = FromView(filter);
    dialog.Flags = flags;
    dialog.MaxFileSize = kMaximumNameLength;
    dialog.CancelError = false;
    dialog.FileName.clear();
    dialog.InitDir = folder;
}

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

PictureFiles::PictureFiles(Image_Mods& document, PictureFilesControls controls, EditorServices& services,
                           Messages& messages, QString applicationTitle)
    : document_(document),
      controls_(std::move(controls)),
      services_(services),
      messages_(messages),
      applicationTitle_(std::move(applicationTitle)) {}

void PictureFiles::ShowError(const QString& text, const QString& title) {
    messages_.Show(text, title, MessageIcon::Critical);
}

bool PictureFiles::OpenImageDialog(PictureSlot slot, CommonDialog& dialog) {
    try {
        PrepareDialog(dialog, kOpenFilter, kOpenFlags, document_.OpenDialogFolder);
        dialog.ShowOpen();
        PumpEvents();
        const QString fileName = dialog.FileName;
        if (fileName.isEmpty()) {
            return false;
        }
        PumpEvents();
        return OpenImageFile(slot, fileName);
    } catch (const std::exception& error) {
        ShowError(QString::fromUtf8(error.what()), applicationTitle_);
        return false;
    }
}

bool PictureFiles::OpenImageFile(PictureSlot slot, const QString& fileName) {
    const bool loaded = LoadImageFile(slot, fileName);
    document_.OpenDialogFolder = fileName;
    if (loaded) {
        document_.PictureName = QFileInfo(fileName).fileName();
    }
    return loaded;
}

bool PictureFiles::SaveImageDialog(PictureSlot slot, CommonDialog& dialog) {
    try {
        PrepareDialog(dialog, kSaveFilter, kSaveFlags, document_.SaveDialogFolder);
        dialog.ShowSave();
        const QString fileName = dialog.FileName;
        PumpEvents();
        if (fileName.isEmpty()) {
            return false;
        }
        PumpEvents();
        const bool saved = SaveImageFile(slot, fileName, document_.FileSystem.ExtensionOf(fileName));
        PumpEvents();
        document_.SaveDialogFolder = fileName;
        if (saved) {
            document_.PictureName = QFileInfo(fileName).fileName();
        }
        return saved;
    } catch (const std::exception& error) {
        ShowError(QString::fromUtf8(error.what()), applicationTitle_);
        return false;
    }
}

bool PictureFiles::LoadImageFile(PictureSlot slot, const QString& fileName) {
    const auto refuse = [this] {
        ShowError(QStringLiteral("Unsupported file format!"), QStringLiteral("Error"));
        return false;
    };
    try {
        PixelArray pixels;
        if (!document_.ImageCodec->Read(fileName.toStdString(), pixels)) {
            return refuse();
        }
        document_.ImageWidth(slot) = ToInt16(static_cast<std::int64_t>(pixels.Width()));
        document_.ImageHeight(slot) = ToInt16(static_cast<std::int64_t>(pixels.Height()));
        if (pixels.Width() < kSmallestSide || pixels.Height() < kSmallestSide) {
            return refuse();
        }
        document_.Transforms(slot).SetPicture(pixels);
        ImageView& view = document_.Views(slot);
        view.SetRedraw(false);
        view.Show(pixels);
        view.FitNew();
        view.SetRedraw(true);
        services_.UpdateZoomView(slot);
        controls_.lbl_ImageInfo(slot).SetCaption(
            ImageInfoText(document_.ImageWidth(slot), document_.ImageHeight(slot)));
        controls_.lbl_ImageInfo(slot).RepaintNow();
        document_.Transforms(slot).CopyPicture(document_.ImagePixels);
        return true;
    } catch (const std::exception& error) {
        ShowError(QString::fromUtf8(error.what()), QStringLiteral("Error"));
        return false;
    }
}

bool PictureFiles::SaveImageFile(PictureSlot slot, const QString& fileName, const QString& formatText) {
    try {
        PixelArray pixels;
        document_.Transforms(slot).CopyPicture(pixels);
        const SaveFormat& format = FormatOf(formatText);
        if (format.hasQuality) {
            document_.ImageCodec->SetQuality(kSaveQuality);
        }
        document_.ImageCodec->Write(pixels, fileName.toStdString(), format.extension);
        return true;
    } catch (const std::exception& error) {
        ShowError(QString::fromUtf8(error.what()), QStringLiteral("Error"));
        return false;
    }
}

void PictureFiles::ReadImageWidth(PictureSlot slot) {
    CarryOn([&] {
        PixelArray pixels;
        document_.Transforms(slot).CopyPicture(pixels);
        document_.ImageWidth(slot) =
            ToInt16(static_cast<std::int64_t>(document_.ImageUtility->Width(pixels)));
    });
}

void PictureFiles::ReadImageHeight(PictureSlot slot) {
    CarryOn([&] {
        PixelArray pixels;
        document_.Transforms(slot).CopyPicture(pixels);
        document_.ImageHeight(slot) =
            ToInt16(static_cast<std::int64_t>(document_.ImageUtility->Height(pixels)));
    });
}

} // namespace pictorel
