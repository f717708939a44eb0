#include "tests/support/OrdinaryUser.h"

#include <QtGlobal>

#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr uid_t Root = 0;
//! The user that owns nothing, on every Linux system.
constexpr uid_t Nobody = 65534;

} // namespace

OrdinaryUser::OrdinaryUser()
    : m_wasRoot(geteuid() == Root)
{
    // The real user too: access(2) goes by it. The saved one stays, for the way back.
    if (m_wasRoot && setresuid(Nobody, Nobody, Root) != 0)
        qFatal("can't act as an ordinary user");
}

OrdinaryUser::~OrdinaryUser()
{
    if (!m_wasRoot)
        return;
    if (setresuid(Root, Root, Root) != 0)
        qFatal("can't act as root again");
    // Lost with the change of user, and needed by leak detection and debuggers.
    prctl(PR_SET_DUMPABLE, 1);
}

void OrdinaryUser::give(const char *path)
{
    if (geteuid() == Root && lchown(path, Nobody, Nobody) != 0)
        qFatal("can't give %s away", path);
}
