// Prints pictures, see PicturePrinter.h.
#include "commands/print/PicturePrinter.h"

#include "commands/print/PagePlacement.h"
#include "picture/ImagingError.h"

#include <QCheckBox>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QLocale>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace pictorel {
namespace {

constexpr std::int32_t kCentredInProportion = 11;
constexpr std::int32_t kPixels = 0;
// Printing to a file stores pictures as JPEG unless asked not to; up to this size, which screenshots and
// drawings with their hard edges have, lossless costs little.
constexpr qint64 kLosslessPixels = 3'000'000;

// The picture as paper shows it: what is transparent is white. Shares the array's pixels where none is.
QImage OnPaper(const PixelArray& picture) {
    QImage whole(picture.Row(0), picture.Width(), picture.Height(), picture.Stride(),
                 picture.HasAlpha() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    if (!picture.HasAlpha()) {
        return whole;
    }
    QImage paper(whole.size(), QImage::Format_RGB32);
    if (paper.isNull()) {
        throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory to print the picture.");
    }
    paper.fill(Qt::white);
    QPainter(&paper).drawImage(0, 0, whole);
    return paper;
}

class WaitCursor {
  public:
    explicit WaitCursor(bool wanted) : wanted_(wanted) {
        if (wanted_) {
            QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        }
    }
    ~WaitCursor() {
        if (wanted_) {
            QGuiApplication::restoreOverrideCursor();
        }
    }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

  private:
    bool wanted_;
};

// Whether a PDF file was written to its end: the library that writes it does not report a full disk.
bool IsWholePdf(const QString& fileName) {
    constexpr qint64 kTail = 32;
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) && !file.isSequential() &&
           file.seek(std::max<qint64>(0, file.size() - kTail)) && file.readAll().contains("%%EOF");
}

} // namespace

PicturePrinter::PicturePrinter(QWidget* owner, std::function<QString()> documentName)
    : owner_(owner), documentName_(std::move(documentName)) {}

void PicturePrinter::PreparePage(std::int32_t width, std::int32_t height) {
    drawn_.clear();
    page_ = QSize(width, height);
}

void PicturePrinter::SetPageFit(std::int32_t mode) {
    if (mode != kCentredInProportion) {
        throw ImagingError(ImagingFailure::InvalidValue, "There is no such way to fit a page.");
    }
}

void PicturePrinter::SetPageUnit(std::int32_t unit) {
    if (unit != kPixels) {
        throw ImagingError(ImagingFailure::InvalidValue, "Pages are measured in pixels only.");
    }
}

void PicturePrinter::DrawPicture(const PixelArray& picture, std::int32_t left, std::int32_t top,
                                 std::int32_t right, std::int32_t bottom) {
    drawn_.push_back({picture, QRect(QPoint(left, top), QPoint(right, bottom))});
}

bool PicturePrinter::Print(bool showDialog, bool showProgress) {
    const auto drawn = std::exchange(drawn_, {}); // given back when the page is out
    if (drawn.empty() || page_.isEmpty()) {
        return false;
    }
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(documentName_());
    if (printer.outputFormat() == QPrinter::PdfFormat) { // a printer knows its own paper
        const bool letter = QLocale::system().measurementSystem() == QLocale::ImperialUSSystem;
        printer.setPageSize(QPageSize(letter ? QPageSize::Letter : QPageSize::A4));
    }
    printer.setPageOrientation(OrientationFor(page_));
    bool enlarge = false;
    if (showDialog && !AskPerson(printer, enlarge)) {
        return true; // not to print is no failure
    }
    const WaitCursor wait(showProgress);
    return PrintOn(printer, drawn, enlarge);
}

bool PicturePrinter::PrintOn(QPrinter& printer, const std::vector<Drawn>& drawn, bool enlarge) const {
    QPainter painter;
    if (!painter.begin(&printer)) {
        return false;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::LosslessImageRendering,
                          qint64{page_.width()} * page_.height() <= kLosslessPixels);
    const QRectF place =
        PlaceOnPage(page_, printer.pageRect(QPrinter::DevicePixel).size(), printer.resolution(), enlarge);
    painter.translate(place.topLeft());
    painter.scale(place.width() / page_.width(), place.height() / page_.height());
    for (const Drawn& one : drawn) {
        painter.drawImage(one.place, OnPaper(one.picture));
    }
    const bool ended = painter.end() && printer.printerState() != QPrinter::Error;
    const bool isFile = printer.outputFormat() == QPrinter::PdfFormat;
    return ended && (!isFile || IsWholePdf(printer.outputFileName()));
}

bool PicturePrinter::AskPerson(QPrinter& printer, bool& enlarge) {
    QPrintDialog dialog(&printer, owner_);
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
    auto* const tab = new QWidget;
    tab->setWindowTitle(QStringLiteral("Picture"));
    auto* const fill = new QCheckBox(QStringLiteral("Enlarge to fill the page"));
    fill->setObjectName(QStringLiteral("Check_Enlarge"));
    fill->setToolTip(QStringLiteral("Otherwise a small picture is printed at %1 dots per inch")
                         .arg(static_cast<int>(kFewestDotsPerInch)));
    auto* const column = new QVBoxLayout(tab);
    column->addWidget(fill);
    column->addStretch();
    dialog.setOptionTabs({tab});
    const bool accepted = dialog.exec() == QDialog::Accepted;
    enlarge = fill->isChecked();
    return accepted;
}

} // namespace pictorel
