#include "benchmarks/Canvas.h"
#include "shell/MultiProjectsTabStyle.h"

#include <QTabBar>

namespace {

void repaintTabs(benchmark::State &state)
{
    QWidget parent;
    parent.resize(400, 32);
    QTabBar tabs(&parent);
    MultiProjectsTabStyle style(&tabs);
    tabs.setStyle(&style);
    tabs.addTab(QIcon(QStringLiteral(":/client/resources/overview.svg")),
                QStringLiteral("运行状态"));
    tabs.addTab(QIcon(QStringLiteral(":/client/resources/settings.svg")),
                QStringLiteral("服务设置"));
    tabs.resize(tabs.sizeHint());
    Bench::repaint(state, tabs);
    tabs.setStyle(nullptr);
}
BENCHMARK(repaintTabs)->Unit(benchmark::kMicrosecond);

} // namespace
