#include "tests/support/PanelProcess.h"
#include "tests/support/realInput.h"

#include "tests/support/files.h"
#include "tests/support/killDaemon.h"

#include <QCursor>
#include <QDataStream>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QTest>

#include <sys/stat.h>

namespace {

constexpr int StartTimeoutMs = 30000;
constexpr int ExitTimeoutMs = 30000;
//! Longer than the panel ever blocks its own event loop.
constexpr int AnswerTimeoutMs = 30000;

const QString Table = QStringLiteral("treeWidgetOW");
const QString Notice = QStringLiteral("labelNoService");
constexpr int PidColumn = 1;

//! The installed panel that is tried in the place of the built one, if any.
const QString Installed = QString::fromUtf8(PANEL_TEST_INSTALLED);

const QString Object = QStringLiteral("object");
const QString Name = QStringLiteral("name");

void failTest(const QString &message)
{
    QTest::qFail(qPrintable(message), __FILE__, __LINE__);
}

void copyProgram(const char *from, const QString &to)
{
    if (!QFile::copy(QFile::decodeName(from), to))
        qFatal("can't copy %s to %s", from, qPrintable(to));
}

} // namespace

PanelProcess::PanelProcess(const QString &folderName)
    : m_folder(QDir(QDir(m_root.path()).canonicalPath()).filePath(folderName))
    , m_socketPath(m_root.filePath(QStringLiteral("inspector")))
    , m_errorPath(m_root.filePath(QStringLiteral("stderr")))
    , m_environment(QProcessEnvironment::systemEnvironment())
{
    if (!m_root.isValid() || !QDir().mkpath(m_folder))
        qFatal("can't make a folder for the panel");
    if (Installed.isEmpty()) {
        m_program = QDir(m_folder).filePath(QStringLiteral("corvane-panel"));
        copyProgram(PANEL_TEST_PROGRAM, m_program);
    } else {
        m_program = Installed;
        m_folder = QFileInfo(QFileInfo(Installed).canonicalFilePath()).path();
    }

    m_environment.insert(QStringLiteral("QT_PLUGIN_PATH"), pluginPath());
    m_environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"),
                         QStringLiteral("panelinspector:") + m_socketPath);
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(m_errorPath);
}

PanelProcess::~PanelProcess()
{
    m_process.kill();
    m_process.waitForFinished();
    const QList<qint64> pids = daemonPids();
    for (const qint64 pid : pids)
        killDaemon(pid, daemonPath());
    for (const char *suffix : {"", ".conf", ".record"})
        QFile::remove(daemonPath() + QLatin1String(suffix));
}

QString PanelProcess::folder() const
{
    return m_folder;
}

QString PanelProcess::daemonPath() const
{
    return m_folder + QStringLiteral("/Corvane");
}

void PanelProcess::placeDaemon()
{
    copyProgram(PANEL_TEST_DAEMON, daemonPath());
    configureDaemon("CORVANE_RECORD", QFile::encodeName(daemonPath() + QStringLiteral(".record")));
}

void PanelProcess::configureDaemon(const QByteArray &name, const QByteArray &value)
{
    QFile file(daemonPath() + QStringLiteral(".conf"));
    if (!file.open(QIODevice::Append) || file.write(name + '=' + value + '\n') < 0)
        qFatal("can't write %s", qPrintable(file.fileName()));
}

QProcessEnvironment &PanelProcess::environment()
{
    return m_environment;
}

void PanelProcess::setLauncher(const QStringList &command)
{
    m_launcher = command;
}

void PanelProcess::share()
{
    if (!QDir().mkpath(sharedFolder()))
        qFatal("can't make %s", qPrintable(sharedFolder()));
    // The inspector's socket is made in the root.
    for (const QString &path : {m_root.path(), sharedFolder()}) {
        if (chmod(QFile::encodeName(path).constData(), S_IRWXU | S_IRWXG | S_IRWXO) != 0)
            qFatal("can't share %s", qPrintable(path));
    }
}

QString PanelProcess::sharedFolder() const
{
    return m_root.filePath(QStringLiteral("shared"));
}

QStringList PanelProcess::inspectorArguments() const
{
    // Qt looks for plug-ins in the program's own folder too.
    const QString folder = m_folder + QStringLiteral("/generic");
    if (!QFile::exists(folder) && !QFile::link(pluginPath() + QStringLiteral("/generic"), folder))
        qFatal("can't make %s", qPrintable(folder));
    return {QStringLiteral("-plugin"), QStringLiteral("panelinspector:") + m_socketPath};
}

QString PanelProcess::pluginPath()
{
    return QStringLiteral(PANEL_TEST_PLUGINS);
}

bool PanelProcess::start(const QStringList &arguments)
{
    m_process.setProcessEnvironment(m_environment);
    QStringList command = m_launcher;
    command.append(m_program);
    command.append(arguments);
    m_process.start(command.takeFirst(), command);
    if (m_process.waitForStarted() && connectToInspector()
        && QTest::qWaitFor(
                [this] {
                    return !isRunning()
                           || (exists(QStringLiteral("ServiceContainer"))
                               && isExposed(QStringLiteral("ServiceContainer")));
                },
                StartTimeoutMs)
        && isRunning())
        return true;

    failTest(QStringLiteral("the panel shows no window: ") + errorLines().join(QLatin1Char('\n')));
    return false;
}

bool PanelProcess::connectToInspector()
{
    m_socket = std::make_unique<QLocalSocket>();
    return QTest::qWaitFor(
                   [this] {
                       if (!isRunning())
                           return true;
                       m_socket->connectToServer(m_socketPath);
                       return m_socket->waitForConnected();
                   },
                   StartTimeoutMs)
           && isRunning();
}

void PanelProcess::setRefreshInterval(int ms)
{
    if (!setProperty(QStringLiteral("OverviewForm/QTimer"), "interval", ms))
        failTest(QStringLiteral("the page has no timer"));
}

qint64 PanelProcess::pid() const
{
    return m_process.processId();
}

bool PanelProcess::isRunning() const
{
    return m_process.state() != QProcess::NotRunning;
}

std::optional<int> PanelProcess::waitForExit()
{
    if (isRunning() && !m_process.waitForFinished(ExitTimeoutMs))
        return std::nullopt;
    if (m_process.exitStatus() != QProcess::NormalExit)
        return std::nullopt;
    return m_process.exitCode();
}

QStringList PanelProcess::errorLines() const
{
    QFile file(m_errorPath);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QList<qint64> PanelProcess::daemonPids() const
{
    QList<qint64> result;
    const QByteArray argument = QFile::encodeName(daemonPath()) + '\0';
    const QStringList names = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &name : names) {
        bool isNumber = false;
        const qint64 pid = name.toLongLong(&isNumber);
        // The link to the executable of another user's process is closed, in a container even to
        // root.
        if (isNumber && readFile(QStringLiteral("/proc/%1/cmdline").arg(pid)).startsWith(argument))
            result.append(pid);
    }
    return result;
}

bool PanelProcess::hasDaemonRecord() const
{
    return QFile::exists(daemonPath() + QStringLiteral(".record"));
}

QStringList PanelProcess::daemonRecord(const QString &key) const
{
    QFile file(daemonPath() + QStringLiteral(".record"));
    if (!file.open(QIODevice::ReadOnly))
        return {};

    QStringList result;
    const QString prefix = key + QLatin1Char('=');
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (line.startsWith(prefix))
            result.append(line.mid(prefix.size()));
    }
    return result;
}

QVariant PanelProcess::ask(const QString &what, QVariantMap question)
{
    question.insert(QStringLiteral("ask"), what);
    QDataStream stream(m_socket.get());
    stream.setVersion(QDataStream::Qt_5_14);
    stream << question;
    m_socket->flush();

    // In one piece, so that a large image is decoded once, when all of it is there.
    QByteArray message;
    forever
    {
        stream.startTransaction();
        stream >> message;
        if (stream.commitTransaction())
            break;
        if (!m_socket->waitForReadyRead(AnswerTimeoutMs)) {
            failTest(QStringLiteral("no answer from the panel to: ") + what);
            return {};
        }
    }
    QDataStream content(message);
    content.setVersion(QDataStream::Qt_5_14);
    QVariantMap answer;
    content >> answer;
    const QString error = answer.value(QStringLiteral("error")).toString();
    if (!error.isEmpty())
        failTest(what + QStringLiteral(": ") + error);
    return answer.value(QStringLiteral("value"));
}

int PanelProcess::count(const QString &address)
{
    return ask(QStringLiteral("count"), {{Object, address}}).toInt();
}

QVariant PanelProcess::property(const QString &address, const QByteArray &name)
{
    return ask(QStringLiteral("property"), {{Object, address}, {Name, name}});
}

bool PanelProcess::setProperty(const QString &address, const QByteArray &name,
                               const QVariant &value)
{
    return ask(QStringLiteral("setProperty"),
               {{Object, address}, {Name, name}, {QStringLiteral("value"), value}})
            .toBool();
}

bool PanelProcess::invoke(const QString &address, const QByteArray &method)
{
    return ask(QStringLiteral("invoke"), {{Object, address}, {QStringLiteral("method"), method}})
            .toBool();
}

QRect PanelProcess::globalRect(const QString &address)
{
    return ask(QStringLiteral("globalRect"), {{Object, address}}).toRect();
}

qulonglong PanelProcess::windowId(const QString &address)
{
    return ask(QStringLiteral("windowId"), {{Object, address}}).toULongLong();
}

bool PanelProcess::isExposed(const QString &address)
{
    return ask(QStringLiteral("isExposed"), {{Object, address}}).toBool();
}

QImage PanelProcess::grab(const QString &address)
{
    return ask(QStringLiteral("grab"), {{Object, address}}).value<QImage>();
}

QList<PanelProcess::Row> PanelProcess::rows(const QString &itemView)
{
    QList<Row> result;
    const QVariantList rows = ask(QStringLiteral("view"), {{Object, itemView}}).toList();
    for (const QVariant &row : rows) {
        Row cells;
        const QVariantList values = row.toList();
        for (const QVariant &value : values) {
            const QVariantMap cell = value.toMap();
            cells.append({cell.value(QStringLiteral("text")).toString(),
                          cell.value(QStringLiteral("alignment")).toInt(),
                          cell.value(QStringLiteral("globalRect")).toRect()});
        }
        result.append(cells);
    }
    return result;
}

QList<QStringList> PanelProcess::rowTexts(const QString &itemView)
{
    QList<QStringList> result;
    const QList<Row> all = rows(itemView);
    for (const Row &row : all) {
        QStringList texts;
        for (const Cell &cell : row)
            texts.append(cell.text);
        result.append(texts);
    }
    return result;
}

QStringList PanelProcess::shownPids()
{
    QStringList result;
    const QList<QStringList> rows = rowTexts(Table);
    for (const QStringList &row : rows)
        result.append(row.value(PidColumn));
    return result;
}

bool PanelProcess::showsDaemon(qint64 pid)
{
    return !isExposed(Notice) && shownPids() == QStringList(QString::number(pid));
}

bool PanelProcess::showsNotice()
{
    return isExposed(Notice) && shownPids().isEmpty();
}

std::optional<PanelProcess::MessageBox> PanelProcess::messageBox()
{
    const QVariantMap box = ask(QStringLiteral("messageBox")).toMap();
    if (box.isEmpty())
        return std::nullopt;
    return MessageBox {box.value(QStringLiteral("text")).toString(),
                       box.value(QStringLiteral("icon")).toInt()};
}

QVariant PanelProcess::application(const QString &figure)
{
    return ask(QStringLiteral("application")).toMap().value(figure);
}

bool PanelProcess::openUrl(const QUrl &url)
{
    return ask(QStringLiteral("openUrl"), {{QStringLiteral("url"), url}}).toBool();
}

void PanelProcess::openUrlAtTheEnd(const QUrl &url)
{
    ask(QStringLiteral("openUrl"),
        {{QStringLiteral("url"), url}, {QStringLiteral("atTheEnd"), true}});
}

QImage PanelProcess::icon(const QString &path)
{
    return ask(QStringLiteral("icon"), {{QStringLiteral("path"), path}}).value<QImage>();
}

void PanelProcess::moveMouse(const QPoint &global)
{
    xdotool(moveTo(global));
    if (!QTest::qWaitFor([&] { return QCursor::pos() == global; }))
        failTest(QStringLiteral("the pointer doesn't follow"));
}

void PanelProcess::pressButton(int button)
{
    xdotool(press(button));
}

void PanelProcess::releaseButton(int button)
{
    xdotool(release(button));
}

void PanelProcess::clickAt(const QPoint &global, int button)
{
    moveMouse(global);
    xdotool(::click(button));
}

void PanelProcess::click(const QString &address)
{
    clickAt(globalRect(address).center());
}

void PanelProcess::pressKeys(const QByteArray &keys)
{
    xdotool({QStringLiteral("key"), QString::fromLatin1(keys)});
}
