// The hidden page loader of the window; it shows nothing.
#pragma once

#include "controls/Control.h"

#include <QTimer>
#include <QWidget>

#include <memory>

class QNetworkAccessManager;
class QNetworkReply;

namespace pictorel {

// Loads one page at a time over HTTP or HTTPS and keeps the text of its body. It runs no scripts, fetches
// nothing that a page refers to, keeps no cookies and shows no messages. A load that fails, takes longer than
// three seconds as a whole, is larger than 256 KiB or leads elsewhere more than five times is complete with
// an empty text. The number behind a member is its number in the interface that the version check is written
// against.
class WebBrowser : public QWidget, public Control {
    Q_OBJECT

  public:
    explicit WebBrowser(QWidget* parent);
    ~WebBrowser() override;

    enum ReadyState { Uninitialized = 0, Loading = 1, Complete = 4 };

    void Navigate(const QString& address);                // 15; returns at once, ends a load under way
    ReadyState CurrentState() const { return state_; }    // 14
    const QString& BodyText() const { return bodyText_; } // 11; lines separated by CR LF
    void Stop();                                          // complete, with an empty text

  private:
    void Receive();
    void Finish();
    void EndLoad(const QString& bodyText);

    std::unique_ptr<QNetworkAccessManager> network_;
    QNetworkReply* reply_ = nullptr; // of the load under way
    QByteArray page_;
    QTimer bound_;
    QString bodyText_;
    ReadyState state_ = Uninitialized;
};

} // namespace pictorel
