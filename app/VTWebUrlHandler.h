#pragma once

#include <QObject>
#include <QUrl>

/*!
    Hands web addresses to the desktop's own opener.

    Register an instance with QDesktopServices::setUrlHandler() for each scheme that it is to
    serve, with the method name "handle". From then on QDesktopServices::openUrl() starts
    "xdg-open" for such an address, detached and in this process's environment, instead of going
    through Qt's own opener. The instance must outlive the registration.
*/
class VTWebUrlHandler : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

public slots:
    /*!
        Starts "xdg-open" detached, with the text of \a url as its only argument, and returns at
        once. A failure to start it is not reported.
    */
    void handle(const QUrl &url);
};
