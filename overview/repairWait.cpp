#include "overview/repairWait.h"

#include <QRandomGenerator>

namespace {
constexpr int ShortestWait = 5;
constexpr int WaitChoices = 10;
} // namespace

int repairWaitSeconds(quint32 seed)
{
    return QRandomGenerator(seed).bounded(WaitChoices) + ShortestWait;
}
