// The Tools window, see frmTools.h.
#include "notices/frmTools.h"

#include "controls/Events.h"
#include "controls/LinkLabel.h"
#include "controls/PushButton.h"
#include "notices/WebSite.h"

#include <QFrame>
#include <QLabel>
#include <QVBoxLayout>

#include <array>

namespace pictorel {
namespace {

constexpr int kTextWidth = 360;
constexpr int kMargin = 20;

struct Product {
    Text name;
    Text description;
    std::uint8_t link;
};

constexpr std::array kProducts{
    Product{Text::FirstToolName, Text::FirstToolDescription, kFirstToolLink},
    Product{Text::SecondToolName, Text::SecondToolDescription, kSecondToolLink},
};

QFrame* MakeEntry(const Product& product, const StringTable& strings) {
    auto* const entry = new QFrame;
    auto* const column = new QVBoxLayout(entry);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(3);

    auto* const name = new QLabel(strings.Entry(product.name));
    QFont bold = name->font();
    bold.setBold(true);
    name->setFont(bold);
    column->addWidget(name);

    auto* const description = new QLabel(strings.Entry(product.description));
    description->setWordWrap(true);
    description->setFixedWidth(kTextWidth);
    column->addWidget(description);

    auto* const link = new LinkLabel(QStringLiteral("<a href=\"tool\">Download</a>"));
    link->setObjectName(QStringLiteral("Lbl_Tool_%1").arg(product.link));
    link->setAccessibleName(QStringLiteral("Download ") + strings.Entry(product.name));
    QObject::connect(
        link, &QLabel::linkActivated, entry,
        Events::Guarded([&strings, number = product.link](const QString&) { OpenWebLink(number, strings); }));
    column->addWidget(link);
    return entry;
}

} // namespace

frmTools::frmTools(QWidget* owner, const StringTable& strings) : QDialog(owner) {
    setObjectName(QStringLiteral("frmTools"));
    setWindowTitle(QStringLiteral("Tools"));

    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(16);
    column->setSizeConstraint(QLayout::SetFixedSize);
    auto* const heading =
        new QLabel(QStringLiteral("More from the makers of %1").arg(strings.Entry(Text::Title)));
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.25);
    heading->setFont(font);
    column->addWidget(heading);
    for (const Product& product : kProducts) {
        column->addWidget(MakeEntry(product, strings));
    }
    auto* const close = new PushButton(nullptr);
    close->setObjectName(QStringLiteral("CmdClose"));
    close->SetCaption(QStringLiteral("Close"));
    close->setFixedSize(96, 30);
    connect(close, &PushButton::clicked, this, &QDialog::accept);
    column->addWidget(close, 0, Qt::AlignRight);
    close->setFocus();
}

} // namespace pictorel
