#pragma once

#include <QImage>

/*!
    The pointer's image as the X server shows it at this moment, whichever program set it. Null
    when the server can't be asked. The images of an animated cursor come in turn.
*/
QImage shownCursor();
