#include "app/TextScale.h"
#include "app/VTWebUrlHandler.h"
#include "app/daemon.h"
#include "app/executeInMain.h"
#include "app/windowPlace.h"
#include "shell/PanelStyle.h"
#include "shell/ServiceContainer.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDesktopWidget>
#include <QFont>
#include <QIcon>
#include <QList>
#include <QOpenGLContext>
#include <QRect>
#include <QScreen>
#include <QVariant>
#include <QVector>
#include <QWindow>

#include <array>
#include <optional>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int ApplicationFontPointSize = 9;

//! Variables that point at the panel's private libraries and must not reach its children.
constexpr std::array<const char *, 4> PrivateVariables = {
        "LD_LIBRARY_PATH", "LD_PRELOAD", "QT_PLUGIN_PATH", "QT_QPA_PLATFORM_PLUGIN_PATH"};

/*!
    Opens the null device for each standard stream that is closed. Otherwise the next files, such as
    the connection to the X server, would get descriptors 0 to 2 and with them the log and the
    output of children.
*/
void openStandardStreams()
{
    int descriptor = -1;
    do {
        descriptor = open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0)
        close(descriptor);
}

/*!
    Keeps the platform plug-in from loading the OpenGL driver for a program that paints without it:
    that takes more time and memory than all the rest of an empty window. A choice of the user's own
    is respected.
*/
void disableOpenGl()
{
    constexpr const char *variable = "QT_XCB_GL_INTEGRATION";
    if (qEnvironmentVariableIsSet(variable))
        return;

    qputenv(variable, "none");
    // The plug-in reads the variable when it is first asked for anything of OpenGL.
    QOpenGLContext::supportsThreadedOpenGL();
    // It is meant for this process only, not for those that it starts.
    qunsetenv(variable);
}

} // namespace

int main(int argc, char *argv[])
{
    openStandardStreams();

    // The panel is made for X11, also where the desktop offers Wayland.
    qputenv("QT_QPA_PLATFORM", "xcb");

    VTWebUrlHandler urlHandler;
    QDesktopServices::setUrlHandler(QStringLiteral("https"), &urlHandler, "handle");
    QDesktopServices::setUrlHandler(QStringLiteral("http"), &urlHandler, "handle");

    // Icons in the device's own pixels, also where the window is scaled.
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    // A log-out that the user cancels must not have closed the window.
    QGuiApplication::setFallbackSessionManagementEnabled(false);
    TextScale textScale(ServiceContainer::fixedSize(), argc, argv);
    QApplication app(argc, argv);
    textScale.keepFromChildren();
    disableOpenGl();
    PanelStyle::install();
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/client/resources/application.svg")));

    QFont font;
    font.setPointSize(ApplicationFontPointSize);
    QApplication::setFont(font);

    // Only now: the application object has loaded its own plug-ins with them.
    for (const char *variable : PrivateVariables)
        qunsetenv(variable);

    const QList<QVariant> probe =
            executeInMain(Daemon::shell(), Daemon::shellArguments(Daemon::probeCommand()));
    std::optional<qint64> pid = Daemon::singlePid(probe);
    // For code that asks the application object; the panel itself doesn't read it.
    if (pid)
        app.setProperty("CorvanePid", *pid);

    // Any number that isn't negative counts as a running daemon, 0 included.
    if (pid.value_or(Daemon::UnknownPid) < 0) {
        pid = Daemon::launch(Daemon::LaunchRule::IfExecutableExists);
        if (pid)
            app.setProperty("CorvanePid", *pid);
    }

    ServiceContainer window(nullptr);

    QVector<QRect> monitors;
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens)
        monitors.append(screen->geometry());
    window.move(
            windowPlace(window.size(), QApplication::desktop()->screenGeometry(&window), monitors));
    // Scaled, Qt has the window manager resize in steps of more than a pixel, counted from -1. Some
    // managers would round the window's size to such a step.
    window.winId();
    window.windowHandle()->setBaseSize(window.size());
    window.show();

    const int status = QApplication::exec();

    // Newer Qt warns of a handler that is destroyed while it is still registered.
    QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
    QDesktopServices::unsetUrlHandler(QStringLiteral("http"));
    return status;
}
