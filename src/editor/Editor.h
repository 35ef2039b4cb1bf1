// The editor without a window: the open picture, its history, and the one road of every edit.
#pragma once

#include "editor/EditHistory.h"
#include "editor/EditorObserver.h"
#include "editor/Image_Mods.h"
#include "editor/OperationTable.h"
#include "editor/PictureFiles.h"
#include "editor/RecoveryKeeper.h"
#include "editor/ReducedCopy.h"
#include "editor/decoding/PictureDecoder.h"
#include "picture/codecs/Codec.h"
#include "platform/Messages.h"

#include <QString>

#include <functional>
#include <memory>

namespace pictorel {

class Editor {
  public:
    // With a decoder, files from strangers are read through it alone, see ImageCodec.
    explicit Editor(Messages& messages, codecs::CodecTable formats = codecs::CodecTable(),
                    std::shared_ptr<PictureDecoder> decoder = nullptr);
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    // Who is told what happens; nobody after null. The observer outlives the editor or is taken back.
    void SetObserver(EditorObserver* observer);

    Image_Mods Document;
    PictureFiles Files;
    EditHistory History;
    pictorel::ReducedCopy ReducedCopy;

    // While one stands, a command runs: what comes in meanwhile (a timer, a drop, a close) has to wait for
    // its end. Commands nest.
    class Command {
      public:
        explicit Command(Editor& editor) : editor_(editor) { ++editor_.commands_; }
        ~Command() { editor_.EndCommand(); }
        Command(const Command&) = delete;
        Command& operator=(const Command&) = delete;

      private:
        Editor& editor_;
    };
    bool IsBusy() const { return commands_ > 0; }

    // After LoadImageFile brought in another picture: a history of one state, "Open", and no changes.
    void BeginHistory();

    // The single entry for every change of pixels. Applies operation `code` to the last committed picture, or
    // to the reduced copy in preview mode, and has the result shown; calls never pile up. A step that fails
    // is skipped: the unchanged picture is then shown again. A code outside 0..35 changes no pixels. Sets the
    // changed mark in either mode. False where the operation failed.
    bool ApplyImageOperation(PictureSlot slot, std::int32_t code, bool previewMode, const Values& values);

    // The one road of every edit: applies the operation, marks the reduced copy outdated and adds the state.
    // Where the operation fails it says so, and nothing is changed. False where the edit or its state is not
    // there. `afterApplying` shows what has to be seen before the working file is written.
    bool Commit(const QString& caption, Operation operation, const Values& values,
                const std::function<void()>& afterApplying = {});

    // Undo and Redo, or a picked row; and the reduced copy of the picture that they bring back.
    void Undo();
    void Redo();

    void SetImageModified(bool modified);

    // Brings back what a dead editor left: its rows, the active one on the screen, the picture changed.
    // False, after a message, where no row can be read; whatever was open then stays.
    bool Recover(const RecoveryRecord& record);

    // The person has decided: nothing is kept for another start.
    void ForgetChanges() { recovery_.Forget(); }

  private:
    void EndCommand();
    void ShowPreview(std::int32_t code, const Values& values, bool& done);
    void ApplyToPicture(PictureSlot slot, std::int32_t code, const Values& values, bool& done);
    void RefreshSize();
    void SayThatItFailed(const QString& caption);

    Messages& messages_;
    RecoveryKeeper recovery_{Document, History};
    EditorObserver nobody_;
    EditorObserver* observer_ = &nobody_;
    int commands_ = 0;
};

} // namespace pictorel
