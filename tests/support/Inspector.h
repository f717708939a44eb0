#pragma once

#include <QHash>
#include <QLocalServer>
#include <QObject>
#include <QVariant>

class QLocalSocket;
class QWidget;

/*!
    Answers questions about the program that it lives in, in the GUI thread, over a local socket:
    what PanelProcess asks inside the unchanged panel.

    A question is a QVariantMap with the entries "ask" (one of the names in the constructor) and
    what that question needs; the answer is a QVariantMap with "value", and with "error" where the
    question could not be answered. Both travel in a QDataStream. While the GUI thread is blocked
    questions wait.

    Objects are named by an address: steps separated by '/', each an object name or a class name
    (subclasses count), looked up among all descendants of the step before it; the first step is
    looked up among the top-level widgets and their descendants, visible windows first. "qApp" is
    the application object.
*/
class Inspector : public QObject
{
    Q_OBJECT

public:
    //! Listens at \a socketPath from now on; ends the program by qFatal() when it can't.
    explicit Inspector(const QString &socketPath);

private:
    using Question = QVariantMap;
    using Answerer = QVariant (Inspector::*)(const Question &);

    void admit();
    void answerAll(QLocalSocket *socket);
    QVariantMap answer(const Question &question);

    QVariant fail(const QString &message);
    QObject *object(const Question &question);
    QWidget *widget(const Question &question);

    // The questions.
    QVariant count(const Question &question);
    QVariant property(const Question &question);
    QVariant setProperty(const Question &question);
    QVariant invoke(const Question &question);
    QVariant globalRect(const Question &question);
    QVariant windowId(const Question &question);
    QVariant isExposed(const Question &question);
    QVariant grab(const Question &question);
    QVariant view(const Question &question);
    QVariant messageBox(const Question &question);
    QVariant application(const Question &question);
    QVariant openUrl(const Question &question);
    QVariant icon(const Question &question);

    QLocalServer m_server;
    QHash<QString, Answerer> m_answerers;
    QString m_error;
};
