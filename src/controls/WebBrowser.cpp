// The hidden page loader of the window, see WebBrowser.h.
#include "controls/WebBrowser.h"

#include "controls/PageText.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

#include <utility>

namespace pictorel {
namespace {

constexpr int kLongestLoad = 3000; // milliseconds, from the first look-up to the last byte
constexpr qint64 kLargestPage = 256 * 1024;
constexpr int kMostRedirects = 5;

QNetworkRequest RequestFor(const QUrl& address) {
    QNetworkRequest request(address);
    request.setMaximumRedirectsAllowed(kMostRedirects);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QCoreApplication::applicationName() + u'/' + QCoreApplication::applicationVersion());
    return request;
}

bool IsWebAddress(const QUrl& address) {
    return address.isValid() && !address.host().isEmpty() &&
           (address.scheme() == u"http" || address.scheme() == u"https");
}

} // namespace

WebBrowser::WebBrowser(QWidget* parent) : QWidget(parent), Control(static_cast<QWidget&>(*this)) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    bound_.setSingleShot(true);
    bound_.setTimerType(Qt::PreciseTimer);
    connect(&bound_, &QTimer::timeout, this, &WebBrowser::Stop);
}

WebBrowser::~WebBrowser() {
    Stop();
}

void WebBrowser::Navigate(const QString& address) {
    Stop();
    state_ = Loading;
    const QUrl url(address);
    if (!IsWebAddress(url)) {
        EndLoad({});
        return;
    }
    if (network_ == nullptr) {
        network_ = std::make_unique<QNetworkAccessManager>(); // costs too much for a start without a check
    }
    bound_.start(kLongestLoad);
    page_.clear();
    reply_ = network_->get(RequestFor(url));
    reply_->setReadBufferSize(kLargestPage + 1);
    connect(reply_, &QNetworkReply::readyRead, this, &WebBrowser::Receive);
    connect(reply_, &QNetworkReply::finished, this, &WebBrowser::Finish);
}

void WebBrowser::Stop() {
    EndLoad({});
}

void WebBrowser::Receive() {
    page_ += reply_->readAll();
    if (page_.size() > kLargestPage) {
        Stop();
    }
}

void WebBrowser::Finish() {
    Receive();
    if (reply_ == nullptr) {
        return; // it was too large
    }
    const bool whole = reply_->error() == QNetworkReply::NoError;
    EndLoad(whole ? PageText(page_, reply_->header(QNetworkRequest::ContentTypeHeader).toString())
                  : QString());
}

void WebBrowser::EndLoad(const QString& bodyText) {
    bound_.stop();
    if (QNetworkReply* const reply = std::exchange(reply_, nullptr); reply != nullptr) {
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
    page_.clear();
    bodyText_ = bodyText;
    state_ = Complete;
}

} // namespace pictorel
