#pragma once

/*!
    Makes this process act as an ordinary user while the object lives, for what the permission bits
    of a file allow: as root they forbid nothing. Does nothing when the process is an ordinary
    user's to begin with.

    Only what lies in folders that such a user may pass through can be reached meanwhile. Fails the
    calling test by qFatal() when the user can't be changed. To be used on the main thread.
*/
class OrdinaryUser
{
public:
    OrdinaryUser();
    //! Makes the process root again if it was.
    ~OrdinaryUser();

    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

    /*!
        Gives \a path to the ordinary user, so that it is the owner. Does nothing when the process
        is an ordinary user's to begin with.
    */
    static void give(const char *path);

private:
    bool m_wasRoot;
};
