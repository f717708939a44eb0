#include "app/VTWebUrlHandler.h"

#include <QProcess>

void VTWebUrlHandler::handle(const QUrl &url)
{
    // Unused: the call below is static.
    const QProcess process;
    QProcess::startDetached(QStringLiteral("xdg-open"), {url.toString()});
}
