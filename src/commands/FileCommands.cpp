// The tool bar's commands, see FileCommands.h.
#include "commands/FileCommands.h"

#include "controls/FocusKeeper.h"
#include "editor/SaveFormats.h"
#include "platform/CarryOn.h"
#include "platform/Texts.h"

#include <array>
#include <utility>

namespace pictorel {
namespace {

enum ToolBarButton { kOpen, kSave, kUndo, kRedo, kPrint, kScan, kTools, kAbout };

constexpr unsigned kOpenFlags = 0x1204; // file must exist, several may be selected, no read-only box
constexpr unsigned kSaveFlags = 0x802;  // path must exist, ask before overwriting
constexpr int kMaximumNameLength = 32000;

void PrepareDialog(CommonDialog& dialog, const QString& filter, unsigned flags, const QString& folder) {
    dialog.FilterIndex = 1;
    dialog.Filter = filter;
    dialog.Flags = flags;
    dialog.MaxFileSize = kMaximumNameLength;
    dialog.CancelError = false;
    dialog.FileName.clear();
    dialog.InitDir = folder;
}

// The first entry finds today's formats too, and one of their own follows the others.
QString OpenFilter() {
    QString filter = FromView(kOpenFilter);
    const qsizetype endOfFirst = filter.indexOf(u'|', filter.indexOf(u'|') + 1);
    filter.insert(endOfFirst, QStringLiteral(";") + FromView(kModernPatterns));
    return filter + FromView(kModernFilter);
}

} // namespace

FileCommands::FileCommands(Editor& editor, FileCommandControls controls, FileCommandServices services,
                           Messages& messages)
    : editor_(editor), controls_(std::move(controls)), services_(std::move(services)), messages_(messages) {
    for (int i = 0; i < controls_.Cmd_Panel.Count(); ++i) {
        events_.On(controls_.Cmd_Panel(i), &PushButton::clicked, [this, i] { Cmd_Panel_Click(i); });
    }
}

// Print and Scan are capabilities of their own.
void FileCommands::Cmd_Panel_Click(int index) {
    struct Row {
        int index;
        void (*run)(FileCommands& self);
    };
    static constexpr std::array<Row, 6> kCommands{{
        {kOpen, [](FileCommands& self) { self.Open(); }},
        {kSave, [](FileCommands& self) { self.Save(); }},
        {kUndo, [](FileCommands& self) { self.Step(&Editor::Undo); }},
        {kRedo, [](FileCommands& self) { self.Step(&Editor::Redo); }},
        {kTools, [](FileCommands& self) { self.services_.showTools(); }},
        {kAbout, [](FileCommands& self) { self.services_.showAbout(); }},
    }};
    for (const Row& row : kCommands) {
        if (row.index == index) {
            row.run(*this);
        }
    }
}

bool FileCommands::OrShowError(const std::function<bool()>& routine) {
    try {
        return routine();
    } catch (const std::exception& error) {
        messages_.Show(QString::fromUtf8(error.what()), services_.applicationTitle, MessageIcon::Critical);
        return false;
    }
}

bool FileCommands::OpenImageDialog() {
    return OrShowError([this] {
        CommonDialog& dialog = controls_.CDialog_Open;
        PrepareDialog(dialog, OpenFilter(), kOpenFlags, editor_.Document.OpenDialogFolder);
        dialog.ShowOpen();
        const Editor::Command command(editor_);
        return !dialog.FileName.isEmpty() && editor_.Files.OpenImageFile(kSlot, dialog.FileName);
    });
}

bool FileCommands::SaveImageDialog() {
    return OrShowError([this] {
        CommonDialog& dialog = controls_.CDialog_Open;
        PrepareDialog(dialog, FromView(kSaveFilter), kSaveFlags, editor_.Document.SaveDialogFolder);
        dialog.ShowSave();
        const Editor::Command command(editor_);
        return !dialog.FileName.isEmpty() && editor_.Files.SaveImageFileAs(kSlot, dialog.FileName);
    });
}

bool FileCommands::OfferToSaveChanges() {
    if (!editor_.Document.ImageModified(kSlot)) {
        return true;
    }
    switch (messages_.AskYesNoCancel(QStringLiteral("Save Changes ?"), QStringLiteral("Attention!"))) {
        case MessageAnswer::Yes:
            if (!SaveImageDialog()) {
                return false;
            }
            editor_.SetImageModified(false);
            return true;
        case MessageAnswer::No:
            return true;
        case MessageAnswer::Cancel:
            break;
    }
    return false;
}

void FileCommands::Open() {
    OpenBy([this] { return OpenImageDialog(); });
}

void FileCommands::OpenArrival(const PictureArrival& arrival) {
    if (const QString reason = WhyUnreadable(arrival.fileName); !reason.isEmpty()) {
        messages_.Show(reason, QStringLiteral("Error"), MessageIcon::Critical);
        return;
    }
    OpenBy([&] {
        const Editor::Command command(editor_);
        return editor_.Files.OpenImageFile(kSlot, arrival.fileName);
    });
    if (const QString left = WhatWasLeft(arrival); !left.isEmpty()) {
        messages_.Show(left, services_.applicationTitle, MessageIcon::Exclamation);
    }
}

void FileCommands::OpenBy(const std::function<bool()>& load) {
    CarryOn([&] { services_.endAttention(); });
    bool goOn = false;
    CarryOn([&] { goOn = OfferToSaveChanges(); });
    if (!goOn) {
        return;
    }
    bool opened = false;
    CarryOn([&] { opened = load(); });
    if (opened) {
        ShowAsFreshlyOpened();
    }
}

bool FileCommands::Recover(const RecoveryRecord& record) {
    CarryOn([&] { services_.endAttention(); });
    bool recovered = false;
    CarryOn([&] {
        if (OfferToSaveChanges()) {
            const Editor::Command command(editor_);
            recovered = editor_.Recover(record);
        }
    });
    if (recovered) {
        CarryOn([&] { services_.resetPanels(); },   //
                [&] { services_.enableEditing(); }, //
                [&] { services_.settleUndoRedo(); });
    }
    return recovered;
}

void FileCommands::ShowAsFreshlyOpened() {
    const Editor::Command command(editor_);
    CarryOn([&] { services_.resetPanels(); },   //
            [&] { services_.enableEditing(); }, //
            [&] { editor_.BeginHistory(); },    //
            [&] { services_.settleUndoRedo(); });
}

void FileCommands::Save() {
    CarryOn([&] {
        if (SaveImageDialog()) {
            editor_.SetImageModified(false);
        }
    });
}

void FileCommands::Step(void (Editor::*step)()) {
    const FocusKeeper focus(controls_.Cmd_Panel(kUndo));
    CarryOn([&] { (editor_.*step)(); }, [&] { services_.settleUndoRedo(); });
}

} // namespace pictorel
