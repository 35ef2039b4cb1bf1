// Reading the fonts beforehand, see Fonts.h.
#include "programs/decoder/Fonts.h"

#include <QElapsedTimer>
#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainterPath>

#include <array>
#include <vector>

namespace pictorel::decoder {
namespace {

constexpr qint64 kPatience = 3000; // milliseconds
constexpr int kPixelSize = 256;    // that of the outlines that metafiles are drawn with

// What drawings ask for most; a family that the machine lacks brings the one that stands in for it.
constexpr std::array kCommonFamilies{"Arial",   "Times New Roman", "Courier New", "Helvetica", "Symbol",
                                     "Verdana", "Tahoma",          "Calibri",     "Cambria",   "System"};

// Fonts are opened when the first letter is drawn, and stay open while something is set in them.
class OpenFonts {
  public:
    void Open(QFont font) {
        font.setPixelSize(kPixelSize);
        font.setHintingPreference(QFont::PreferNoHinting);
        font.setStyleStrategy(QFont::ForceOutline);
        QPainterPath letters;
        letters.addText(0, 0, font, QStringLiteral("A\u00E9\u05D0\u0416\u4E2D"));
        open_.push_back(std::move(font));
    }

  private:
    std::vector<QFont> open_;
};

void OpenCommonFonts(OpenFonts& fonts) {
    for (const char* const family : kCommonFamilies) {
        for (const bool italic : {false, true}) {
            for (const auto weight : {QFont::Normal, QFont::Bold}) {
                fonts.Open(QFont(QString::fromLatin1(family), -1, weight, italic));
            }
        }
    }
}

void OpenAllFonts(OpenFonts& fonts, const QElapsedTimer& clock) {
    for (const QString& family : QFontDatabase::families()) {
        for (const QString& style : QFontDatabase::styles(family)) {
            if (clock.elapsed() > kPatience) {
                return;
            }
            fonts.Open(QFontDatabase::font(family, style, kPixelSize));
        }
    }
}

} // namespace

void LoadFonts() {
    // Nothing of the person's session has a place here.
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS",
                                   "QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE", "QT_PLUGIN_PATH"}) {
        qunsetenv(name);
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_NO_GLIB", "1");
    static int count = 1;
    static char name[] = "pictorel_decoder";
    static char* words[] = {name, nullptr};
    static const auto* const application = new QGuiApplication(count, words); // both as long as the program
    static auto* const fonts = new OpenFonts;
    static_cast<void>(application);
    QElapsedTimer clock;
    clock.start();
    OpenCommonFonts(*fonts);
    OpenAllFonts(*fonts, clock);
}

} // namespace pictorel::decoder
