#pragma once

#include <QObject>

/*!
    Sets \a field, a pointer that belongs to \a holder, to null when the object it now points to is
    destroyed. A field that points elsewhere by then is left alone. Does nothing for a null field.

    Each call adds a connection: it is for fields that are set once.
*/
template<typename Object>
void clearWhenDestroyed(QObject *holder, Object *&field)
{
    if (!field)
        return;
    QObject::connect(field, &QObject::destroyed, holder, [&field, object = field] {
        if (field == object)
            field = nullptr;
    });
}
