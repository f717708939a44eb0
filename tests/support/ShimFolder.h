#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/*!
    A folder that stands first in PATH while the object lives, for programs that take the place of
    the system's own in this process and its children.

    Each shim records every call: its arguments, in order.
*/
class ShimFolder
{
public:
    //! Creates the folder and puts it first in this process's PATH.
    ShimFolder();
    //! Restores PATH and removes the folder.
    ~ShimFolder();

    ShimFolder(const ShimFolder &) = delete;
    ShimFolder &operator=(const ShimFolder &) = delete;

    /*!
        Makes (or replaces) the program \a name, a bash script that records its arguments and then
        runs \a body. Fails the calling test by qFatal() when the file can't be written.
    */
    void add(const QString &name, const QByteArray &body);

    //! Makes \a name print \a output to the byte and end with \a exitCode.
    void addPrinting(const QString &name, const QByteArray &output, int exitCode = 0);

    //! Takes the program \a name away again; the system's own comes to light.
    void remove(const QString &name);

    //! The calls of \a name so far, oldest first, each with its arguments.
    QList<QStringList> calls(const QString &name) const;

    //! Forgets the calls so far.
    void clearCalls();

    //! The folder's path.
    QString path() const;

private:
    QTemporaryDir m_folder;
    QByteArray m_formerPath;
};
