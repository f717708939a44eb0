#include "tests/support/Inspector.h"

#include "tests/support/ProcessCounters.h"
#include "tests/support/childProcesses.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCursor>
#include <QDataStream>
#include <QDesktopServices>
#include <QGenericPlugin>
#include <QIcon>
#include <QImage>
#include <QLocalSocket>
#include <QMessageBox>
#include <QMetaEnum>
#include <QProcessEnvironment>
#include <QPushButton>
#include <QSet>
#include <QUrl>
#include <QWindow>

#include <algorithm>

namespace {

constexpr QSize IconSize(64, 64);
constexpr int NoOverrideCursor = -1;

bool answersTo(const QObject *object, const QString &step)
{
    return object->objectName() == step || object->inherits(step.toLatin1().constData());
}

//! The top-level widgets, visible ones first, then the application object.
QObjectList roots()
{
    QWidgetList windows = QApplication::topLevelWidgets();
    std::stable_partition(windows.begin(), windows.end(),
                          [](const QWidget *window) { return window->isVisible(); });
    QObjectList result;
    for (QWidget *window : qAsConst(windows))
        result.append(window);
    result.append(QCoreApplication::instance());
    return result;
}

QObjectList descendants(QObject *object)
{
    return object->findChildren<QObject *>();
}

QObjectList matches(const QString &address)
{
    QObjectList candidates;
    const QObjectList windows = roots();
    for (QObject *window : windows) {
        candidates.append(window);
        candidates.append(descendants(window));
    }

    QObjectList found;
    const QStringList steps = address.split(QLatin1Char('/'));
    for (const QString &step : steps) {
        found.clear();
        for (QObject *candidate : qAsConst(candidates)) {
            if (answersTo(candidate, step) && !found.contains(candidate))
                found.append(candidate);
        }
        candidates.clear();
        for (QObject *object : qAsConst(found))
            candidates.append(descendants(object));
    }
    return found;
}

QObject *firstMatch(const QString &address)
{
    if (address == QLatin1String("qApp"))
        return QCoreApplication::instance();
    const QObjectList found = matches(address);
    return found.isEmpty() ? nullptr : found.first();
}

//! \a value in a form that can travel, its type kept wherever a stream knows it.
QVariant portable(const QVariant &value)
{
    if (value.userType() == QMetaType::QIcon)
        return value.value<QIcon>().pixmap(IconSize).toImage();
    if (value.userType() == QMetaType::QPixmap)
        return value.value<QPixmap>().toImage();
    if (value.userType() == QMetaType::QCursor)
        return static_cast<int>(value.value<QCursor>().shape());
    if (QMetaType(value.userType()).flags().testFlag(QMetaType::IsEnumeration))
        return value.toInt();
    if (value.canConvert<QObject *>()) {
        const auto *object = value.value<QObject *>();
        return object ? object->objectName() : QString();
    }
    if (value.userType() < QMetaType::User && value.userType() != QMetaType::QKeySequence)
        return value;
    return value.toString();
}

QVariantList childNumbers()
{
    QVariantList result;
    const QList<qint64> numbers = childProcesses();
    for (const qint64 number : numbers)
        result.append(number);
    return result;
}

//! The name of \a widget, or of its class where it has none.
QString nameOf(const QWidget &widget)
{
    const QString name = widget.objectName();
    return name.isEmpty() ? QString::fromLatin1(widget.metaObject()->className()) : name;
}

QRect globalRectOf(const QWidget &widget)
{
    return {widget.mapToGlobal(QPoint(0, 0)), widget.size()};
}

} // namespace

Inspector::Inspector(const QString &socketPath)
    : m_answerers {{QStringLiteral("count"), &Inspector::count},
                   {QStringLiteral("property"), &Inspector::property},
                   {QStringLiteral("setProperty"), &Inspector::setProperty},
                   {QStringLiteral("invoke"), &Inspector::invoke},
                   {QStringLiteral("globalRect"), &Inspector::globalRect},
                   {QStringLiteral("windowId"), &Inspector::windowId},
                   {QStringLiteral("isExposed"), &Inspector::isExposed},
                   {QStringLiteral("grab"), &Inspector::grab},
                   {QStringLiteral("view"), &Inspector::view},
                   {QStringLiteral("messageBox"), &Inspector::messageBox},
                   {QStringLiteral("application"), &Inspector::application},
                   {QStringLiteral("openUrl"), &Inspector::openUrl},
                   {QStringLiteral("icon"), &Inspector::icon}}
{
    connect(&m_server, &QLocalServer::newConnection, this, &Inspector::admit);
    if (!m_server.listen(socketPath))
        qFatal("the inspector can't listen at %s", qPrintable(socketPath));
}

void Inspector::admit()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { answerAll(socket); });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        answerAll(socket);
    }
}

void Inspector::answerAll(QLocalSocket *socket)
{
    QDataStream stream(socket);
    stream.setVersion(QDataStream::Qt_5_14);
    forever
    {
        stream.startTransaction();
        Question question;
        stream >> question;
        if (!stream.commitTransaction())
            return;
        QByteArray message;
        QDataStream content(&message, QIODevice::WriteOnly);
        content.setVersion(QDataStream::Qt_5_14);
        content << answer(question);
        stream << message;
        socket->flush();
    }
}

QVariantMap Inspector::answer(const Question &question)
{
    m_error.clear();
    const QString name = question.value(QStringLiteral("ask")).toString();
    const Answerer answerer = m_answerers.value(name, nullptr);
    const QVariant value = answerer ? (this->*answerer)(question)
                                    : fail(QStringLiteral("no such question: ") + name);

    QVariantMap result {{QStringLiteral("value"), value}};
    if (!m_error.isEmpty())
        result.insert(QStringLiteral("error"), m_error);
    return result;
}

QVariant Inspector::fail(const QString &message)
{
    m_error = message;
    return {};
}

QObject *Inspector::object(const Question &question)
{
    const QString address = question.value(QStringLiteral("object")).toString();
    QObject *found = firstMatch(address);
    if (!found)
        fail(QStringLiteral("no such object: ") + address);
    return found;
}

QWidget *Inspector::widget(const Question &question)
{
    QObject *found = object(question);
    auto *result = qobject_cast<QWidget *>(found);
    if (found && !result)
        fail(QStringLiteral("no widget: ") + question.value(QStringLiteral("object")).toString());
    return result;
}

QVariant Inspector::count(const Question &question)
{
    return matches(question.value(QStringLiteral("object")).toString()).size();
}

QVariant Inspector::property(const Question &question)
{
    const QObject *found = object(question);
    const QByteArray name = question.value(QStringLiteral("name")).toByteArray();
    return found ? portable(found->property(name.constData())) : QVariant();
}

QVariant Inspector::setProperty(const Question &question)
{
    QObject *found = object(question);
    const QByteArray name = question.value(QStringLiteral("name")).toByteArray();
    return found ? found->setProperty(name.constData(), question.value(QStringLiteral("value")))
                 : QVariant();
}

QVariant Inspector::invoke(const Question &question)
{
    QObject *found = object(question);
    if (!found)
        return {};
    // Queued: the answer goes out first, also where the method opens a modal box.
    const QByteArray method = question.value(QStringLiteral("method")).toByteArray();
    if (!QMetaObject::invokeMethod(found, method.constData(), Qt::QueuedConnection))
        return fail(QStringLiteral("no such method: ") + QString::fromLatin1(method));
    return true;
}

QVariant Inspector::globalRect(const Question &question)
{
    const QWidget *found = widget(question);
    return found ? globalRectOf(*found) : QVariant();
}

QVariant Inspector::windowId(const Question &question)
{
    const QWidget *found = widget(question);
    return found ? static_cast<qulonglong>(found->window()->winId()) : QVariant();
}

QVariant Inspector::isExposed(const Question &question)
{
    const QWidget *found = widget(question);
    if (!found)
        return {};
    const QWindow *window = found->window()->windowHandle();
    return window && window->isExposed() && found->isVisible();
}

QVariant Inspector::grab(const Question &question)
{
    QWidget *found = widget(question);
    return found ? found->grab().toImage() : QVariant();
}

QVariant Inspector::view(const Question &question)
{
    auto *found = qobject_cast<QAbstractItemView *>(widget(question));
    if (!found)
        return fail(QStringLiteral("no item view: ")
                    + question.value(QStringLiteral("object")).toString());

    const QAbstractItemModel *model = found->model();
    QVariantList rows;
    for (int row = 0; row < model->rowCount(); ++row) {
        QVariantList cells;
        for (int column = 0; column < model->columnCount(); ++column) {
            const QModelIndex index = model->index(row, column);
            const QRect place = found->visualRect(index);
            cells.append(QVariantMap {
                    {QStringLiteral("text"), index.data().toString()},
                    {QStringLiteral("alignment"), index.data(Qt::TextAlignmentRole).toInt()},
                    {QStringLiteral("globalRect"),
                     QRect(found->viewport()->mapToGlobal(place.topLeft()), place.size())}});
        }
        rows.append(QVariant(cells));
    }
    return rows;
}

QVariant Inspector::messageBox(const Question &)
{
    const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!box)
        return QVariantMap();
    return QVariantMap {{QStringLiteral("text"), box->text()},
                        {QStringLiteral("icon"), static_cast<int>(box->icon())}};
}

QVariant Inspector::application(const Question &)
{
    QSet<const QObject *> objects;
    const QObjectList tops = roots();
    for (QObject *top : tops) {
        objects.insert(top);
        const QObjectList below = descendants(top);
        for (const QObject *object : below)
            objects.insert(object);
    }
    const QCursor *cursor = QGuiApplication::overrideCursor();
    const QWidget *focus = QApplication::focusWidget();
    return QVariantMap {{QStringLiteral("pid"), QCoreApplication::applicationPid()},
                        {QStringLiteral("platform"), QGuiApplication::platformName()},
                        {QStringLiteral("font"), QApplication::font()},
                        {QStringLiteral("closesOnLogOut"),
                         QGuiApplication::isFallbackSessionManagementEnabled()},
                        {QStringLiteral("overrideCursor"),
                         cursor ? static_cast<int>(cursor->shape()) : NoOverrideCursor},
                        {QStringLiteral("focus"), focus ? nameOf(*focus) : QString()},
                        {QStringLiteral("focusRect"), focus ? globalRectOf(*focus) : QRect()},
                        {QStringLiteral("environment"),
                         QProcessEnvironment::systemEnvironment().toStringList()},
                        {QStringLiteral("objects"), objects.size()},
                        {QStringLiteral("descriptors"), openDescriptors()},
                        {QStringLiteral("children"), childNumbers()}};
}

QVariant Inspector::openUrl(const Question &question)
{
    const QUrl url = question.value(QStringLiteral("url")).toUrl();
    if (question.value(QStringLiteral("atTheEnd")).toBool()) {
        connect(QApplication::topLevelWidgets().constFirst(), &QObject::destroyed, this,
                [url] { QDesktopServices::openUrl(url); });
        return true;
    }
    return QDesktopServices::openUrl(url);
}

QVariant Inspector::icon(const Question &question)
{
    return QIcon(question.value(QStringLiteral("path")).toString()).pixmap(IconSize).toImage();
}

//! Loaded by Qt itself where QT_QPA_GENERIC_PLUGINS names "panelinspector:<socket path>".
class InspectorPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "inspector.json")

public:
    QObject *create(const QString &, const QString &specification) override
    {
        return new Inspector(specification);
    }
};

#include "Inspector.moc"
