// A web server on the loopback that answers as a test tells it to.
#pragma once

#include <QByteArray>
#include <QString>
#include <QTcpServer>
#include <QTimer>

#include <functional>

class QTcpSocket;

namespace pictorel {

class LocalServer {
  public:
    using Answer = std::function<void(QTcpSocket& client, const QByteArray& path)>;

    explicit LocalServer(Answer answer);

    QString Address(const QString& path = QStringLiteral("/")) const;
    int Requests() const { return requests_; }

    static QByteArray Page(const QByteArray& body, const QByteArray& type = "text/plain");
    static QByteArray Redirect(const QByteArray& target);

  private:
    void Serve(QTcpSocket& client);

    QTcpServer server_;
    Answer answer_;
    int requests_ = 0;
};

} // namespace pictorel
