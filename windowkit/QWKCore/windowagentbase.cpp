#include <QWKCore/windowagentbase.h>

namespace QWK {

WindowAgentBase::WindowAgentBase(QObject *parent)
    : QObject(parent)
{
}

WindowAgentBase::~WindowAgentBase() = default;

} // namespace QWK
