// Qt's own readers and writers of pictures.
#include "FormatPeer.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>

namespace pictorel::bench {
namespace {

QByteArray NameOf(std::string_view extension) {
    return QByteArray(extension.data(), static_cast<qsizetype>(extension.size())).toLower();
}

class QtPeer : public FormatPeer {
  public:
    explicit QtPeer(const PixelArray& picture)
        : image_(QImage(picture.Row(0), picture.Width(), picture.Height(), picture.Stride(),
                        QImage::Format_RGB32)
                     .copy()) {}

    bool Decode(std::string_view extension, const codecs::ByteBuffer& file) override {
        QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(file.data()),
                                                   static_cast<qsizetype>(file.size()));
        QBuffer buffer(&bytes);
        QImageReader reader(&buffer, NameOf(extension));
        reader.setAllocationLimit(0);
        return !reader.read().isNull();
    }

    std::optional<codecs::ByteBuffer> Encode(std::string_view extension) override {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        QImageWriter writer(&buffer, NameOf(extension));
        if (extension == "JPG") {
            writer.setQuality(100);
        }
        if (extension == "TIF") {
            writer.setCompression(1);
        }
        if (!writer.write(image_)) {
            return {};
        }
        return codecs::ByteBuffer(bytes.begin(), bytes.end());
    }

  private:
    QImage image_;
};

} // namespace

std::unique_ptr<FormatPeer> MakeQtPeer(const PixelArray& picture) {
    return std::make_unique<QtPeer>(picture);
}

} // namespace pictorel::bench
