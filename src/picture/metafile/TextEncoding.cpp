// Letters of 8 bits in the code pages of metafiles, see Text.h.
#include "picture/metafile/canvas/Text.h"

#include <QStringDecoder>

namespace pictorel::metafile {
namespace {

struct CodePage {
    std::uint8_t charset;
    const char* name;
};
constexpr CodePage kCodePages[] = {
    {0, "windows-1252"},   {77, "macintosh"},     {128, "Shift_JIS"},    {129, "windows-949"},
    {134, "GBK"},          {136, "Big5"},         {161, "windows-1253"}, {162, "windows-1254"},
    {163, "windows-1258"}, {177, "windows-1255"}, {178, "windows-1256"}, {186, "windows-1257"},
    {204, "windows-1251"}, {222, "windows-874"},  {238, "windows-1250"},
};

} // namespace

// What the system has no table for is read as Latin letters.
QString Decoded(codecs::ByteView letters, std::uint8_t charset) {
    const QByteArray bytes(reinterpret_cast<const char*>(letters.data()),
                           static_cast<qsizetype>(letters.size()));
    for (const CodePage& page : kCodePages) {
        if (page.charset == charset) {
            QStringDecoder decoder(page.name);
            if (decoder.isValid()) {
                return decoder(bytes);
            }
        }
    }
    return QString::fromLatin1(bytes);
}

} // namespace pictorel::metafile
