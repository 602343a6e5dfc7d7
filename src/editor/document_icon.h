#pragma once

#include <QIcon>

// The icon of a document's window: the program's, with a dot on it while the text is not saved.
QIcon document_icon(bool unsaved);
