#pragma once

#include <QPalette>

/*!
    The palette of everything on the window's white page, whatever the desktop's own palette is: the
    light one that Qt brings along, with a selection that is readable, too.
*/
QPalette pagePalette();
