#pragma once

#include <QPalette>

class QWidget;

/*!
    The palette of \a widget on the window's white page, whatever the desktop's own palette is: the
    light one that Qt brings along, in text fields with a selection that is readable, too.
*/
QPalette pagePalette(const QWidget &widget);
