// The Print command: what stands on the page of the PDF that the dialog's "Print to File" makes.
#include "app/EditorWindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QPrintDialog>
#include <QProcess>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace pictorel {
namespace {

constexpr int kDotsPerInch = 100; // of the rendered page: a pixel of an unscaled small picture is a dot

// Answers the next print dialog: to a PDF file of that name, or not at all where it is empty.
void WillPrintTo(const QString& fileName, bool enlarge = false) {
    auto* const timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [=] {
        auto* const dialog = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) {
            return;
        }
        timer->deleteLater();
        timer->stop();
        if (fileName.isEmpty()) {
            dialog->reject();
            return;
        }
        auto* const printers = dialog->findChild<QComboBox*>(QStringLiteral("printers"));
        printers->setCurrentIndex(printers->findText(QStringLiteral("PDF"), Qt::MatchContains));
        dialog->findChild<QLineEdit*>(QStringLiteral("filename"))->setText(fileName);
        dialog->findChild<QCheckBox*>(QStringLiteral("Check_Enlarge"))->setChecked(enlarge);
        QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
    });
    timer->start(5);
}

class Printing : public testing::Test {
  protected:
    // The page of the PDF file as an eye sees it; null where there is no such page.
    QImage Page(const QString& fileName) {
        QProcess render;
        render.start(QStringLiteral("pdftoppm"), {"-r", QString::number(kDotsPerInch), "-png", "-singlefile",
                                                  fileName, editor.Path("page")});
        EXPECT_TRUE(render.waitForFinished());
        return QImage(editor.Path("page.png"));
    }

    // Where ink is.
    static QRect Inked(const QImage& page) {
        QRect ink;
        for (int y = 0; y < page.height(); ++y) {
            for (int x = 0; x < page.width(); ++x) {
                if (qGray(page.pixel(x, y)) < 240) {
                    ink |= QRect(x, y, 1, 1);
                }
            }
        }
        return ink;
    }

    // Opens the picture and prints it.
    QImage Print(const QString& name, const PixelArray& picture, bool enlarge = false) {
        editor.Open(editor.MakeFile(name, picture));
        WillPrintTo(editor.Path("out.pdf"), enlarge);
        editor.Click("Cmd_Panel", 4);
        return Page(editor.Path("out.pdf"));
    }

    EditorWindow editor;
};

PixelArray Framed(int width, int height) {
    PixelArray picture = MakeScene(width, height);
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (x < 8 || y < 8 || x >= width - 8 || y >= height - 8) {
                std::fill_n(rows + y * picture.Stride() + 4 * x, 3, std::uint8_t{30});
            }
        }
    }
    return picture;
}

TEST_F(Printing, ALargePictureFillsAPageThatIsTurnedToSuit) {
    for (const auto& [width, height] : {std::pair{2400, 1600}, {1600, 2400}}) {
        const QImage page = Print("large.png", Framed(width, height));
        ASSERT_FALSE(page.isNull());
        EXPECT_EQ(page.width() > page.height(), width > height);
        const QRect ink = Inked(page);
        EXPECT_NEAR(ink.center().x(), page.width() / 2.0, 2);
        EXPECT_NEAR(ink.center().y(), page.height() / 2.0, 2);
        EXPECT_NEAR(1.0 * ink.width() / ink.height(), 1.0 * width / height, 0.01);
        EXPECT_GT(std::max(1.0 * ink.width() / page.width(), 1.0 * ink.height() / page.height()), 0.85);

        const QImage printed =
            page.copy(ink).scaled(width / 8, height / 8, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        const QImage original =
            QImage(editor.Path("large.png"))
                .scaled(width / 8, height / 8, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        double difference = 0;
        for (int y = 0; y < printed.height(); ++y) {
            for (int x = 0; x < printed.width(); ++x) {
                difference += std::abs(qGray(printed.pixel(x, y)) - qGray(original.pixel(x, y)));
            }
        }
        EXPECT_LT(difference / (printed.width() * printed.height()), 6);
    }
    EXPECT_TRUE(editor.person.Messages().empty());
    EXPECT_FALSE(editor.Document().ImageModified(0));
}

TEST_F(Printing, ASmallPictureKeepsOneHundredDotsAnInchUnlessAskedToFill) {
    const QImage page = Print("small.png", Framed(200, 300));
    EXPECT_NEAR(Inked(page).width(), 200, 2);
    EXPECT_NEAR(Inked(page).height(), 300, 2);
    const QImage filled = Print("small.png", Framed(200, 300), true);
    EXPECT_GT(Inked(filled).height(), 900);
}

TEST_F(Printing, WhatIsTransparentIsWhite) {
    PixelArray picture = Framed(200, 200);
    picture.SetHasAlpha(true);
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 50; y < 150; ++y) {
        for (int x = 50; x < 150; ++x) {
            rows[y * picture.Stride() + 4 * x + 3] = 0;
        }
    }
    const QImage page = Print("hole.png", picture);
    EXPECT_EQ(page.pixel(page.width() / 2, page.height() / 2), qRgb(255, 255, 255));
    EXPECT_NEAR(Inked(page).width(), 200, 2);
}

TEST_F(Printing, CancellingPrintsNothingAndSaysNothing) {
    editor.Open(editor.MakeFile("a.png", MakeScene(40, 30)));
    WillPrintTo(QString());
    editor.Click("Cmd_Panel", 4);
    EXPECT_TRUE(editor.person.Messages().empty());
    EXPECT_FALSE(editor.Document().ImageModified(0));
}

TEST_F(Printing, ThePageIsNamedAfterTheOpenPicture) {
    QFile noPicture(editor.Path("letter.png"));
    ASSERT_TRUE(noPicture.open(QIODevice::WriteOnly));
    noPicture.write("no picture at all");
    noPicture.close();
    const auto titleOfPage = [this] {
        WillPrintTo(editor.Path("out.pdf"));
        editor.Click("Cmd_Panel", 4);
        QProcess ask;
        ask.start(QStringLiteral("pdfinfo"), {editor.Path("out.pdf")});
        EXPECT_TRUE(ask.waitForFinished());
        const QStringList lines = QString::fromUtf8(ask.readAllStandardOutput()).split(u'\n');
        return lines.filter(QStringLiteral("Title:")).join(u' ').section(u':', 1).trimmed();
    };

    editor.Open(editor.MakeFile("lake.png", MakeScene(40, 30)));
    editor.Open(noPicture.fileName());
    EXPECT_EQ(titleOfPage(), "lake.png") << "not after the file that could not be opened";
    editor.Save(editor.Path("shore.jpg"));
    EXPECT_EQ(titleOfPage(), "shore.jpg");
}

TEST_F(Printing, APageThatCannotBeWrittenIsReported) {
    editor.Open(editor.MakeFile("a.png", MakeScene(40, 30)));
    for (const QString& target : {QStringLiteral("/dev/full"), QStringLiteral("/proc/none.pdf")}) {
        editor.person.ForgetMessages();
        WillPrintTo(target);
        editor.Click("Cmd_Panel", 4);
        ASSERT_GE(editor.person.Messages().size(), 1U) << target.toStdString();
        EXPECT_EQ(editor.person.Messages().back().text, "Can't print the image !");
        EXPECT_EQ(editor.person.Messages().back().title, "");
        EXPECT_EQ(editor.person.Messages().back().icon, QMessageBox::Critical);
    }
}

} // namespace
} // namespace pictorel
