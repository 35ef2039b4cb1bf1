// The hidden page loader of the window, see WebBrowser.h.
#include "controls/WebBrowser.h"

namespace pictorel {

WebBrowser::WebBrowser(QWidget* parent) : QWidget(parent), Control(static_cast<QWidget&>(*this)) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

} // namespace pictorel
