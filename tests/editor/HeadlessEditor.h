// The editor without a window, with somebody who notes what it says.
#pragma once

#include "editor/Editor.h"
#include "editor/ImageCodec.h"
#include "editor/TemporaryFolder.h"

#include <string>
#include <vector>

namespace pictorel::test {

class NotedMessages : public Messages {
  public:
    void Show(const QString& text, const QString& /*title*/, MessageIcon /*icon*/) override {
        texts.push_back(text.toStdString());
    }
    MessageAnswer AskYesNoCancel(const QString& text, const QString& /*title*/) override {
        texts.push_back(text.toStdString());
        return answer;
    }

    MessageAnswer answer = MessageAnswer::Cancel; // to the next questions
    std::vector<std::string> texts;
};

struct HeadlessEditor {
    NotedMessages messages;
    Editor editor{messages};
    TemporaryFolder folder;

    // A file of the picture in a folder of the test's own, in the format of its extension.
    QString MakeFile(const std::string& name, const PixelArray& picture) {
        editor.Document.ImageCodec->Write(picture, folder.Path(name), name.substr(name.rfind('.') + 1));
        return QString::fromStdString(folder.Path(name));
    }

    bool Open(const QString& fileName) {
        if (!editor.Files.OpenImageFile(kSlot, fileName)) {
            return false;
        }
        editor.BeginHistory();
        return true;
    }

    const PixelArray& Shown() { return editor.Document.WorkingPicture(kSlot); }
    const History& States() const { return editor.History.States(); }
    bool Commit(Operation operation, const Values& values = {}) {
        return editor.Commit(QStringLiteral("edit"), operation, values);
    }

    PixelArray Read(const QString& fileName) {
        PixelArray picture;
        editor.Document.ImageCodec->Read(fileName.toStdString(), picture);
        return picture;
    }
};

} // namespace pictorel::test
