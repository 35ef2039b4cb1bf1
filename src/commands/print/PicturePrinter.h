// Prints pictures through the platform's print dialog.
#pragma once

#include "commands/print/ImagePaint.h"

#include <QPointer>
#include <QString>
#include <QWidget>

#include <functional>
#include <vector>

class QPrinter;

namespace pictorel {

class PicturePrinter : public ImagePaint {
  public:
    // The dialog belongs to `owner`; `documentName` names what is printed, in the queue and as the name that
    // printing to a file proposes.
    PicturePrinter(QWidget* owner, std::function<QString()> documentName);

    void PreparePage(std::int32_t width, std::int32_t height) override;
    void SetPageFit(std::int32_t mode) override;
    void SetPageUnit(std::int32_t unit) override;
    void DrawPicture(const PixelArray& picture, std::int32_t left, std::int32_t top, std::int32_t right,
                     std::int32_t bottom) override;
    void FinishPage() override {}
    bool Print(bool showDialog, bool showProgress) override;

  private:
    struct Drawn {
        PixelArray picture;
        QRect place; // on the page as prepared
    };

    bool AskPerson(QPrinter& printer, bool& enlarge);
    bool PrintOn(QPrinter& printer, const std::vector<Drawn>& drawn, bool enlarge) const;

    QPointer<QWidget> owner_;
    std::function<QString()> documentName_;
    QSize page_; // the page as prepared, in picture pixels
    std::vector<Drawn> drawn_;
};

} // namespace pictorel
