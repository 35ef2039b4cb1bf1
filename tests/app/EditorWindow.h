// The editor as the tests drive it: the real window, started as the process starts it.
#pragma once

#include "app/Person.h"
#include "app/frmMain.h"

#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace pictorel {

class EditorWindow {
  public:
    // Started with the file on the command line, where one is given. `prepare` gives the person the answers
    // to what the start asks.
    explicit EditorWindow(const CommandLine& commandLine = {},
                          const std::function<void(Person& person)>& prepare = {});
    ~EditorWindow();

    Person person;

    frmMain& Window() { return *window_; }
    Image_Mods& Document() { return window_->Document(); }

    PictureView& View() { return Get<PictureViewControl>("ImageView"); }

    // The control of this name, or element of the control array.
    template <typename T = PushButton>
    T& Get(const char* name, int index = 0) {
        return dynamic_cast<T&>(Find(name, index));
    }
    ReportList& History() { return Get<ReportList>("HistoryList"); }
    QStringList HistoryCaptions();
    int ActiveRow(); // -1 where none or several are active

    void Click(const char* name, int index = 0); // with the mouse
    void PickHistoryRow(int row);                // with the mouse

    // Runs the Open or Save command with this file name. What happened is in the messages and the document.
    void Open(const QString& fileName);
    void Save(const QString& fileName);

    // Waits until the condition holds; false after `milliseconds`.
    bool WaitUntil(const std::function<bool()>& condition, int milliseconds = 5000);

    // A file in a folder of this test, made from the picture in the extension's format.
    QString MakeFile(const QString& name, const PixelArray& picture);
    QString Path(const QString& name) const { return folder_.filePath(name); }
    QString WorkingFile(const QString& name) { return Document().GetTempFolder() + name; }
    PixelArray Read(const QString& fileName); // empty where it is no picture

    PixelArray Shown(); // the working picture

  private:
    Control& Find(const char* name, int index);

    QTemporaryDir folder_;
    std::unique_ptr<frmMain> window_;
};

// A picture of smooth colours with some edges, opaque.
PixelArray MakeScene(int width, int height);

// The largest difference of any component of any pixel; 256 where the sizes differ.
int LargestDifference(const PixelArray& a, const PixelArray& b);

} // namespace pictorel
