// The update notice, see frmUpdates.h.
#include "notices/frmUpdates.h"

#include "controls/Events.h"
#include "controls/PushButton.h"
#include "notices/WebSite.h"
#include "platform/CarryOn.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <utility>

namespace pictorel {
namespace {

constexpr int kMargin = 20;
constexpr QSize kNotes(420, 190);
constexpr QSize kButton(142, 30);
constexpr QSize kPicture(48, 48);
constexpr double kHeadlineScale = 1.25;

enum Button { RemindMeLater = 0, UpdateNow = 1, Picture = 2 };

PushButton* MakeButton(QWidget* parent, int index, const QString& caption, const QSize& size) {
    auto* const button = new PushButton(parent);
    button->setObjectName(QStringLiteral("Cmd_Msg_%1").arg(index));
    button->SetCaption(caption);
    button->setFixedSize(size);
    return button;
}

} // namespace

frmUpdates::frmUpdates(QWidget* owner, const StringTable& strings, const QString& notes, const QIcon& icon,
                       const QByteArray& sound, PlaySound& player)
    : QDialog(owner), strings_(strings), sound_(sound), player_(player) {
    setObjectName(QStringLiteral("frmUpdates"));
    setWindowTitle(QStringLiteral("Update"));

    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(14);
    column->setSizeConstraint(QLayout::SetFixedSize);

    column->addLayout(MakeHeading(strings, icon));
    auto* const text = new QPlainTextEdit(notes);
    text->setObjectName(QStringLiteral("Txt_UpdateMsg"));
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    text->setFixedSize(kNotes);
    column->addWidget(text);

    column->addLayout(MakeButtons());
}

QLayout* frmUpdates::MakeHeading(const StringTable& strings, const QIcon& icon) {
    auto* const heading = new QHBoxLayout;
    heading->setSpacing(14);
    PushButton* const picture = MakeButton(this, Picture, {}, kPicture);
    picture->SetDecorative(true);
    picture->SetImage(icon);
    heading->addWidget(picture);
    auto* const headline = new QLabel(QStringLiteral("There is a new version of ") +
                                      strings.Entry(Text::Title) + QStringLiteral(" available !"));
    headline->setObjectName(QStringLiteral("lbl_UpdateMsg"));
    headline->setTextFormat(Qt::PlainText);
    QFont font = headline->font();
    font.setPointSizeF(font.pointSizeF() * kHeadlineScale);
    font.setBold(true);
    headline->setFont(font);
    heading->addWidget(headline, 1);
    return heading;
}

QLayout* frmUpdates::MakeButtons() {
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(10);
    buttons->addStretch();
    PushButton* const later = MakeButton(this, RemindMeLater, QStringLiteral("Remind Me Later"), kButton);
    PushButton* const now = MakeButton(this, UpdateNow, QStringLiteral("Update Now"), kButton);
    buttons->addWidget(later);
    buttons->addWidget(now);
    for (const auto& [button, index] : {std::pair{later, RemindMeLater}, {now, UpdateNow}}) {
        connect(button, &PushButton::clicked, this,
                Events::Guarded([this, index = index] { Cmd_Msg_Click(index); }));
    }
    now->SetHighlighted(true); // what most people want
    now->setFocus();
    return buttons;
}

void frmUpdates::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        player_.PlayWaveBytes(sound_);
    }
}

void frmUpdates::Cmd_Msg_Click(int index) {
    if (index == UpdateNow) {
        downloadChosen_ = true;
        CarryOn([&] { OpenWebLink(kDownloadLink, strings_); });
    }
    done(index);
}

} // namespace pictorel
