// The look of the window, see SkinFramework.h.
#include "controls/SkinFramework.h"

#include "controls/Control.h"

#include <QApplication>
#include <QFile>
#include <QMap>
#include <QMetaEnum>
#include <QToolTip>
#include <QWidget>

#include <algorithm>

namespace pictorel {
namespace {

using Colours = QMap<QString, QColor>;

struct SkinText {
    Colours colours;
    QString style;
    bool hasScheme = false;
};

SkinText ReadSections(const QString& text, const QString& scheme) {
    SkinText skin;
    QString section;
    const auto lines = text.split(u'\n');
    for (const QString& line : lines) {
        const QString trimmed = line.trimmed();
        if (trimmed.startsWith(u'[') && trimmed.endsWith(u']') && section != QStringLiteral("style")) {
            section = trimmed.mid(1, trimmed.size() - 2);
            skin.hasScheme = skin.hasScheme || section == scheme;
        } else if (section == QStringLiteral("style")) {
            skin.style += line + u'\n';
        } else if (section == scheme && !trimmed.isEmpty() && !trimmed.startsWith(u';')) {
            const auto equals = trimmed.indexOf(u'=');
            const QColor colour(trimmed.mid(equals + 1).trimmed());
            if (equals < 1 || !colour.isValid()) {
                throw ControlError("The skin file has a bad line: " + trimmed.toStdString());
            }
            skin.colours[trimmed.left(equals).trimmed()] = colour;
        }
    }
    return skin;
}

QPalette PaletteOf(const Colours& colours) {
    QPalette palette;
    const QMetaEnum roles = QMetaEnum::fromType<QPalette::ColorRole>();
    const auto disabledPrefix = QStringLiteral("Disabled.");
    // General colours first: setting a role for all states would undo its disabled one.
    for (const bool disabled : {false, true}) {
        for (auto colour = colours.begin(); colour != colours.end(); ++colour) {
            if (colour.key().startsWith(disabledPrefix) != disabled) {
                continue;
            }
            const QString name = disabled ? colour.key().mid(disabledPrefix.size()) : colour.key();
            bool known = false;
            const int role = roles.keyToValue(name.toLatin1().constData(), &known);
            if (known && disabled) {
                palette.setColor(QPalette::Disabled, static_cast<QPalette::ColorRole>(role), colour.value());
            } else if (known) {
                palette.setColor(static_cast<QPalette::ColorRole>(role), colour.value());
            }
        }
    }
    return palette;
}

QString FillIn(QString style, const Colours& colours) {
    // Longer names first, so that "@MidlightText" is not taken for "@Mid".
    QStringList names = colours.keys();
    std::sort(names.begin(), names.end(),
              [](const QString& a, const QString& b) { return a.size() > b.size(); });
    for (const QString& name : names) {
        style.replace(u'@' + name, colours[name].name());
    }
    return style;
}

} // namespace

void SkinFramework::LoadSkin(const QString& fileName, const QString& scheme) {
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        throw ControlError("The skin file " + fileName.toStdString() + " cannot be loaded.");
    }
    const SkinText skin = ReadSections(QString::fromUtf8(file.readAll()), scheme);
    if (!skin.hasScheme) {
        throw ControlError("The skin file " + fileName.toStdString() + " has no colour scheme " +
                           scheme.toStdString() + ".");
    }
    palette_ = PaletteOf(skin.colours);
    styleSheet_ = FillIn(skin.style, skin.colours);
}

void SkinFramework::ApplyWindow(QWidget& window) {
    window.setPalette(palette_);
    window.setStyleSheet(styleSheet_);
}

void SkinFramework::SetApplyOptions(unsigned options) {
    options_ = options;
    if ((options_ & kAllWindows) != 0) {
        QApplication::setPalette(palette_);
        QToolTip::setPalette(palette_);
        qApp->setStyleSheet(styleSheet_);
    }
}

} // namespace pictorel
