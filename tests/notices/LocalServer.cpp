// A web server for tests, see LocalServer.h.
#include "notices/LocalServer.h"

#include <QTcpSocket>

#include <utility>

namespace pictorel {

LocalServer::LocalServer(Answer answer) : answer_(std::move(answer)) {
    server_.listen(QHostAddress::LocalHost);
    QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] {
        QTcpSocket* const client = server_.nextPendingConnection();
        QObject::connect(client, &QTcpSocket::readyRead, client, [this, client] { Serve(*client); });
    });
}

QString LocalServer::Address(const QString& path) const {
    return QStringLiteral("http://127.0.0.1:%1%2").arg(server_.serverPort()).arg(path);
}

QByteArray LocalServer::Page(const QByteArray& body, const QByteArray& type) {
    return "HTTP/1.1 200 OK\r\nContent-Type: " + type +
           "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
}

QByteArray LocalServer::Redirect(const QByteArray& target) {
    return "HTTP/1.1 302 Found\r\nLocation: " + target + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
}

void LocalServer::Serve(QTcpSocket& client) {
    const QByteArray request = client.readAll();
    if (request.startsWith("GET ")) {
        ++requests_;
        answer_(client, request.split(' ').at(1));
    }
}

} // namespace pictorel
