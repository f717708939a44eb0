#pragma once

#include <QImage>

/*!
    The pointer's picture as the X server shows it at this moment, whichever program set it. Null
    when the server can't be asked. The pictures of an animated cursor come in turn.
*/
QImage shownCursor();
