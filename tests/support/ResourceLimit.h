#pragma once

#include <QtGlobal>

#include <sys/resource.h>

//! Lowers what the system grants this process and its children, while the object lives.
class ResourceLimit
{
public:
    ResourceLimit(__rlimit_resource resource, rlim_t value)
        : m_resource(resource)
    {
        getrlimit(resource, &m_former);
        const rlimit lower = {value, m_former.rlim_max};
        if (setrlimit(resource, &lower) != 0)
            qFatal("can't lower a limit");
    }
    ~ResourceLimit()
    {
        if (setrlimit(m_resource, &m_former) != 0)
            qFatal("can't restore a limit");
    }
    Q_DISABLE_COPY_MOVE(ResourceLimit)

private:
    __rlimit_resource m_resource;
    rlimit m_former = {};
};
