// The editor without a window, see Editor.h.
#include "editor/Editor.h"

#include "editor/ImageCodec.h"
#include "picture/ImagingError.h"
#include "platform/CarryOn.h"

#include <utility>

namespace pictorel {

Editor::Editor(Messages& messages, codecs::CodecTable formats, std::shared_ptr<PictureDecoder> decoder)
    : Files(Document, observer_, messages),
      History(Document, Files, observer_),
      ReducedCopy(Document, Files, observer_),
      messages_(messages) {
    const auto isWorkingFile = [this](const std::string& fileName) {
        const std::string folder = Document.GetTempFolder().toStdString();
        return !folder.empty() && fileName.starts_with(folder);
    };
    Document.ImageCodec = std::make_shared<ImageCodec>(isWorkingFile, std::make_shared<WorkingFileMemory>(),
                                                       std::move(formats), std::move(decoder));
}

void Editor::SetObserver(EditorObserver* observer) {
    observer_ = observer == nullptr ? &nobody_ : observer;
}

void Editor::SetImageModified(bool modified) {
    const Command command(*this);
    Document.ImageModified(kSlot) = modified;
    observer_->DocumentChanged();
}

void Editor::EndCommand() {
    if (commands_ == 1) {
        recovery_.Update();
    }
    --commands_;
}

bool Editor::Recover(const RecoveryRecord& record) {
    const Command command(*this);
    ReducedCopy.Forget();
    std::vector<HistoryState> states;
    for (const RecoveryState& state : record.states) {
        states.push_back(state.state);
    }
    if (!History.Adopt(std::move(states), record.active)) {
        return false;
    }
    Document.PictureName = record.pictureName;
    Document.PictureFolder = record.pictureFolder;
    CarryOn([&] { ReducedCopy.UpdatePreviewImage(kSlot); }, [&] { Document.PreviewOutdated = false; },
            [&] { SetImageModified(true); });
    return true;
}

void Editor::BeginHistory() {
    const Command command(*this);
    ReducedCopy.Forget();
    CarryOn([&] { History.DeleteWorkingFiles(); },
            [&] { History.AddHistoryEntry(QStringLiteral("Open"), kSlot); },
            [&] { ReducedCopy.UpdatePreviewImage(kSlot); }, [&] { Document.PreviewOutdated = false; },
            [&] { SetImageModified(false); });
}

void Editor::ShowPreview(std::int32_t code, const Values& values, bool& done) {
    PixelArray preview = Document.PreviewPixels;
    CarryOn([&] {
        if (code >= 0 && code < kOperationCount) {
            preview = ReducedCopy.Preview(OperationTable()[static_cast<std::size_t>(code)], values);
        }
        done = true;
    });
    observer_->Progressed(3);
    if (!preview.IsEmpty()) {
        observer_->PreviewChanged(preview);
    }
}

void Editor::ApplyToPicture(PictureSlot slot, std::int32_t code, const Values& values, bool& done) {
    PixelArray& working = Document.WorkingPicture(slot);
    working = Document.ImagePixels;
    CarryOn([&] {
        if (Document.ImagePixels.IsEmpty()) {
            throw ImagingError(ImagingFailure::InvalidValue, "There is no picture.");
        }
        if (code >= 0 && code < kOperationCount) {
            const OperationRow& row = OperationTable()[static_cast<std::size_t>(code)];
            working = row.apply(Document.ImagePixels, values, Document.BackgroundColour);
        }
        done = true;
    });
    observer_->Progressed(3);
    observer_->PictureChanged(slot);
}

bool Editor::ApplyImageOperation(PictureSlot slot, std::int32_t code, bool previewMode,
                                 const Values& values) {
    const Command command(*this);
    bool done = false;
    CarryOn([&] { observer_->Progressed(2); },
            [&] {
                if (previewMode) {
                    ShowPreview(code, values, done);
                } else {
                    ApplyToPicture(slot, code, values, done);
                }
            },
            [&] {
                if (!Document.ImageModified(slot)) {
                    SetImageModified(true);
                }
            },
            [&] { observer_->Progressed(4); });
    return done;
}

bool Editor::Commit(const QString& caption, Operation operation, const Values& values,
                    const std::function<void()>& afterApplying) {
    const Command command(*this);
    const bool wasModified = Document.ImageModified(kSlot);
    ReducedCopy.Forget(); // a third full picture would be kept for it through the edit
    Document.PreviewOutdated = true;
    if (!ApplyImageOperation(kSlot, static_cast<std::int32_t>(operation), false, values)) {
        CarryOn([&] { SetImageModified(wasModified); }, [&] { SayThatItFailed(caption); });
        return false;
    }
    RefreshSize();
    if (afterApplying) {
        CarryOn(afterApplying);
    }
    return History.AddHistoryEntry(caption, kSlot);
}

void Editor::RefreshSize() {
    const std::pair before(Document.ImageWidth(kSlot), Document.ImageHeight(kSlot));
    Files.ReadImageWidth(kSlot);
    Files.ReadImageHeight(kSlot);
    if (before != std::pair(Document.ImageWidth(kSlot), Document.ImageHeight(kSlot))) {
        CarryOn([&] { observer_->SizeChanged(kSlot); });
    }
}

void Editor::SayThatItFailed(const QString& caption) {
    messages_.Show(QStringLiteral("There is not enough memory for this. The picture stays as it was."),
                   caption, MessageIcon::Exclamation);
}

void Editor::Undo() {
    const Command command(*this);
    if (History.UndoStep()) {
        ReducedCopy.UpdatePreviewImage(kSlot);
        Document.PreviewOutdated = false;
    }
}

void Editor::Redo() {
    const Command command(*this);
    if (History.RedoStep()) {
        ReducedCopy.UpdatePreviewImage(kSlot);
        Document.PreviewOutdated = false;
    }
}

} // namespace pictorel
