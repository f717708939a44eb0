#include "tests/support/ShimFolder.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>

namespace {

// Each recorded argument is followed by a unit separator, each call by a record separator: bytes
// that no argument in these tests holds.
constexpr char ArgumentMark = '\x1f';
constexpr char CallMark = '\x1e';

//! In a new file each time: the old one may be running.
void replaceFile(const QString &path, const QByteArray &content)
{
    QFile::remove(path);
    writeFile(path, content);
}

} // namespace

ShimFolder::ShimFolder()
    : m_formerPath(qgetenv("PATH"))
{
    if (!m_folder.isValid())
        qFatal("can't make a folder for shims");
    qputenv("PATH", QFile::encodeName(m_folder.path()) + ':' + m_formerPath);
}

ShimFolder::~ShimFolder()
{
    qputenv("PATH", m_formerPath);
}

void ShimFolder::add(const QString &name, const QByteArray &body)
{
    const QString file = m_folder.filePath(name);
    const QByteArray record =
            "{ for a in \"$@\"; do printf '%s\\x1f' \"$a\"; done; printf '\\x1e'; } >> '"
            + QFile::encodeName(m_folder.filePath(name + QStringLiteral(".calls"))) + "'\n";
    replaceFile(file, "#!/bin/bash\n" + record + body + '\n');
    if (!QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        qFatal("can't make %s executable", qPrintable(file));
}

void ShimFolder::addPrinting(const QString &name, const QByteArray &output, int exitCode)
{
    const QString file = m_folder.filePath(name + QStringLiteral(".output"));
    replaceFile(file, output);
    add(name, "/bin/cat '" + QFile::encodeName(file) + "'\nexit " + QByteArray::number(exitCode));
}

void ShimFolder::remove(const QString &name)
{
    QFile::remove(m_folder.filePath(name));
}

QList<QStringList> ShimFolder::calls(const QString &name) const
{
    QFile file(m_folder.filePath(name + QStringLiteral(".calls")));
    if (!file.open(QIODevice::ReadOnly))
        return {};

    QList<QStringList> result;
    QList<QByteArray> records = file.readAll().split(CallMark);
    records.removeLast();
    for (const QByteArray &record : qAsConst(records)) {
        QStringList arguments = QString::fromUtf8(record).split(QLatin1Char(ArgumentMark));
        arguments.removeLast();
        result.append(arguments);
    }
    return result;
}

void ShimFolder::clearCalls()
{
    const QDir folder(m_folder.path());
    const QStringList names = folder.entryList({QStringLiteral("*.calls")}, QDir::Files);
    for (const QString &name : names)
        QFile::remove(folder.filePath(name));
}

QString ShimFolder::path() const
{
    return m_folder.path();
}
