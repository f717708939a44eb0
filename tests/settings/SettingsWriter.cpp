// The settings page in a process of its own, which changes one number:
//
//   SettingsWriter FIELD VALUE [BYTES]
//
// FIELD is the object name of the number's field. With BYTES the kernel kills the process by
// SIGXFSZ when it writes more than so many bytes to any file: in the middle of the change.

#include "settings/SettingsForm.h"
#include "tests/support/ResourceLimit.h"

#include <QApplication>
#include <QSpinBox>

#include <optional>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();

    const ResourceLimit noCore(RLIMIT_CORE, 0);
    std::optional<ResourceLimit> bytes;
    const SettingsForm page;
    if (arguments.size() > 3)
        bytes.emplace(RLIMIT_FSIZE, arguments.at(3).toULongLong());
    page.findChild<QSpinBox *>(arguments.value(1))->setValue(arguments.value(2).toInt());
    QCoreApplication::processEvents();
    return EXIT_SUCCESS;
}
