#include "benchmarks/Canvas.h"
#include "fancy/FancyButton.h"

namespace {

//! Repaints a button in the title bar's size; argument 1 gives it the pressed look.
void repaintTitleButton(benchmark::State &state)
{
    FancyButton button;
    button.setIcon(QIcon(QStringLiteral(":/client/resources/close.svg")));
    button.setIconSize(QSize(16, 16));
    button.resize(32, 32);
    button.select(state.range(0) != 0);
    Bench::repaint(state, button);
}
BENCHMARK(repaintTitleButton)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

} // namespace
