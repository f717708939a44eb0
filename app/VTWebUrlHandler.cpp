#include "app/VTWebUrlHandler.h"

#include <QProcess>

void VTWebUrlHandler::handle(const QUrl &url)
{
    QProcess::startDetached(QStringLiteral("xdg-open"), {url.toString()});
}
