#include "shell/ServiceContainer.h"

#include "overview/OverviewForm.h"

#include <QVBoxLayout>

namespace {
constexpr QSize WindowSize(800, 600);
}

ServiceContainer::ServiceContainer(QWidget *parent)
    : QWidget(parent)
{
    setWindowTitle(tr("朔川统一服务"));
    setFixedSize(WindowSize);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new OverviewForm(this));
}
