#pragma once

#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRect>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>
#include <QVariant>

#include <memory>
#include <optional>

class QLocalSocket;

/*!
    The real panel, run in a folder of the test's own: a copy of the executable and, where the test
    puts one there, of the stand-in daemon beside it. Where PANEL_TEST_INSTALLED names an installed
    panel, that one is run, and its daemon goes into the folder that it is installed in. A plug-in
    that Qt loads into the unchanged program (see Inspector) answers questions about it; the mouse
    and the keyboard are real input through the X server.

    A question that can't be answered (no such object, panel gone or blocked for over half a
    minute) fails the running test function and yields an invalid value.

    Addresses of objects are steps separated by '/', each an object name or a class name, such as
    "ServiceContainer", "labelNoService" or "QMessageBox/QPushButton"; "qApp" is the application
    object.

    The destructor ends the panel and every daemon that runs from its folder, by PID.
*/
class PanelProcess
{
public:
    //! Makes the folder \a folderName below a temporary one and puts the panel there.
    explicit PanelProcess(const QString &folderName = QStringLiteral("panel"));
    ~PanelProcess();

    PanelProcess(const PanelProcess &) = delete;
    PanelProcess &operator=(const PanelProcess &) = delete;

    // --- before the start

    //! The panel's folder, as the panel itself names it.
    QString folder() const;
    //! The path at which the panel looks for the daemon.
    QString daemonPath() const;

    //! Puts the stand-in daemon beside the panel. It records its start, see daemonRecord().
    void placeDaemon();
    //! Sets \a name to \a value in the daemon's own configuration file, see Corvane.cpp.
    void configureDaemon(const QByteArray &name, const QByteArray &value);

    //! The environment for the panel: this process's own, and the inspector. Change it at will.
    QProcessEnvironment &environment();
    /*!
        Lets \a command start the panel: a program with its arguments that takes what it is to run
        as further arguments and ends by becoming it, such as {"setpriv", "--reuid=65534"}.
    */
    void setLauncher(const QStringList &command);
    /*!
        Lets any user run the panel in its folder. What the daemon needs to be able to write must
        lie in a folder that such a user may write to; sharedFolder() is one.
    */
    void share();
    //! A folder beside the panel's own, which has nothing in it but what the test puts there.
    QString sharedFolder() const;
    /*!
        The arguments with which the panel takes the inspector in without any variable of the
        environment. To be asked before environment() is cleared.
    */
    QStringList inspectorArguments() const;
    //! The folder of the inspector's plug-in, which must stand in the panel's QT_PLUGIN_PATH.
    static QString pluginPath();

    // --- the process

    /*!
        Starts the panel with \a arguments and waits half a minute at most until its window is on
        the screen. Returns whether it is; the running test function has failed if not.
    */
    bool start(const QStringList &arguments = {});
    /*!
        Has the page of the running panel refresh itself every \a ms milliseconds, counted from now.
        Makes tests of what a refresh shows shorter.
    */
    void setRefreshInterval(int ms);
    //! Short, and still long enough for what a refresh does.
    static constexpr int QuickRefreshMs = 500;
    //! The panel's PID; 0 when it doesn't run.
    qint64 pid() const;
    bool isRunning() const;
    //! Waits half a minute at most for the panel's end; returns its exit status, or nothing when it
    //! crashed or still runs.
    std::optional<int> waitForExit();
    //! What the panel, and its children with it, wrote to standard error so far.
    QStringList errorLines() const;

    // --- the daemon beside the panel

    //! The PIDs of the daemons that run from the panel's folder.
    QList<qint64> daemonPids() const;
    //! Whether a stand-in daemon of this folder has recorded its start.
    bool hasDaemonRecord() const;
    //! The values recorded under \a key by the last such start: "pid", "directory", "argument"
    //! (the first is the program), "environment".
    QStringList daemonRecord(const QString &key) const;

    // --- questions

    //! How many objects \a address fits.
    int count(const QString &address);
    bool exists(const QString &address) { return count(address) > 0; }
    //! A property, its type kept; icons as a QImage of 64 pixels, enumerations as int.
    QVariant property(const QString &address, const QByteArray &name);
    bool setProperty(const QString &address, const QByteArray &name, const QVariant &value);
    //! Calls the slot or invokable \a method as soon as the panel's event loop is reached.
    bool invoke(const QString &address, const QByteArray &method);
    //! The widget's rectangle on the screen.
    QRect globalRect(const QString &address);
    //! The X window that the widget is in, for xprop and its like.
    qulonglong windowId(const QString &address);
    //! Whether the widget is visible in a window that the X server shows.
    bool isExposed(const QString &address);
    QImage grab(const QString &address);

    struct Cell
    {
        QString text;
        int alignment; //!< Qt::Alignment
        QRect globalRect;
    };
    using Row = QList<Cell>;
    QList<Row> rows(const QString &itemView);
    //! The texts of the top-level rows of an item view.
    QList<QStringList> rowTexts(const QString &itemView);
    //! The PIDs in the rows of the run-status page.
    QStringList shownPids();
    //! Whether the run-status page shows the row of daemon \a pid and nothing else.
    bool showsDaemon(qint64 pid);
    //! Whether the run-status page shows the notice in the place of a row.
    bool showsNotice();

    struct MessageBox
    {
        QString text;
        int icon; //!< QMessageBox::Icon
    };
    //! The modal message box that is open, if any.
    std::optional<MessageBox> messageBox();

    /*!
        Figures of the whole program: "pid", "platform", "font", "closesOnLogOut" (whether the
        question alone closes it), "overrideCursor" (Qt::CursorShape,
        -1 for none), "focus" (the name of the widget that has it, or of its class where it has no
        name), "focusRect" (that widget's rectangle on the screen), "environment" (QStringList),
        "objects" (all QObjects within reach), "descriptors", "children" (PIDs, zombies included).
    */
    QVariant application(const QString &figure);
    //! Opens \a url as the panel's own code would; whether anything took it.
    bool openUrl(const QUrl &url);
    //! Opens \a url after the event loop has ended, when the window is destroyed.
    void openUrlAtTheEnd(const QUrl &url);
    //! The icon at \a path of the resource bundle as the panel itself loads it, 64 pixels wide.
    QImage icon(const QString &path);

    // --- real input, in pixels of the X server

    static void moveMouse(const QPoint &global);
    static void pressButton(int button = LeftButton);
    static void releaseButton(int button = LeftButton);
    //! Clicks at \a global. The pointer has to stay there until that has had its effect: a window
    //! manager that is slow to hand a click on gives its release the place of the pointer by then.
    static void clickAt(const QPoint &global, int button = LeftButton);
    //! Clicks into the middle of a widget.
    void click(const QString &address);
    //! Presses and releases \a keys, in xdotool's words: "Return", "alt+F4".
    static void pressKeys(const QByteArray &keys);

    static constexpr int LeftButton = 1;

private:
    QVariant ask(const QString &what, QVariantMap question = {});
    bool connectToInspector();

    QTemporaryDir m_root;
    QString m_folder;
    QString m_program;
    QString m_socketPath;
    QString m_errorPath;
    QStringList m_launcher;
    QProcessEnvironment m_environment;
    QProcess m_process;
    std::unique_ptr<QLocalSocket> m_socket;
};
