#pragma once

#include <QString>

class QWidget;
class odbccon;

// Name and version of the program, the driver manager's version, and name and version of the connected driver and
// database.
QString about_text(odbccon& connection);

// Shows it in a box over `owner`.
void show_about_box(QWidget* owner, odbccon& connection);
