#pragma once

#include <QTranslator>

/*!
    Answers every text with its context, itself and its disambiguation, separated by "|", to see
    what a form or a class asks for. Install it with QCoreApplication::installTranslator().
*/
class AskingTranslator : public QTranslator
{
public:
    QString translate(const char *context, const char *sourceText, const char *disambiguation,
                      int /*n*/) const override
    {
        return QStringLiteral("%1|%2|%3")
                .arg(QString::fromUtf8(context), QString::fromUtf8(sourceText),
                     QString::fromUtf8(disambiguation));
    }
    bool isEmpty() const override { return false; }
};
