// The single-instance socket: arbitrary bytes to a primary, which must keep serving.

#include "fuzzsupport.h"
#include "singleapp/localpeer_p.h"

#include <lumo/singleapplication.h>

#include <QLocalSocket>
#include <QtEndian>

namespace
{
QByteArray frame(const QByteArray &payload)
{
    uchar header[4];
    qToBigEndian<quint32>(quint32(payload.size()), header);
    return QByteArray(reinterpret_cast<const char *>(header), 4) + payload;
}

// Writes @p bytes as one client, in pieces of @p piece bytes, and waits until the primary hangs up.
void send(const QString &path, const QByteArray &bytes, int piece, bool abandon)
{
    QLocalSocket socket;
    socket.connectToServer(path);
    fuzzsupport::check(socket.waitForConnected(2000), "the primary does not accept connections");
    for (qsizetype at = 0; at < bytes.size(); at += piece) {
        socket.write(bytes.mid(at, piece));
        socket.flush();
        QCoreApplication::processEvents();
    }
    if (abandon) {
        socket.abort();
        return;
    }
    // A complete frame is answered at once; anything else would wait for the primary's time-out.
    fuzzsupport::spin([&] { return socket.state() == QLocalSocket::UnconnectedState; }, 5);
    socket.disconnectFromServer();
}
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzsupport::setUp();
    static QString awaited;
    static bool arrived = false;
    static const QString appId = QStringLiteral("lumo-fuzz-%1").arg(QCoreApplication::applicationPid());
    static QtLocalPeer *primary = [] {
        auto *peer = new QtLocalPeer(nullptr, appId);
        fuzzsupport::check(!peer->isClient(), "cannot become the primary");
        // By content: a message of the input itself may be delivered after the probe was sent.
        QObject::connect(peer, &QtLocalPeer::messageReceived, [](const QString &message) { arrived = arrived || message == awaited; });
        return peer;
    }();
    Q_UNUSED(primary)
    static const QString path = lumo::singleapp::serverPath(appId);
    if (size == 0)
        return 0;
    // The first byte chooses the piece size and whether the client leaves without reading the answer.
    const QByteArray input = fuzzsupport::bytes(data + 1, size - 1);
    send(path, input, 1 + (data[0] & 0x3f), data[0] & 0x40);
    fuzzsupport::processEventsFor(1);

    // Whatever came before, a well-formed message still arrives whole.
    static int probes = 0;
    awaited = QStringLiteral("probe %1 \u00e9").arg(++probes);
    arrived = false;
    send(path, frame(awaited.toUtf8()), 4096, false);
    fuzzsupport::spin([] { return arrived; }, 2000);
    fuzzsupport::check(arrived, "the primary stopped serving after an input");
    return 0;
}
