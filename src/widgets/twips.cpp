#include "widgets/twips.h"

#include <QWidget>

int twips_to_pixels(int twips, const QWidget& on) { return twips * on.logicalDpiX() / 1440; }
