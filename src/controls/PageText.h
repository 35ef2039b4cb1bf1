// The text of a page, as a person reads it in a browser.
#pragma once

#include <QByteArray>
#include <QString>

namespace pictorel {

// The text of the page's body, lines separated by carriage return and line feed. `contentType` is the media
// type that the server named, with its character set where it named one; without a type the content decides
// between HTML and plain text, without a character set the page's own declaration, else UTF-8. Empty for what
// is no text: another media type, or bytes that the character set does not allow. Linear in the page's size.
QString PageText(const QByteArray& page, const QString& contentType);

} // namespace pictorel
