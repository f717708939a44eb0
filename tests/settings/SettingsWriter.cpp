// The settings page in a process of its own that changes one setting over and over:
//
//   SettingsWriter [FIELD KEY CHANGES]
//
// FIELD is the object name of the number to change, by default the RPC time-out, and KEY its key
// within its section. It writes a line to standard output for every change that it has handed to
// the disk. Without CHANGES it ends only when it is ended. With CHANGES it makes so many, each when
// a line comes in, and looks behind each whether the file holds it; where not, it says so on
// standard error.

#include "settings/SettingsForm.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSpinBox>
#include <QStandardPaths>

#include <cstdio>

namespace {

bool fileHolds(const QString &key, int value)
{
    QFile file(QDir(QStandardPaths::writableLocation(QStandardPaths::ConfigLocation))
                       .filePath(QStringLiteral("KqVantora/settings.ini")));
    return file.open(QIODevice::ReadOnly)
           && file.readAll().split('\n').contains(key.toLatin1() + '=' + QByteArray::number(value));
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString name = arguments.value(1, QStringLiteral("spinRpcTimeout"));
    const QString key = arguments.value(2);
    const int changes = arguments.value(3).toInt();

    const SettingsForm page;
    auto *field = page.findChild<QSpinBox *>(name);
    int value = field->value();
    for (int change = 0; changes == 0 || change < changes; ++change) {
        if (changes > 0 && std::getchar() != '\n')
            return EXIT_FAILURE;
        if (change > 0 && changes > 0 && !fileHolds(key, value))
            std::fprintf(stderr, "%s=%d is overtaken\n", qPrintable(key), value);
        value = value < field->maximum() ? value + 1 : field->minimum();
        field->setValue(value);
        QCoreApplication::processEvents();
        if (changes > 0 && !fileHolds(key, value))
            std::fprintf(stderr, "%s=%d is lost\n", qPrintable(key), value);
        std::printf("%d\n", value);
        std::fflush(stdout);
    }
    return EXIT_SUCCESS;
}
