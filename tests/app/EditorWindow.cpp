// The editor as the tests drive it, see EditorWindow.h.
#include "app/EditorWindow.h"

#include "editor/ImageCodec.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace pictorel {

EditorWindow::EditorWindow(const CommandLine& commandLine, const std::function<void(Person& person)>& prepare)
    : window_(std::make_unique<frmMain>()) {
    if (prepare) {
        prepare(person);
    }
    // The splash is waited for by the start-up sequence itself; nobody needs to see it here.
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [this] {
        window_->findChild<PopupControl*>(QStringLiteral("PopupControl_Splash"))->Close();
    });
    closer.start(1);
    EXPECT_EQ(window_->Start().Form_Load(commandLine), StartResult::Started);
    closer.stop();
    WaitUntil([this] { return Get("Cmd_Panel", 0).IsEnabled(); });
}

EditorWindow::~EditorWindow() {
    Document().ImageModified(0) = false;
    window_->close();
}

bool EditorWindow::WaitUntil(const std::function<bool()>& condition, int milliseconds) {
    return QTest::qWaitFor(condition, milliseconds);
}

QStringList EditorWindow::HistoryCaptions() {
    QStringList captions;
    for (int row = 0; row < History().Count(); ++row) {
        captions.append(History().Item(row, 0).value);
    }
    return captions;
}

int EditorWindow::ActiveRow() {
    int active = -1;
    for (int row = 0; row < History().Count(); ++row) {
        if (History().Item(row, 2).value == QStringLiteral("1")) {
            active = active == -1 ? row : -2;
        }
    }
    return std::max(active, -1);
}

void EditorWindow::Click(const char* name, int index) {
    QTest::mouseClick(&Get<Control>(name, index).Widget(), Qt::LeftButton);
    QTest::qWait(1);
}

void EditorWindow::PickHistoryRow(int row) {
    ReportList& list = History();
    const QRect place = list.visualItemRect(list.topLevelItem(row));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, place.center());
    QTest::qWait(1);
}

void EditorWindow::Open(const QString& fileName) {
    person.WillChooseFile(fileName);
    Click("Cmd_Panel", 0);
}

void EditorWindow::Save(const QString& fileName) {
    person.WillChooseFile(fileName);
    Click("Cmd_Panel", 1);
}

QString EditorWindow::MakeFile(const QString& name, const PixelArray& picture) {
    QString path = Path(name);
    Document().ImageCodec->Write(picture, path.toStdString(), QFileInfo(name).suffix().toStdString());
    return path;
}

PixelArray EditorWindow::Read(const QString& fileName) {
    PixelArray picture;
    Document().ImageCodec->Read(fileName.toStdString(), picture);
    return picture;
}

PixelArray EditorWindow::Shown() {
    return Document().WorkingPicture(0);
}

Control& EditorWindow::Find(const char* name, int index) {
    const QString single = QString::fromLatin1(name);
    for (const QString& wanted : {QStringLiteral("%1_%2").arg(single).arg(index), single}) {
        if (auto* const control = dynamic_cast<Control*>(window_->findChild<QWidget*>(wanted))) {
            return *control;
        }
    }
    throw ControlError(std::string(name) + ": there is no such control");
}

PixelArray MakeScene(int width, int height) {
    PixelArray picture(width, height);
    std::uint8_t* row = picture.WritableRows();
    for (int y = 0; y < height; ++y, row += picture.Stride()) {
        for (int x = 0; x < width; ++x) {
            const bool edge = (x / 16 + y / 16) % 3 == 0;
            row[4 * x + 0] = static_cast<std::uint8_t>(x * 255 / width);
            row[4 * x + 1] = static_cast<std::uint8_t>(edge ? 200 : y * 255 / height);
            row[4 * x + 2] = static_cast<std::uint8_t>((x + 2 * y) % 256);
            row[4 * x + 3] = 255;
        }
    }
    return picture;
}

int LargestDifference(const PixelArray& a, const PixelArray& b) {
    if (a.Width() != b.Width() || a.Height() != b.Height()) {
        return 256;
    }
    int largest = 0;
    for (int y = 0; y < a.Height(); ++y) {
        for (std::size_t i = 0; i < a.RowBytes(); ++i) {
            largest = std::max(largest, std::abs(a.Row(y)[i] - b.Row(y)[i]));
        }
    }
    return largest;
}

} // namespace pictorel
