// The picture to the clipboard and from it, see PictureClipboard.h.
#include "commands/PictureClipboard.h"

#include "picture/codecs/Codec.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <utility>

namespace pictorel {
namespace {

constexpr QLatin1String kPng("image/png");

// Keeps the picture as it was when it was copied, which costs nothing until it is edited.
class CopiedPicture : public QMimeData {
  public:
    explicit CopiedPicture(PixelArray picture) : picture_(std::move(picture)) {}

    bool hasFormat(const QString& format) const override { return format == kPng; }
    QStringList formats() const override { return {kPng}; }

  protected:
    QVariant retrieveData(const QString& format, QMetaType /*type*/) const override {
        if (format != kPng) {
            return {};
        }
        try {
            const codecs::ByteBuffer file = codecs::FindCodecByExtension("PNG")->write(picture_, {});
            return QByteArray(reinterpret_cast<const char*>(file.data()),
                              static_cast<qsizetype>(file.size()));
        } catch (const std::exception&) {
            return {}; // there is not enough memory: whoever pastes gets nothing
        }
    }

  private:
    PixelArray picture_;
};

} // namespace

void PictureClipboard::Copy() const {
    QGuiApplication::clipboard()->setMimeData(new CopiedPicture(editor_.Document.WorkingPicture(kSlot)));
}

void PictureClipboard::Paste() {
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    if (data != nullptr && HoldsPicture(*data)) {
        fileCommands_.OpenArrival(ArrivalIn(*data, QObject::tr("Clipboard")));
    } else {
        messages_.Show(QObject::tr("The clipboard holds no picture."), QObject::tr("Paste"),
                       MessageIcon::Exclamation);
    }
}

} // namespace pictorel
