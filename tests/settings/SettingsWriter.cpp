// The settings page in a process of its own that changes one setting over and over, for tests that
// kill it while it writes. It writes a line to standard output for every change that it has handed
// to the disk, and ends only when it is ended.

#include "settings/SettingsForm.h"

#include <QApplication>
#include <QSpinBox>

#include <cstdio>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const SettingsForm page;
    auto *timeout = page.findChild<QSpinBox *>(QStringLiteral("spinRpcTimeout"));
    for (int value = timeout->value();; ++value) {
        if (value > timeout->maximum())
            value = timeout->minimum();
        timeout->setValue(value);
        QCoreApplication::processEvents();
        std::printf("%d\n", value);
        std::fflush(stdout);
    }
}
