#include "benchmarks/Canvas.h"
#include "benchmarks/PanelWindow.h"
#include "overview/OverviewForm.h"

#include <QHeaderView>
#include <QPushButton>
#include <QTreeWidget>

namespace {

void repaintWholeWindow(benchmark::State &state)
{
    Bench::PanelWindow panel;
    Bench::repaint(state, *panel.container());
}
BENCHMARK(repaintWholeWindow)->Unit(benchmark::kMicrosecond);

void repaintRow(benchmark::State &state)
{
    Bench::PanelWindow panel;
    auto *tree = panel.page()->findChild<QTreeWidget *>(QStringLiteral("treeWidgetOW"));
    Bench::repaint(state, *tree->viewport());
}
BENCHMARK(repaintRow)->Unit(benchmark::kMicrosecond);

void repaintHeader(benchmark::State &state)
{
    Bench::PanelWindow panel;
    auto *tree = panel.page()->findChild<QTreeWidget *>(QStringLiteral("treeWidgetOW"));
    Bench::repaint(state, *tree->header()->viewport());
}
BENCHMARK(repaintHeader)->Unit(benchmark::kMicrosecond);

void repaintShortcutButton(benchmark::State &state)
{
    Bench::PanelWindow panel;
    Bench::repaint(state, *panel.page()->findChild<QPushButton *>(QStringLiteral("kqfwdt")));
}
BENCHMARK(repaintShortcutButton)->Unit(benchmark::kMicrosecond);

} // namespace
