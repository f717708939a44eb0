#pragma once

#include <QCursor>
#include <QImage>

/*!
    The pointer's picture as the X server shows it at this moment, whichever program set it. Null
    when the server can't be asked.
*/
QImage shownCursor();

/*!
    The picture that the X server shows for the cursor \a shape, which is not the arrow, found by
   moving the pointer over a window of this process's own. The pointer stays there.
*/
QImage pictureOfCursor(Qt::CursorShape shape);
