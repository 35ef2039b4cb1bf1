// Reads the text out of a page, see PageText.h.
#include "controls/PageText.h"

#include <QStringConverter>
#include <QStringView>

#include <algorithm>
#include <array>

namespace pictorel {
namespace {

struct NamedCharacter {
    QLatin1String name;
    char16_t character;
};

// The references that texts written by hand use; others stay as they are written.
constexpr std::array kCharacters{
    NamedCharacter{QLatin1String("amp"), u'&'},        NamedCharacter{QLatin1String("lt"), u'<'},
    NamedCharacter{QLatin1String("gt"), u'>'},         NamedCharacter{QLatin1String("quot"), u'"'},
    NamedCharacter{QLatin1String("apos"), u'\''},      NamedCharacter{QLatin1String("nbsp"), u' '},
    NamedCharacter{QLatin1String("sol"), u'/'},        NamedCharacter{QLatin1String("ndash"), u'\u2013'},
    NamedCharacter{QLatin1String("mdash"), u'\u2014'}, NamedCharacter{QLatin1String("hellip"), u'\u2026'},
};

// Elements whose content is no text of the page.
constexpr std::array kHiddenElements{QLatin1String("script"), QLatin1String("style"), QLatin1String("title"),
                                     QLatin1String("template"), QLatin1String("noscript")};

// Elements that stand within a line; every other one begins and ends a line.
constexpr std::array kInlineElements{
    QLatin1String("a"),     QLatin1String("abbr"), QLatin1String("b"),      QLatin1String("code"),
    QLatin1String("em"),    QLatin1String("font"), QLatin1String("i"),      QLatin1String("img"),
    QLatin1String("kbd"),   QLatin1String("mark"), QLatin1String("q"),      QLatin1String("s"),
    QLatin1String("small"), QLatin1String("span"), QLatin1String("strong"), QLatin1String("sub"),
    QLatin1String("sup"),   QLatin1String("td"),   QLatin1String("th"),     QLatin1String("time"),
    QLatin1String("tt"),    QLatin1String("u"),    QLatin1String("var"),    QLatin1String("wbr"),
};

template <typename Names>
bool IsOneOf(const Names& names, QStringView name) {
    return std::any_of(names.begin(), names.end(), [&](QLatin1String one) { return name == one; });
}

class BodyReader {
  public:
    explicit BodyReader(const QString& page) : page_(page) {}

    QString Read() {
        while (at_ < page_.size()) {
            const QChar next = page_[at_];
            if (next == u'<') {
                ReadMarkup();
            } else if (next == u'&') {
                ReadReference();
            } else {
                AddCharacter(next);
                ++at_;
            }
        }
        while (text_.endsWith(u'\n')) {
            text_.chop(1);
        }
        return text_;
    }

  private:
    // Moves behind the next `end`. Where the page has none, nothing that begins like this ends any more: the
    // rest is left out, so that a page of openings without ends is still read once.
    void SkipPast(const QString& end) {
        const auto found = page_.indexOf(end, at_, Qt::CaseInsensitive);
        at_ = found < 0 ? page_.size() : found + end.size();
    }

    void ReadMarkup() {
        if (QStringView(page_).mid(at_).startsWith(u"<!--")) {
            SkipPast(QStringLiteral("-->"));
            return;
        }
        const auto begin = at_ + 1;
        const bool closes = begin < page_.size() && page_[begin] == u'/';
        auto end = begin + (closes ? 1 : 0);
        const auto nameBegin = end;
        while (end < page_.size() && page_[end].isLetterOrNumber()) {
            ++end;
        }
        const QString name = page_.mid(nameBegin, end - nameBegin).toLower();
        if (name.isEmpty() && page_.mid(begin, 1) != QStringLiteral("!")) { // "a < b" is text
            AddCharacter(u'<');
            ++at_;
            return;
        }
        at_ = end;
        SkipPast(QStringLiteral(">"));
        if (!closes && IsOneOf(kHiddenElements, name)) {
            SkipPast(QStringLiteral("</") + name);
            SkipPast(QStringLiteral(">"));
        } else {
            ReadElement(name, closes);
        }
    }

    void ReadElement(const QString& name, bool closes) {
        if (name == u"pre") {
            asWritten_ = !closes;
        }
        if (IsOneOf(kInlineElements, name)) {
            blankWaits_ = blankWaits_ || name == u"td" || name == u"th";
        } else if (name == u"br" || (!text_.isEmpty() && !text_.endsWith(u'\n'))) {
            text_ += u'\n';
            blankWaits_ = false;
        }
    }

    void ReadReference() {
        constexpr qsizetype kLongest = 12;
        const QStringView rest = QStringView(page_).mid(at_ + 1, kLongest);
        const auto length = rest.indexOf(u';');
        const QString character = length > 0 ? Character(rest.left(length)) : QString();
        if (character.isEmpty()) {
            AddCharacter(u'&');
            ++at_;
            return;
        }
        for (const QChar part : character) {
            AddCharacter(part);
        }
        at_ += length + 2;
    }

    static QString Character(QStringView name) {
        if (name.startsWith(u'#')) {
            const bool hexadecimal = name.mid(1, 1).compare(u"x", Qt::CaseInsensitive) == 0;
            bool isNumber = false;
            const char32_t code =
                name.mid(hexadecimal ? 2 : 1).toString().toUInt(&isNumber, hexadecimal ? 16 : 10);
            const bool valid = isNumber && code > 0 && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
            return valid ? QString::fromUcs4(&code, 1) : QString();
        }
        const auto* const found = std::find_if(kCharacters.begin(), kCharacters.end(),
                                               [&](const NamedCharacter& row) { return name == row.name; });
        return found == kCharacters.end() ? QString() : QString(QChar(found->character));
    }

    // Runs of blanks count as one, those at the ends of a line as none, but for text that is shown as
    // written.
    void AddCharacter(QChar character) {
        if (character.isSpace() && !asWritten_) {
            blankWaits_ = true;
            return;
        }
        if (blankWaits_ && !text_.isEmpty() && !text_.endsWith(u'\n')) {
            text_ += u' ';
        }
        blankWaits_ = false;
        text_ += character;
    }

    const QString& page_;
    qsizetype at_ = 0;
    QString text_;
    bool blankWaits_ = false;
    bool asWritten_ = false;
};

QStringConverter::Encoding EncodingOf(const QByteArray& page, const QString& contentType, bool isHtml) {
    const QString parameter = QStringLiteral("charset=");
    const auto at = contentType.indexOf(parameter, 0, Qt::CaseInsensitive);
    if (at >= 0) {
        const QString name =
            contentType.mid(at + parameter.size()).section(u';', 0, 0).remove(u'"').trimmed();
        const auto known = QStringConverter::encodingForName(name.toLatin1().constData());
        return known.value_or(QStringConverter::Utf8);
    }
    const auto declared = isHtml ? QStringConverter::encodingForHtml(page) : QStringConverter::Utf8;
    return declared.value_or(QStringConverter::Utf8);
}

} // namespace

QString PageText(const QByteArray& page, const QString& contentType) {
    const QString type = contentType.section(u';', 0, 0).trimmed().toLower();
    const bool looksLikeHtml = page.left(512).trimmed().startsWith('<');
    const bool isHtml =
        type == u"text/html" || type == u"application/xhtml+xml" || (type.isEmpty() && looksLikeHtml);
    if (!isHtml && !type.isEmpty() && !type.startsWith(u"text/")) {
        return {};
    }
    QStringDecoder decoder(EncodingOf(page, contentType, isHtml), QStringConverter::Flag::Stateless);
    QString text = decoder(page);
    if (decoder.hasError() || text.contains(QChar(u'\0'))) {
        return {};
    }
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text = isHtml ? BodyReader(text).Read() : text;
    return text.replace(u'\n', QStringLiteral("\r\n"));
}

} // namespace pictorel
