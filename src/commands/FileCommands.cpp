// The tool bar's commands, see FileCommands.h.
#include "commands/FileCommands.h"

#include "platform/CarryOn.h"

#include <array>
#include <utility>

namespace pictorel {
namespace {

constexpr PictureSlot kSlot = 0;
constexpr int kUndoButton = 2;
constexpr int kRedoButton = 3;
constexpr std::array kSliderGroups{1, 2, 3};

} // namespace

FileCommands::FileCommands(Image_Mods& document, PictureFiles& files, EditHistory& history,
                           FileCommandControls controls, EditorServices& services, Messages& messages)
    : document_(document),
      files_(files),
      history_(history),
      controls_(std::move(controls)),
      services_(services),
      messages_(messages) {
    for (int i = 0; i < controls_.Cmd_Panel.Count(); ++i) {
        events_.On(controls_.Cmd_Panel(i), &PushButton::clicked, [this, i] { Cmd_Panel_Click(i); });
    }
}

void FileCommands::Cmd_Panel_Click(int index) {
    using Command = void (FileCommands::*)();
    struct Row {
        int index;
        Command command;
    };
    static constexpr std::array<Row, 4> kCommands{{
        {0, &FileCommands::Open},
        {1, &FileCommands::Save},
        {2, &FileCommands::Undo},
        {3, &FileCommands::Redo},
    }};
    constexpr int kTools = 6;
    constexpr int kAbout = 7;
    for (const Row& row : kCommands) {
        if (row.index == index) {
            (this->*row.command)();
        }
    }
    if (index == kTools) {
        services_.ShowTools();
    }
    if (index == kAbout) {
        services_.ShowAbout();
    }
}

bool FileCommands::OfferToSaveChanges() {
    if (!document_.ImageModified(kSlot)) {
        return true;
    }
    switch (messages_.AskYesNoCancel(QStringLiteral("Save Changes ?"), QStringLiteral("Attention!"))) {
        case MessageAnswer::Yes:
            return files_.SaveImageDialog(kSlot, controls_.CDialog_Open);
        case MessageAnswer::No:
            return true;
        case MessageAnswer::Cancel:
            break;
    }
    return false;
}

void FileCommands::Open() {
    OpenBy([this] { return files_.OpenImageDialog(kSlot, controls_.CDialog_Open); });
}

void FileCommands::OpenFile(const QString& fileName) {
    OpenBy([&] { return files_.OpenImageFile(kSlot, fileName); });
}

void FileCommands::OpenBy(const std::function<bool()>& load) {
    CarryOn([&] { services_.EndAttention(); });
    bool goOn = false;
    CarryOn([&] { goOn = OfferToSaveChanges(); });
    if (!goOn) {
        return;
    }
    bool opened = false;
    CarryOn([&] { opened = load(); });
    if (!opened) {
        return;
    }
    ShowAsFreshlyOpened();
    CarryOn([&] { services_.CheckOriginalSize(); }, [&] { services_.ResetResizePanel(); });
}

void FileCommands::ShowAsFreshlyOpened() {
    CarryOn([&] { services_.ResetResizePanel(); });
    for (const int group : kSliderGroups) {
        CarryOn([&] { services_.ResetSliderGroup(group); });
    }
    CarryOn([&] { services_.SetEditingEnabled(true); }, //
            [&] { history_.DeleteWorkingFiles(controls_.HistoryList); },
            [&] { history_.AddHistoryEntry(QStringLiteral("Open"), kSlot, controls_.HistoryList); },
            [&] { UpdateUndoRedo(); }, //
            [&] { services_.UpdatePreviewImage(kSlot); }, [&] { document_.ImageModified(kSlot) = false; });
}

void FileCommands::Save() {
    CarryOn([&] {
        if (files_.SaveImageDialog(kSlot, controls_.CDialog_Open)) {
            document_.ImageModified(kSlot) = false;
        }
    });
}

void FileCommands::Undo() {
    CarryOn([&] { history_.UndoStep(controls_.HistoryList); }, //
            [&] { UpdateUndoRedo(); }, [&] { services_.UpdatePreviewImage(kSlot); });
}

void FileCommands::Redo() {
    CarryOn([&] { history_.RedoStep(controls_.HistoryList); }, //
            [&] { UpdateUndoRedo(); }, [&] { services_.UpdatePreviewImage(kSlot); });
}

void FileCommands::UpdateUndoRedo() {
    EditHistory::UpdateUndoRedoButtons(controls_.Cmd_Panel(kUndoButton), controls_.Cmd_Panel(kRedoButton),
                                       controls_.HistoryList);
}

} // namespace pictorel
