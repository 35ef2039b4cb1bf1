// What a person would read on a page, as text.
#include "controls/PageText.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

struct PageCase {
    const char* page;
    const char* type;
    const char* text;
};

TEST(PageText, IsTheBodyAsAPersonReadsIt) {
    for (const PageCase& c : {
             PageCase{"2.1/a/\n2.0/b/", "text/plain", "2.1/a/\r\n2.0/b/"},
             {"2.1/a/\r\n2.0/b/", "text/plain; charset=utf-8", "2.1/a/\r\n2.0/b/"},
             {"a < b & c", "text/plain", "a < b & c"},
             {"<html><head><title>No</title><style>p{}</style></head><body>2.1/a/<br>2.0/b/</body></html>",
              "text/html", "2.1/a/\r\n2.0/b/"},
             {"<p>2.1/<b>new</b>\n  thing/</p>\n<p>2.0/old/</p>", "text/html", "2.1/new thing/\r\n2.0/old/"},
             {"<pre>2.1/a  b/\n2.0/c/</pre>", "text/html", "2.1/a  b/\r\n2.0/c/"},
             {"<script>var x = '<p>9.9/evil/';</script>0<!-- 9.9/x/ -->", "text/html", "0"},
             {"a &lt; b &amp; &#233; &#x20AC; &unknown; & c", "text/html",
              "a < b & \xC3\xA9 \xE2\x82\xAC &unknown; & c"},
             {"1 < 2 <br/>3", "text/html", "1 < 2\r\n3"},
             {"<!doctype html><p>x", "", "x"},
             {"plain", "", "plain"},
             {"caf\xE9", "text/plain; charset=\"iso-8859-1\"", "caf\xC3\xA9"},
             {"caf\xE9", "text/plain", ""},
             {"ab\xC3", "text/html", ""},
             {"2.1/a/", "image/png", ""},
             {"<", "text/html", "<"},
             {"x<p", "text/html", "x"},
             {"x<!-- never ends", "text/html", "x"},
             {"&#xD800;&#0;&#99999999;", "text/html", "&#xD800;&#0;&#99999999;"},
         }) {
        EXPECT_EQ(PageText(c.page, QString::fromLatin1(c.type)).toStdString(), c.text) << c.page;
    }
}

TEST(PageText, APageOfNothingButOpeningsIsReadInNoTime) {
    QElapsedTimer timer;
    for (const char* const opening : {"<", "<!--", "<script", "<p", "&", "&#", "</"}) {
        timer.start();
        PageText("<p>" + QByteArray(opening).repeated(60000), QStringLiteral("text/html"));
        EXPECT_LT(timer.elapsed(), 1000) << opening;
    }
}

} // namespace
} // namespace pictorel
