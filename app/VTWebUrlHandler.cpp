#include "app/VTWebUrlHandler.h"

#include <QProcess>

void VTWebUrlHandler::handle(const QUrl &url)
{
    // Kept on purpose, though the static call below has no use for it.
    const QProcess process;
    QProcess::startDetached(QStringLiteral("xdg-open"), {url.toString()});
}
