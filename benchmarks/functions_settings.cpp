#include "benchmarks/PanelWindow.h"
#include "settings/SettingsForm.h"

#include <QSettings>
#include <QSpinBox>
#include <QStandardPaths>

#include <benchmark/benchmark.h>

namespace {

constexpr int FewestDays = 10;
constexpr int MostDays = 30;

void openSettingsPage(benchmark::State &state)
{
    for (auto round : state) {
        static_cast<void>(round);
        SettingsForm page;
        page.show();
        Bench::handleEvents();
    }
}
BENCHMARK(openSettingsPage)->Unit(benchmark::kMillisecond);

void writeOneSetting(benchmark::State &state)
{
    SettingsForm page;
    auto *days = page.findChild<QSpinBox *>(QStringLiteral("spinLogDays"));
    for (auto round : state) {
        static_cast<void>(round);
        days->setValue(days->value() == MostDays ? FewestDays : days->value() + 1);
        // The write is due at the next pass of the event loop.
        Bench::handleEvents();
    }

    const QString file = QStandardPaths::writableLocation(QStandardPaths::ConfigLocation)
                         + QStringLiteral("/KqVantora/settings.ini");
    const QSettings written(file, QSettings::IniFormat);
    if (written.value(QStringLiteral("log/days")).toInt() != days->value())
        state.SkipWithError("the setting has not reached the disk");
}
BENCHMARK(writeOneSetting)->Unit(benchmark::kMicrosecond);

} // namespace
