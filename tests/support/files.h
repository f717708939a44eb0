#pragma once

#include <QByteArray>
#include <QString>

//! The bytes of \a path; a null array when it can't be opened, never null when it can.
QByteArray readFile(const QString &path);
//! Replaces the content of \a path by \a content in place, creating the file where it is missing.
//! Fails the test by qFatal() where that can't be done.
void writeFile(const QString &path, const QByteArray &content);
