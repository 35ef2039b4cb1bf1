// The About window, see frmAbout.h.
#include "notices/frmAbout.h"

#include "controls/Events.h"
#include "controls/LinkLabel.h"
#include "controls/PushButton.h"
#include "notices/WebSite.h"

#include <QLabel>
#include <QPixmap>
#include <QVBoxLayout>

namespace pictorel {
namespace {

constexpr int kTextWidth = 372;
constexpr int kMargin = 24;
constexpr double kTitleScale = 1.5;

QLabel* AddText(QVBoxLayout& column, const QString& name, const QString& text) {
    auto* const label = new QLabel(text);
    label->setObjectName(name);
    label->setWordWrap(true);
    label->setFixedWidth(kTextWidth);
    column.addWidget(label);
    return label;
}

QLabel* Picture(const QString& name, const QString& fileName) {
    auto* const label = new QLabel;
    label->setObjectName(name);
    label->setPixmap(QPixmap(fileName));
    return label;
}

} // namespace

frmAbout::frmAbout(QWidget* owner, const StringTable& strings, const QString& version,
                   const QString& pictures)
    : QDialog(owner) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About"));

    auto* const outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSizeConstraint(QLayout::SetFixedSize);
    outer->addWidget(Picture(QStringLiteral("Image1"), pictures + QStringLiteral("about_banner.png")));

    auto* const texts = new QVBoxLayout;
    texts->setContentsMargins(kMargin, kMargin / 2, kMargin, kMargin);
    texts->setSpacing(8);
    outer->addLayout(texts);

    auto* const heading = new QHBoxLayout;
    heading->setSpacing(16);
    heading->addWidget(Picture(QStringLiteral("Image2"), pictures + QStringLiteral("about_mark.png")));
    auto* const names = new QVBoxLayout;
    names->setSpacing(2);
    heading->addLayout(names, 1);
    texts->addLayout(heading);

    auto* const product = new QLabel(strings.Entry(Text::Title));
    product->setObjectName(QStringLiteral("lbl_ProductName"));
    QFont titleFont = product->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * kTitleScale);
    titleFont.setBold(true);
    product->setFont(titleFont);
    names->addStretch();
    names->addWidget(product);
    auto* const versionLabel = new QLabel(QStringLiteral("Version ") + version);
    versionLabel->setObjectName(QStringLiteral("lblVersion"));
    names->addWidget(versionLabel);
    names->addStretch();

    AddText(*texts, QStringLiteral("Label1"), QStringLiteral("Thank you for using Pictorel !"));
    auto* const site = new LinkLabel(
        QStringLiteral("<a href=\"site\">%1</a>").arg(strings.Entry(Text::SiteAddressShown).toHtmlEscaped()));
    site->setObjectName(QStringLiteral("Lbl_SiteAddress"));
    texts->addWidget(site, 0, Qt::AlignLeft);
    site->setAccessibleName(strings.Entry(Text::SiteAddressShown));
    connect(site, &QLabel::linkActivated, this,
            Events::Guarded([&strings](const QString&) { OpenWebLink(kSiteLink, strings); }));
    AddText(*texts, QStringLiteral("lblDisclaimer"), strings.Entry(Text::Disclaimer));

    auto* const close = new PushButton(nullptr);
    close->setObjectName(QStringLiteral("CmdOK"));
    close->SetCaption(QStringLiteral("Close"));
    close->setFixedSize(96, 30);
    connect(close, &PushButton::clicked, this, &QDialog::accept);
    texts->addSpacing(8);
    texts->addWidget(close, 0, Qt::AlignRight);
    close->setFocus();
}

} // namespace pictorel
